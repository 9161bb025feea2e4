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
    for (uint32_t recordType = 1;; ++recordType) {
        if (const TQX_TypeLayout* type = TQX_layout(recordType); type && type->blockNumber != 0)
            return *type;
    }
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

    Buffer& m_out;
    const BlockLocation& m_location;
    const uint8_t* m_bytes;
    uint32_t m_size;                        ///< of what there is of the block
    uint16_t m_length = 0;                  ///< what it says itself
    const TQX_TypeLayout* m_type = nullptr; ///< null for an unknown number
    bool m_isSound = false;
    std::vector<Row> m_rows;
    std::vector<std::string> m_faults;
};

Explainer::Explainer(Buffer& buffer, const BlockLocation& place)
    : m_out(buffer), m_location(place), m_bytes(place.bytes.data()),
      m_size(static_cast<uint32_t>(place.bytes.size()))
{
    noteDamage();
    if (!m_location.hasSync())
        return;
    if (m_size >= 6)
        m_type = TQX_layout(TQX_recordType(korcg_load_u16(m_bytes + 4) & 0x1fffU));
    checkFrame();
}

/// What the place is that was asked for, when it is not the block's own.
void Explainer::noteDamage()
{
    if (m_location.offset == m_location.place && m_location.hasSync())
        return;
    std::string fault =
        fmt::format("{} {} from {} on to no block", m_location.damage,
                    m_location.damage == 1 ? "byte belongs" : "bytes belong", m_location.place);
    if (m_location.hasSync()) {
        fault += fmt::format(", this header at {} is among them", m_location.offset);
    } else {
        fault += ", no header is among them";
    }
    m_faults.push_back(fault);
}

/// Some of the bytes of damage without header.
void Explainer::addBytes()
{
    constexpr uint64_t most = 64;
    m_size = static_cast<uint32_t>(std::min(m_location.damage, most));
    addRows({BlockPiece::Kind::Unknown, 0, &anyMainType(), nullptr, 0, 0, m_size, 0});
}

void Explainer::checkFrame()
{
    if (m_size < frameHeader) {
        m_faults.push_back(fmt::format("the input ends after {} bytes, within the header", m_size));
        return;
    }
    m_length = korcg_load_u16(m_bytes + 6);
    if (m_length < frameHeader) {
        m_faults.push_back(fmt::format("the length is {}, but the header alone has {} bytes",
                                       m_length, frameHeader));
        m_size = frameHeader;
        return;
    }
    if (m_size < m_length) {
        m_faults.push_back(fmt::format("the length is {}, but the input ends after {} bytes, {} {} "
                                       "missing",
                                       m_length, m_size, m_length - m_size,
                                       m_length - m_size == 1 ? "is" : "are"));
        return;
    }
    m_size = m_length;
    const uint16_t told = korcg_load_u16(m_bytes + 2);
    const uint16_t found = korcg_crc16_bytes(m_bytes + 4, m_length - 4U);
    m_isSound = told == found;
    if (!m_isSound) {
        m_faults.push_back(fmt::format(
            "the checksum is 0x{:04x}, but that of the bytes is 0x{:04x}", told, found));
    }
}

void Explainer::noteChecksum(PieceText& text) const
{
    if (m_size < m_length || m_length < frameHeader)
        return;
    const uint16_t found = korcg_crc16_bytes(m_bytes + 4, m_length - 4U);
    text.value = m_isSound ? "right" : fmt::format("wrong, the bytes give {}", found);
}

void Explainer::addRows(const BlockPiece& piece)
{
    uint32_t offset = piece.offset;
    for (PieceText& text : textsOf(piece, m_bytes)) {
        if (piece.depth == 0 && piece.field && piece.kind == BlockPiece::Kind::Number &&
            piece.field->recordOffset == offsetof(TQX_MainHeader_s, CRC))
            noteChecksum(text);
        m_rows.push_back({offset, std::move(text)});
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
                             culprit->offset, m_location.offset + culprit->offset);
        if (culprit->kind == BlockPiece::Kind::Missing) {
            fault += fmt::format("would need {} more {}", culprit->size,
                                 culprit->size == 1 ? "byte" : "bytes");
        } else if (culprit->kind == BlockPiece::Kind::TooMany) {
            fault += fmt::format("has {} elements, there is room for {}", culprit->index,
                                 culprit->field->elements);
        } else {
            fault += fmt::format("ends behind the {} bytes that its length allows", culprit->size);
        }
    }
    m_faults.push_back(fault);
}

void Explainer::addUnknownBody()
{
    const TQX_TypeLayout& other = anyMainType();
    BlockWalk header = walkBlock(other, m_bytes, m_size, nullptr);
    uint32_t end = 0;
    for (const BlockPiece& piece : header.pieces) {
        if (!piece.field || piece.field->recordOffset > offsetof(TQX_MainHeader_s, WNc) ||
            piece.kind == BlockPiece::Kind::Missing)
            break;
        addRows(piece);
        end = piece.offset + piece.size;
    }
    if (end < m_size)
        addRows({BlockPiece::Kind::Unknown, 0, &other, nullptr, 0, end, m_size - end, 0});
}

void Explainer::walk()
{
    if (!m_type)
        return addUnknownBody();
    RecordDecoder decoder;
    const int32_t code =
        decoder.decode({m_bytes, static_cast<uint16_t>(m_size), m_location.offset});
    const BlockWalk walked =
        walkBlock(*m_type, m_bytes, m_size, code > 0 ? decoder.getRecord() : nullptr);
    for (const BlockPiece& piece : walked.pieces)
        addRows(piece);
    if (code < 0)
        addResult(code, walked);
}

void Explainer::noteNeighbours()
{
    if (m_location.around && m_location.around->offset != m_location.offset)
        m_faults.push_back("the place lies inside a sound block, " + describe(*m_location.around));
    if (!m_isSound && m_location.following) {
        m_faults.push_back(fmt::format(
            "the next sound block is {}{}", describe(*m_location.following),
            m_location.following->offset < m_location.offset + m_length ? ", within this one"
                                                                        : ""));
    } else if (!m_isSound) {
        m_faults.push_back("no sound block follows" + howFar(m_location));
    }
}

void Explainer::appendHead()
{
    m_out.append(fmt::format("{}, offset {}", printable(m_location.file), m_location.offset));
    if (!m_location.hasSync()) {
        m_out.append(": no block");
    } else if (m_size >= 6) {
        const Block block = {m_bytes, static_cast<uint16_t>(m_size), m_location.offset};
        m_out.append(fmt::format(": {}, revision {}", describeBlock(block.getNumber()),
                                 block.getRevision()));
        if (m_length != 0)
            m_out.append(fmt::format(", {} bytes", m_length));
        if (const std::optional<GnssMillis> time = block.getTime())
            m_out.append("\n" + timeText(*time));
        if (!m_type) {
            m_out.append("\nno type has this number");
        } else if (block.getRevision() > m_type->highestRevision) {
            m_out.append(fmt::format("\nnewer than revision {}, the last one that is known",
                                     m_type->highestRevision));
        }
    }
    m_out.append("\n\n");
}

void Explainer::appendRows()
{
    const auto places = static_cast<size_t>(
        std::max(fmt::formatted_size("{}", m_location.offset + m_size), size_t{4}));
    PieceText width = {"bytes", "field", "stored", ""};
    const auto widest = [](std::string& target, const std::string& text) {
        if (text.size() > target.size())
            target = text;
    };
    for (const Row& row : m_rows) {
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
        m_out.append(whole);
        m_out.append('\n');
    };
    line("file", "offset", {"bytes", "field", "stored", "value"});
    for (const Row& row : m_rows)
        line(std::to_string(m_location.offset + row.offset), std::to_string(row.offset), row.text);
}

void Explainer::append()
{
    if (m_location.hasSync()) {
        walk();
    } else {
        addBytes();
    }
    noteNeighbours();
    appendHead();
    appendRows();
    for (const std::string& fault : m_faults)
        m_out.append((&fault == &m_faults.front() ? "\n" : "") + fault + "\n");
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
    if (location.following) {
        text += "; the next block is " + describe(*location.following);
    } else {
        text += "; no block follows" + howFar(location);
    }
    return text;
}

} // namespace tqx
