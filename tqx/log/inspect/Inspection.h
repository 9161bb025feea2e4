#pragma once

#include "TQX_Layout.h"
#include "tqx/log/inspect/BlockLocator.h"
#include "tqx/log/stream/Block.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// What one field, sub-block or run of bytes of an inspected block holds.
struct InspectionRow {
    enum class Kind : uint8_t {
        Value,    ///< one number or character
        Bits,     ///< a bit range of the value in the row `parent`
        Derived,  ///< computed from other fields, without bytes of its own
        Text,     ///< characters
        Bytes,    ///< a payload whose bytes have no individual meaning
        SubBlock, ///< the rows of a sub-block follow, one level deeper
        Unknown,  ///< bytes that no field describes
        Missing,  ///< a field that ends beyond the block
        TooMany,  ///< a counted field with more elements than there is room for
        TooLong,  ///< the fields of a sub-block need more than its length
    };

    static constexpr int none = -1;

    Kind kind = Kind::Unknown;
    unsigned depth =
        0;             ///< 0 for fields of the block, one more in each sub-block and for bit ranges
    int parent = none; ///< row of the enclosing sub-block or value

    /// Of the block or sub-block that the row is in.
    const Kor::MessageApi::TQX_TypeLayout* type = nullptr;
    const Kor::MessageApi::TQX_FieldLayout* field = nullptr; ///< null for Unknown and TooLong
    uint32_t index = 0; ///< of an element or sub-block, from 0; TooMany: their number

    /// The bytes of the row, counted from the start of the block: those of the whole value for bit
    /// ranges, all of them, nested ones included, for sub-blocks, and none for what is missing or
    /// does not fit. Where bytes are missing, `offset` is where they would be.
    uint32_t offset = 0;
    uint32_t size = 0;

    /// In bytes: the stated length of a sub-block, 0 for none; what a missing field needs; what a
    /// sub-block that is too long may have.
    uint32_t stated = 0;

    std::string label;       ///< "CN0" or "Type1[0]", "(unknown)" for bytes that no field describes
    std::string path;        ///< "Type1[0].Type2[1].CN0", for bit ranges without the value's label
    std::string raw;         ///< the stored value, characters and texts as JSON strings
    std::string scaled;      ///< the value in its unit, where that differs from `raw`
    std::string unit;        ///< of `scaled`
    std::string name;        ///< of a value that has a name, such as "RTK fixed"
    std::string error;       ///< what is wrong here
    bool isAvailable = true; ///< not the value that means "not available", nor derived from one

    /// Meaning of the field where its name does not make it clear, else "".
    const char* meaning() const { return field ? field->meaning : ""; }

    /// Lowest bit and number of bits of a bit range within the stored, little-endian value; no bits
    /// for what summarises others.
    unsigned lowestBit() const { return isPacked() ? field->shift : 0; }
    unsigned bitCount() const { return isPacked() ? field->width : 0; }

private:
    /// A summary of other bits has none of its own.
    bool isPacked() const
    {
        return kind == Kind::Bits && field->summary == Kor::MessageApi::TQX_Summary::None;
    }
};

/// A block field by field, or the beginning of bytes that belong to none. Holds its own copy of the
/// bytes; it can be kept, and read from any thread.
///
///     const Inspection inspection = inspect(locateBlock(source, offset));
///     for (const InspectionRow& row : inspection.rows)
///         std::cout << row.offset << ' ' << row.path << ' ' << row.raw << '\n';
struct TQX_LOG_API Inspection {
    std::string file;    ///< name of the input, "" when it has none
    uint64_t offset = 0; ///< of the first byte in the input
    std::vector<uint8_t> bytes;

    bool hasHeader = false; ///< whether there are at least sync characters
    bool isIntact = false;  ///< whether the block is complete and its checksum is correct

    // What the header says, as far as it goes.
    std::optional<uint16_t> number;
    unsigned revision = 0;
    uint16_t length = 0; ///< in bytes, 0 when the header ends before it
    std::optional<GnssMillis> time;

    Schema schema; ///< that the types are of

    /// Null for numbers without a type.
    const Kor::MessageApi::TQX_TypeLayout* type = nullptr;
    int32_t code = 0; ///< why it does not decode, 0 when it does

    std::vector<InspectionRow> rows; ///< in the order of the bytes
    std::vector<std::string> faults; ///< what is wrong with the block and where others are

    /// The innermost row that holds a byte of the block (for bits, the value's row); none when it
    /// is after the block.
    int rowAt(uint32_t byte) const;
};

/// Inspects what is at a place: the block that begins there, or damage without a header, of which
/// the first 64 bytes are shown. Uses the types of the schema, which the result keeps. Throws
/// std::bad_alloc only.
TQX_LOG_API Inspection inspect(const BlockLocation& location, const Schema& schema = {});

/// Inspects a framed block. The result names no file and no surrounding blocks.
TQX_LOG_API Inspection inspect(const Block& block, const Schema& schema = {});

/// Why there is nothing to inspect at a place inside a valid block that has no sync characters, and
/// where to look instead.
TQX_LOG_API std::string describeNoBlock(const BlockLocation& location, const Schema& schema = {});

} // namespace tqx
