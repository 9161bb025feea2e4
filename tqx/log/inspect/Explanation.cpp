#include "tqx/log/inspect/Explanation.h"

#include "korcg_crc.h"
#include "korcg_load.h"
#include "tqx/log/inspect/BlockWalk.h"
#include "tqx/log/inspect/PieceText.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint32_t frameHeader = 8;

std::string describe(const BlockLocation::Neighbour& block)
{
    return fmt::format("{} at {}", describeBlock(block.number), block.offset);
}

/// " within 1 MiB" when the search did not go on to the end.
std::string howFar(const BlockLocation& location)
{
    return location.isCutShort ? fmt::format(" within {} MiB", BlockLocation::reach >> 20U) : "";
}

/// Any main type: the header is the same in all of them.
const TQX_TypeLayout& anyMainType()
{
    for (uint32_t recordType = 1;; ++recordType)
        if (const TQX_TypeLayout* type = TQX_layout(recordType); type && type->blockNumber != 0)
            return *type;
}

class Explainer
{
public:
    Explainer(Buffer& buffer, const BlockLocation& place);

    void append();

private:
    struct Row {
        uint32_t offset;
        PieceText text;
    };

    void noteDamage();
    void addBytes();
    void checkFrame();
    void walk();
    void addUnknownBody();
    void addRows(const BlockPiece& piece);
    void addResult(int32_t code, const BlockWalk& walk);
    void noteChecksum(PieceText& text) const;
    void noteNeighbours();
    void appendHead();
    void appendRows();

    Buffer& out;
    const BlockLocation& location;
    const uint8_t* bytes;
    uint32_t size;                        ///< of what there is of the block
    uint16_t length = 0;                  ///< what it says itself
    const TQX_TypeLayout* type = nullptr; ///< null for an unknown number
    bool isSound = false;
    std::vector<Row> rows;
    std::vector<std::string> faults;
};

Explainer::Explainer(Buffer& buffer, const BlockLocation& place)
    : out(buffer), location(place), bytes(place.bytes.data()),
      size(static_cast<uint32_t>(place.bytes.size()))
{
    noteDamage();
    if (!location.hasSync())
        return;
    if (size >= 6)
        type = TQX_layout(TQX_recordType(korcg_load_u16(bytes + 4) & 0x1fffU));
    checkFrame();
}

/// What the place is that was asked for, when it is not the block's own.
void Explainer::noteDamage()
{
    if (location.offset == location.place && location.hasSync())
        return;
    std::string fault =
        fmt::format("{} {} from {} on to no block", location.damage,
                    location.damage == 1 ? "byte belongs" : "bytes belong", location.place);
    if (location.hasSync())
        fault += fmt::format(", this header at {} is among them", location.offset);
    else
        fault += ", no header is among them";
    faults.push_back(fault);
}

/// Some of the bytes of damage without header.
void Explainer::addBytes()
{
    constexpr uint64_t most = 64;
    size = static_cast<uint32_t>(std::min(location.damage, most));
    addRows({BlockPiece::Kind::Unknown, 0, &anyMainType(), nullptr, 0, 0, size, 0});
}

void Explainer::checkFrame()
{
    if (size < frameHeader) {
        faults.push_back(fmt::format("the input ends after {} bytes, within the header", size));
        return;
    }
    length = korcg_load_u16(bytes + 6);
    if (length < frameHeader) {
        faults.push_back(fmt::format("the length is {}, but the header alone has {} bytes", length,
                                     frameHeader));
        size = frameHeader;
        return;
    }
    if (size < length) {
        faults.push_back(fmt::format("the length is {}, but the input ends after {} bytes, {} {} "
                                     "missing",
                                     length, size, length - size,
                                     length - size == 1 ? "is" : "are"));
        return;
    }
    size = length;
    const uint16_t told = korcg_load_u16(bytes + 2);
    const uint16_t found = korcg_crc16_bytes(bytes + 4, length - 4U);
    isSound = told == found;
    if (!isSound)
        faults.push_back(fmt::format("the checksum is 0x{:04x}, but that of the bytes is 0x{:04x}",
                                     told, found));
}

void Explainer::noteChecksum(PieceText& text) const
{
    if (size < length || length < frameHeader)
        return;
    const uint16_t found = korcg_crc16_bytes(bytes + 4, length - 4U);
    text.value = isSound ? "right" : fmt::format("wrong, the bytes give {}", found);
}

void Explainer::addRows(const BlockPiece& piece)
{
    uint32_t offset = piece.offset;
    for (PieceText& text : textsOf(piece, bytes)) {
        if (piece.depth == 0 && piece.field && piece.kind == BlockPiece::Kind::Number &&
            piece.field->recordOffset == offsetof(TQX_MainHeader_s, CRC))
            noteChecksum(text);
        rows.push_back({offset, std::move(text)});
        offset += bytesPerRow;
    }
}

/// The field that the code names, where it would stand, or what else went wrong there.
void Explainer::addResult(int32_t code, const BlockWalk& walk)
{
    std::string fault = fmt::format("the decoder gives {} ({})", TQX_errorName(code), code);
    const auto culprit =
        std::find_if(walk.pieces.rbegin(), walk.pieces.rend(), [](const auto& one) {
            return one.kind == BlockPiece::Kind::Missing || one.kind == BlockPiece::Kind::TooMany ||
                   one.kind == BlockPiece::Kind::TooLong;
        });
    if (culprit != walk.pieces.rend()) {
        const char* name = culprit->field ? culprit->field->name : "an entry";
        fault += fmt::format(": {} of {} at {}, {} in the file, ", name, culprit->type->name,
                             culprit->offset, location.offset + culprit->offset);
        if (culprit->kind == BlockPiece::Kind::Missing)
            fault += fmt::format("would need {} more {}", culprit->size,
                                 culprit->size == 1 ? "byte" : "bytes");
        else if (culprit->kind == BlockPiece::Kind::TooMany)
            fault += fmt::format("has {} elements, there is room for {}", culprit->index,
                                 culprit->field->elements);
        else
            fault += fmt::format("ends behind the {} bytes that its length allows", culprit->size);
    }
    faults.push_back(fault);
}

void Explainer::addUnknownBody()
{
    const TQX_TypeLayout& other = anyMainType();
    BlockWalk header = walkBlock(other, bytes, size, nullptr);
    uint32_t end = 0;
    for (const BlockPiece& piece : header.pieces) {
        if (!piece.field || piece.field->recordOffset > offsetof(TQX_MainHeader_s, WNc) ||
            piece.kind == BlockPiece::Kind::Missing)
            break;
        addRows(piece);
        end = piece.offset + piece.size;
    }
    if (end < size)
        addRows({BlockPiece::Kind::Unknown, 0, &other, nullptr, 0, end, size - end, 0});
}

void Explainer::walk()
{
    if (!type)
        return addUnknownBody();
    RecordDecoder decoder;
    const int32_t code = decoder.decode({bytes, static_cast<uint16_t>(size), location.offset});
    const BlockWalk walked =
        walkBlock(*type, bytes, size, code > 0 ? decoder.getRecord() : nullptr);
    for (const BlockPiece& piece : walked.pieces)
        addRows(piece);
    if (code < 0)
        addResult(code, walked);
}

void Explainer::noteNeighbours()
{
    if (location.around && location.around->offset != location.offset)
        faults.push_back("the place lies inside a sound block, " + describe(*location.around));
    if (!isSound && location.following)
        faults.push_back(fmt::format(
            "the next sound block is {}{}", describe(*location.following),
            location.following->offset < location.offset + length ? ", within this one" : ""));
    else if (!isSound)
        faults.push_back("no sound block follows" + howFar(location));
}

void Explainer::appendHead()
{
    out.append(fmt::format("{}, offset {}", printable(location.file), location.offset));
    if (!location.hasSync()) {
        out.append(": no block");
    } else if (size >= 6) {
        const Block block = {bytes, static_cast<uint16_t>(size), location.offset};
        out.append(fmt::format(": {}, revision {}", describeBlock(block.getNumber()),
                               block.getRevision()));
        if (length != 0)
            out.append(fmt::format(", {} bytes", length));
        if (const std::optional<GnssMillis> time = block.getTime())
            out.append("\n" + timeText(*time));
        if (!type)
            out.append("\nno type has this number");
        else if (block.getRevision() > type->highestRevision)
            out.append(fmt::format("\nnewer than revision {}, the last one that is known",
                                   type->highestRevision));
    }
    out.append("\n\n");
}

void Explainer::appendRows()
{
    const auto places =
        static_cast<size_t>(std::max(fmt::formatted_size("{}", location.offset + size), size_t{4}));
    PieceText width = {"bytes", "field", "stored", ""};
    const auto widest = [](std::string& target, const std::string& text) {
        if (text.size() > target.size())
            target = text;
    };
    for (const Row& row : rows) {
        widest(width.bytes, row.text.bytes);
        widest(width.name, row.text.name);
        widest(width.stored, row.text.stored);
    }
    const auto line = [&](const std::string& at, const std::string& offset, const PieceText& text) {
        std::string whole =
            fmt::format("{:>{}}  {:>6}  {:<{}}  {:<{}}  {:<{}}  {}", at, places, offset, text.bytes,
                        width.bytes.size(), text.name, width.name.size(), text.stored,
                        width.stored.size(), text.value);
        whole.erase(whole.find_last_not_of(' ') + 1);
        out.append(whole);
        out.append('\n');
    };
    line("file", "offset", {"bytes", "field", "stored", "value"});
    for (const Row& row : rows)
        line(std::to_string(location.offset + row.offset), std::to_string(row.offset), row.text);
}

void Explainer::append()
{
    if (location.hasSync())
        walk();
    else
        addBytes();
    noteNeighbours();
    appendHead();
    appendRows();
    for (const std::string& fault : faults)
        out.append((&fault == &faults.front() ? "\n" : "") + fault + "\n");
}

} // namespace

void appendExplanation(Buffer& out, const BlockLocation& location)
{
    Explainer(out, location).append();
}

std::string describeNoBlock(const BlockLocation& location)
{
    std::string text = "no block begins here";
    if (location.around)
        text += "; it is inside of " + describe(*location.around);
    if (location.following)
        text += "; the next block is " + describe(*location.following);
    else
        text += "; no block follows" + howFar(location);
    return text;
}

} // namespace tqx
