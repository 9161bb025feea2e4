#include "tqx/log/inspect/Inspection.h"

#include "korcg_crc.h"
#include "korcg_load.h"
#include "tqx/log/inspect/BlockWalk.h"
#include "tqx/log/inspect/InspectionRows.h"
#include "tqx/log/record/RecordDecoder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint32_t frameHeader = 8;
constexpr size_t throughId = 6; ///< bytes of the header up to the block's number

std::string describe(const BlockLocation::Neighbour& block, const Schema& schema)
{
    return fmt::format("{} at {}", describeBlock(block.number, schema), block.offset);
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

/// Describes the requested place, when it is not the block's own.
void addDamage(Inspection& inspection, const BlockLocation& location)
{
    if (location.offset == location.place && location.hasSync())
        return;
    std::string fault =
        fmt::format("{} {} from {} on to no block", location.damage,
                    location.damage == 1 ? "byte belongs" : "bytes belong", location.place);
    if (location.hasSync()) {
        fault += fmt::format(", this header at {} is among them", location.offset);
    } else {
        fault += ", no header is among them";
    }
    inspection.faults.push_back(std::move(fault));
}

/// Some of the bytes of damage without a header.
void addBytes(Inspection& inspection)
{
    const auto size = static_cast<uint32_t>(inspection.bytes.size());
    InspectionRows rows(inspection.bytes.data());
    rows.add({BlockPiece::Kind::Unknown, 0, &anyMainType(), nullptr, 0, 0, size, 0});
    inspection.rows = rows.take();
}

/// Appends what the header says, as far as there is one.
void readHeader(Inspection& inspection)
{
    const std::vector<uint8_t>& bytes = inspection.bytes;
    inspection.hasHeader = true;
    if (bytes.size() < throughId)
        return;
    const Block block = {bytes.data(),
                         static_cast<uint16_t>(std::min<size_t>(bytes.size(), 0xffff)),
                         inspection.offset};
    inspection.number = block.getNumber();
    inspection.revision = block.getRevision();
    inspection.type = inspection.schema.getBlockType(block.getNumber());
    if (bytes.size() >= frameHeader)
        inspection.length = korcg_load_u16(bytes.data() + 6);
}

/// Checks length and checksum, and drops the bytes that are not the block's.
void checkFrame(Inspection& inspection)
{
    std::vector<uint8_t>& bytes = inspection.bytes;
    std::vector<std::string>& faults = inspection.faults;
    const uint16_t length = inspection.length;
    if (bytes.size() < frameHeader) {
        faults.push_back(
            fmt::format("the input ends after {} bytes, inside the header", bytes.size()));
        return;
    }
    if (length < frameHeader) {
        faults.push_back(fmt::format("the length is {}, but the header alone has {} bytes", length,
                                     frameHeader));
        bytes.resize(frameHeader);
        return;
    }
    if (bytes.size() < length) {
        const size_t missing = length - bytes.size();
        faults.push_back(fmt::format("the length is {}, but the input ends after {} bytes, {} {} "
                                     "missing",
                                     length, bytes.size(), missing, missing == 1 ? "is" : "are"));
        return;
    }
    bytes.resize(length);
    const uint16_t stated = korcg_load_u16(bytes.data() + 2);
    const uint16_t found = korcg_crc16_bytes(bytes.data() + 4, length - 4U);
    inspection.isIntact = stated == found;
    if (!inspection.isIntact) {
        faults.push_back(fmt::format("the checksum is 0x{:04x}, but that of the bytes is 0x{:04x}",
                                     stated, found));
    }
}

/// Says whether the checksum is correct, if enough is there to know.
void judgeChecksum(Inspection& inspection)
{
    const std::vector<uint8_t>& bytes = inspection.bytes;
    if (bytes.size() < inspection.length || inspection.length < frameHeader)
        return;
    const auto row =
        std::find_if(inspection.rows.begin(), inspection.rows.end(), [](const auto& one) {
            return one.depth == 0 && one.field && one.kind == InspectionRow::Kind::Value &&
                   one.field->recordOffset == offsetof(TQX_MainHeader_s, CRC);
        });
    if (row == inspection.rows.end())
        return;
    row->scaled.clear();
    row->name.clear();
    if (inspection.isIntact) {
        row->name = "right";
    } else {
        row->error = fmt::format("wrong, the bytes have {}",
                                 korcg_crc16_bytes(bytes.data() + 4, bytes.size() - 4U));
    }
}

/// The header and the rest of a block of an unknown number.
void addUnknownBody(Inspection& inspection)
{
    const auto size = static_cast<uint32_t>(inspection.bytes.size());
    const TQX_TypeLayout& other = anyMainType();
    const BlockWalk header = walkBlock(other, inspection.bytes.data(), size, nullptr);
    InspectionRows rows(inspection.bytes.data());
    uint32_t end = 0;
    for (const BlockPiece& piece : header.pieces) {
        if (!piece.field || piece.field->recordOffset > offsetof(TQX_MainHeader_s, WNc) ||
            piece.kind == BlockPiece::Kind::Missing)
            break;
        rows.add(piece);
        end = piece.offset + piece.size;
    }
    if (end < size)
        rows.add({BlockPiece::Kind::Unknown, 0, &other, nullptr, 0, end, size - end, 0});
    inspection.rows = rows.take();
}

/// The field that the code names, with the place where it would be, or what else went wrong there.
void addResult(Inspection& inspection)
{
    using Kind = InspectionRow::Kind;
    std::string fault =
        fmt::format("the decoder gives {} ({})", inspection.schema.getErrorName(inspection.code),
                    inspection.code);
    const auto culprit =
        std::find_if(inspection.rows.rbegin(), inspection.rows.rend(), [](const auto& row) {
            return row.kind == Kind::Missing || row.kind == Kind::TooMany ||
                   row.kind == Kind::TooLong;
        });
    if (culprit != inspection.rows.rend()) {
        const char* name = culprit->field ? culprit->field->name : "an entry";
        fault += fmt::format(": {} of {} at {}, {} in the file, ", name, culprit->type->name,
                             culprit->offset, inspection.offset + culprit->offset);
        if (culprit->kind == Kind::Missing) {
            fault += fmt::format("needs {} more {}", culprit->stated,
                                 culprit->stated == 1 ? "byte" : "bytes");
        } else if (culprit->kind == Kind::TooMany) {
            fault += fmt::format("has {} elements, there is room for {}", culprit->index,
                                 culprit->field->elements);
        } else {
            fault += fmt::format("ends after the {} bytes that its length allows", culprit->stated);
        }
    }
    inspection.faults.push_back(std::move(fault));
}

void addFields(Inspection& inspection)
{
    const std::vector<uint8_t>& bytes = inspection.bytes;
    RecordDecoder decoder(inspection.schema);
    const int32_t code =
        decoder.decode({bytes.data(), static_cast<uint16_t>(bytes.size()), inspection.offset});
    const BlockWalk walk =
        walkBlock(*inspection.type, bytes.data(), static_cast<uint32_t>(bytes.size()),
                  code > 0 ? decoder.getRecord() : nullptr);
    InspectionRows rows(bytes.data());
    for (const BlockPiece& piece : walk.pieces)
        rows.add(piece);
    inspection.rows = rows.take();
    if (code >= 0)
        return;
    inspection.code = code;
    addResult(inspection);
}

void addBlock(Inspection& inspection)
{
    readHeader(inspection);
    checkFrame(inspection);
    const std::vector<uint8_t>& bytes = inspection.bytes;
    if (bytes.size() >= throughId) {
        inspection.time =
            Block{bytes.data(), static_cast<uint16_t>(bytes.size()), inspection.offset}.getTime();
    }
    if (inspection.type) {
        addFields(inspection);
    } else {
        addUnknownBody(inspection);
    }
    judgeChecksum(inspection);
}

void addNeighbours(Inspection& inspection, const BlockLocation& location)
{
    if (location.around && location.around->offset != location.offset) {
        inspection.faults.push_back("the place lies inside a valid block, " +
                                    describe(*location.around, inspection.schema));
    }
    if (inspection.isIntact)
        return;
    if (!location.following) {
        inspection.faults.push_back("no valid block follows" + howFar(location));
        return;
    }
    const bool isWithin = location.following->offset < location.offset + inspection.length;
    inspection.faults.push_back(fmt::format("the next valid block is {}{}",
                                            describe(*location.following, inspection.schema),
                                            isWithin ? ", within this one" : ""));
}

} // namespace

Inspection inspect(const BlockLocation& location, const Schema& schema)
{
    Inspection inspection;
    inspection.schema = schema;
    inspection.file = location.file;
    inspection.offset = location.offset;
    addDamage(inspection, location);
    if (location.hasSync()) {
        inspection.bytes = location.bytes;
        addBlock(inspection);
    } else {
        constexpr uint64_t most = 64;
        const uint64_t count =
            std::min({location.damage, most, static_cast<uint64_t>(location.bytes.size())});
        inspection.bytes.assign(location.bytes.begin(),
                                location.bytes.begin() + static_cast<std::ptrdiff_t>(count));
        addBytes(inspection);
    }
    addNeighbours(inspection, location);
    return inspection;
}

Inspection inspect(const Block& block, const Schema& schema)
{
    Inspection inspection;
    inspection.schema = schema;
    inspection.offset = block.offset;
    inspection.bytes.assign(block.data, block.data + block.size);
    addBlock(inspection);
    return inspection;
}

int Inspection::rowAt(uint32_t byte) const
{
    int innermost = InspectionRow::none;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].kind != InspectionRow::Kind::Bits && rows[i].offset <= byte &&
            byte - rows[i].offset < rows[i].size)
            innermost = static_cast<int>(i);
    }
    return innermost;
}

std::string describeNoBlock(const BlockLocation& location, const Schema& schema)
{
    std::string text = "no block begins here";
    if (location.around)
        text += "; it is inside " + describe(*location.around, schema);
    if (location.following) {
        text += "; the next block is " + describe(*location.following, schema);
    } else {
        text += "; no block follows" + howFar(location);
    }
    return text;
}

} // namespace tqx
