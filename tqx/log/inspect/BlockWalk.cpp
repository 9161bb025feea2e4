#include "tqx/log/inspect/BlockWalk.h"

#include "TQX_FieldFacts.h"
#include "TQX_RecordAccess.h"

#include <algorithm>
#include <cstddef>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Kind = BlockPiece::Kind;

uint64_t signExtended(uint64_t value, unsigned width)
{
    const uint64_t sign = uint64_t{1} << (width - 1);
    return (value ^ sign) - sign;
}

/// The block or one entry in it.
class Level
{
public:
    Level(BlockWalk& target, const TQX_TypeLayout& layout, const uint8_t* block, uint32_t blockSize)
        : m_walk(target), m_type(layout), m_main(*this), m_bytes(block), m_size(blockSize),
          m_values(layout.fieldCount, 0)
    {
    }
    Level(const TQX_TypeLayout& layout, const Level& owner)
        : m_walk(owner.m_walk), m_type(layout), m_main(owner.m_main), m_depth(owner.m_depth + 1),
          m_bytes(owner.m_bytes), m_size(owner.m_size), m_start(owner.m_offset),
          m_offset(owner.m_offset), m_values(layout.fieldCount, 0)
    {
    }

    /// `length` is that of the entry in bytes, 0 for none. Returns 0 or the error code.
    int32_t run(const void* decoded, uint32_t length);

    uint32_t getOffset() const { return m_offset; }

private:
    const TQX_FieldLayout& row(int index) const { return m_type.fields[index]; }
    bool fits(uint32_t count) const { return uint64_t{m_offset} + count <= m_size; }
    bool isHere(const TQX_FieldLayout& field) const;
    void add(Kind kind, const TQX_FieldLayout* field, uint32_t index, uint32_t count,
             uint64_t stored = 0);
    void missing(const TQX_FieldLayout& field, uint32_t index, uint32_t count);
    void readNumber(int index, uint32_t element, uint32_t count);
    void readBits(int word, uint64_t whole, uint32_t element);
    bool isRun(int index, uint32_t count) const;
    void joinElements(const TQX_FieldFacts& facts, size_t first);
    void readArray(int index);
    void readRun(const TQX_FieldLayout& field, uint32_t count);
    int32_t readEntries(int index);
    void addDerived(const TQX_FieldLayout& field);
    bool closeAt(uint32_t length);

    BlockWalk& m_walk;
    const TQX_TypeLayout& m_type;
    const Level& m_main;
    unsigned m_depth = 0;
    const uint8_t* m_bytes;
    uint32_t m_size;
    uint32_t m_start = 0;
    uint32_t m_offset = 0;
    const void* m_record = nullptr;
    int32_t m_pending = 0;
    std::vector<uint64_t> m_values; ///< by row, of what was read
};

bool Level::isHere(const TQX_FieldLayout& field) const
{
    if (field.presence == TQX_Presence::Always || field.alwaysSent)
        return true;
    if (m_pending != 0)
        return false;
    if (field.presence == TQX_Presence::Selected)
        return m_values[static_cast<size_t>(field.selector)] == field.presenceValue;
    const unsigned revision = m_size < 6 ? 0 : m_bytes[5] >> 5U;
    return field.presence == TQX_Presence::SinceRevision ? revision >= field.presenceValue
                                                         : revision == field.presenceValue;
}

void Level::add(Kind kind, const TQX_FieldLayout* field, uint32_t index, uint32_t count,
                uint64_t stored)
{
    m_walk.pieces.push_back({kind, m_depth, &m_type, field, index, m_offset, count, stored});
}

void Level::missing(const TQX_FieldLayout& field, uint32_t index, uint32_t count)
{
    add(Kind::Missing, &field, index, count);
    m_pending = field.code;
}

void Level::readBits(int word, uint64_t whole, uint32_t element)
{
    for (int i = word + 1; i < m_type.fieldCount && row(i).parent == word; ++i) {
        const TQX_FieldLayout& part = row(i);
        uint64_t value = TQX_bitsOf(m_type.fields + word + 1, part, whole);
        if (element == 0)
            m_values[static_cast<size_t>(i)] = value;
        if (TQX_isSigned(part))
            value = signExtended(value, part.width);
        add(Kind::Bits, &part, element, 0, value);
    }
}

/// Element of a field from its first `count` bytes, which are there.
void Level::readNumber(int index, uint32_t element, uint32_t count)
{
    const TQX_FieldLayout& field = row(index);
    uint64_t value = 0;
    for (uint32_t i = 0; i < count; ++i)
        value |= uint64_t{m_bytes[m_offset + i]} << 8 * i;
    if (element == 0)
        m_values[static_cast<size_t>(index)] = value;
    add(Kind::Number, &field, element, count,
        TQX_isSigned(field) ? signExtended(value, 8 * count) : value);
    readBits(index, value, element);
    m_offset += count;
}

void Level::readRun(const TQX_FieldLayout& field, uint32_t count)
{
    const uint32_t there = std::min(count, m_size - std::min(m_offset, m_size));
    if (there != 0 || count == 0)
        add(Kind::Run, &field, 0, there);
    m_offset += there;
    if (there < count)
        missing(field, there, count - there);
}

/// Texts, and payloads whose bytes have no individual meaning.
bool Level::isRun(int index, uint32_t count) const
{
    constexpr uint32_t mostNumbers = 16;
    const bool hasBits = index + 1 < m_type.fieldCount && row(index + 1).parent == index;
    return row(index).type == TQX_MemberType::Char ||
           (TQX_elementSize(row(index)) == 1 && !hasBits && (count == 0 || count > mostNumbers));
}

/// Marks the elements of an array, the pieces from the first on, as one value if any is available.
void Level::joinElements(const TQX_FieldFacts& facts, size_t first)
{
    const auto begin = m_walk.pieces.begin() + static_cast<std::ptrdiff_t>(first);
    const bool isWhole =
        facts.has(TQX_FieldFacts::Whole) &&
        std::any_of(begin, m_walk.pieces.end(), [&facts](const BlockPiece& piece) {
            return piece.kind == Kind::Number && !TQX_isDoNotUse(facts, piece.stored);
        });
    std::for_each(begin, m_walk.pieces.end(), [&](BlockPiece& piece) { piece.isWhole = isWhole; });
}

void Level::readArray(int index)
{
    const TQX_FieldLayout& field = row(index);
    const uint32_t width = TQX_elementSize(field);
    const uint64_t counted =
        field.count < 0 ? field.elements : m_values[static_cast<size_t>(field.count)];
    const auto count = static_cast<uint32_t>(field.countsBytes ? counted / width : counted);
    const uint32_t room = std::min<uint32_t>(count, field.elements);
    const size_t first = m_walk.pieces.size();
    if (isRun(index, room)) {
        readRun(field, room);
    } else {
        for (uint32_t i = 0; i < room && m_pending == 0; ++i) {
            if (fits(width)) {
                readNumber(index, i, width);
            } else {
                missing(field, i, width);
            }
        }
    }
    joinElements(TQX_factsOf(m_type, index), first);
    if (m_pending == 0 && count > field.elements) {
        add(Kind::TooMany, &field, count, 0);
        m_pending = field.code - 1;
    }
    if (m_pending != 0 || !field.countsBytes || counted % width == 0)
        return;
    // A payload that is counted in bytes may end inside an element.
    const auto tail = static_cast<uint32_t>(counted % width);
    if (fits(tail)) {
        readNumber(index, count, tail);
    } else {
        missing(field, count, tail);
    }
}

int32_t Level::readEntries(int index)
{
    const TQX_FieldLayout& field = row(index);
    const bool isArray = field.kind == TQX_FieldKind::Blocks;
    const auto count =
        isArray ? static_cast<uint32_t>(m_values[static_cast<size_t>(field.count)]) : uint32_t{1};
    uint64_t length = 0;
    if (field.length >= 0) {
        length =
            (field.lengthInMain ? m_main.m_values : m_values)[static_cast<size_t>(field.length)];
    }
    for (uint32_t i = 0; i < count; ++i) {
        add(Kind::Entry, &field, i, static_cast<uint32_t>(length));
        Level entry(*field.sub, *this);
        const int32_t code = entry.run(m_record ? TQX_element(field, m_record, i) : nullptr,
                                       static_cast<uint32_t>(length));
        m_offset = entry.getOffset();
        if (code < 0)
            return code;
    }
    return 0;
}

void Level::addDerived(const TQX_FieldLayout& field)
{
    const TQX_FieldFacts& facts = TQX_factsOf(m_type, field);
    for (uint32_t i = 0; m_record && i < field.elements; ++i) {
        add(Kind::Derived, &field, i, 0,
            TQX_isSigned(field) ? static_cast<uint64_t>(TQX_signedValue(field, m_record, i))
                                : TQX_unsignedValue(field, m_record, i));
        m_walk.pieces.back().hasInputs = TQX_hasInputs(facts, m_record);
    }
}

/// Ends the fields of an entry where its length says, whatever is known of them.
bool Level::closeAt(uint32_t length)
{
    if (m_offset - m_start > length) {
        add(Kind::TooLong, nullptr, 0, length);
        return false;
    }
    const uint32_t end = m_start + length;
    const uint32_t there = std::min(end, std::max(m_size, m_offset));
    if (there != m_offset)
        add(Kind::Unknown, nullptr, 0, there - m_offset);
    m_offset = end;
    return true;
}

int32_t Level::run(const void* decoded, uint32_t length)
{
    m_record = decoded;
    uint32_t open = length;
    for (int i = 0; i < m_type.fieldCount; ++i) {
        const TQX_FieldLayout& field = row(i);
        if (field.kind == TQX_FieldKind::Derived)
            addDerived(field);
        if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived)
            continue;
        if (field.kind == TQX_FieldKind::Value) {
            if (!isHere(field))
                continue;
            if (fits(TQX_elementSize(field))) {
                readNumber(i, 0, TQX_elementSize(field));
            } else {
                missing(field, 0, TQX_elementSize(field));
            }
            continue;
        }
        if (m_pending != 0 || !isHere(field))
            continue;
        if (field.recordType == 0) {
            readArray(i);
            continue;
        }
        // The length of an entry covers what is before its nested entries.
        const bool nested = field.kind == TQX_FieldKind::Blocks || field.length >= 0;
        if (nested && m_depth != 0 && open != 0) {
            if (!closeAt(open))
                return m_type.sizeUnderflow;
            open = 0;
        }
        if (const int32_t code = readEntries(i); code < 0)
            return code;
    }
    if (open != 0 && m_pending == 0 && !closeAt(open))
        m_pending = m_type.sizeUnderflow;
    if (m_depth == 0 && m_pending == 0 && m_offset < m_size)
        closeAt(m_size);
    return m_pending;
}

} // namespace

BlockWalk walkBlock(const TQX_TypeLayout& type, const uint8_t* bytes, uint32_t size,
                    const void* record)
{
    BlockWalk walk;
    walk.code = Level(walk, type, bytes, size).run(record, 0);
    return walk;
}

} // namespace tqx
