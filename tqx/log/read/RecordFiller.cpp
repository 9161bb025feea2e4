#include "tqx/log/read/RecordFiller.h"

#include "TQX_codec.h"
#include "tqx/log/read/LineError.h"
#include "tqx/log/read/StoredValue.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

namespace tqx
{

using namespace Kor::MessageApi;
using nlohmann::json;

namespace
{

using Object = json::object_t;

class Filler
{
public:
    Filler(const TQX_TypeLayout& layout, void* target, const Object& object)
        : m_type(layout), m_record(target), m_values(object), m_given(layout.fieldCount, nullptr)
    {
    }

    void fill();

private:
    const TQX_FieldLayout& row(int index) const { return m_type.fields[index]; }
    bool isGiven(int index) const { return m_given[static_cast<size_t>(index)] != nullptr; }
    const json& valueOf(int index) const { return *m_given[static_cast<size_t>(index)]; }

    void assignRows();
    [[noreturn]] void failUnknown() const;
    void fillWord(int word);
    void fillBits(int word, int part);
    void splitWord(int word);
    void fillScalar(int index);
    void fillContent(int index);
    void fillArray(int index);
    void fillText(int index);
    void fillBlocks(int index);
    void fillEmbedded(int index);
    void setCount(int index, size_t elements);
    void setEntryLengths(const TQX_TypeLayout& owner);
    void settleId();
    void checkPresence(int index) const;

    const TQX_TypeLayout& m_type;
    void* m_record;
    const Object& m_values;
    std::vector<const json*> m_given;  ///< per row of the layout
    std::map<int, size_t> m_countedBy; ///< elements announced so far, by row of the count field
};

const void* mainOf(const TQX_TypeLayout& type, const void* record)
{
    for (unsigned link = 0; link < type.linksToMain; ++link)
        record = static_cast<const KorcgHeader_s*>(record)->korcg_father;
    return record;
}

/// Calls `step`, and gives what it throws the field's name as its place.
template<typename Step>
void atField(const TQX_FieldLayout& field, Step step)
{
    try {
        step();
    } catch (const LineError& error) {
        throw error.inside(field.name);
    }
}

/// Likewise for one element of the field.
template<typename Step>
void atElement(const TQX_FieldLayout& field, uint32_t index, Step step)
{
    try {
        step();
    } catch (const LineError& error) {
        throw error.inside(fmt::format("{}[{}]", field.name, index));
    }
}

void Filler::assignRows()
{
    size_t known = 0;
    for (int i = 0; i < m_type.fieldCount; ++i) {
        const auto found = m_values.find(row(i).name);
        if (found == m_values.end())
            continue;
        if (row(i).kind == TQX_FieldKind::Derived) {
            throw LineError::at(row(i).name,
                                "is computed when a block is decoded, it cannot be given");
        }
        m_given[static_cast<size_t>(i)] = &found->second;
        ++known;
    }
    if (known != m_values.size())
        failUnknown();
}

void Filler::failUnknown() const
{
    std::vector<std::string_view> names;
    for (int i = 0; i < m_type.fieldCount; ++i)
        names.emplace_back(row(i).name);
    const auto unknown = std::find_if(m_values.begin(), m_values.end(), [&](const auto& member) {
        return std::find(names.begin(), names.end(), member.first) == names.end();
    });
    throw LineError(unknownName("field", unknown->first, names));
}

void Filler::checkPresence(int index) const
{
    const TQX_FieldLayout& field = row(index);
    if (!isGiven(index) || field.alwaysSent || TQX_isPresent(m_type, field, m_record))
        return;
    switch (field.presence) {
    case TQX_Presence::SinceRevision:
        throw LineError::at(field.name,
                            fmt::format("is there from revision {} on only", field.presenceValue));
    case TQX_Presence::OnlyRevision:
        throw LineError::at(field.name,
                            fmt::format("is there in revision {} only", field.presenceValue));
    case TQX_Presence::Selected:
        throw LineError::at(field.name, fmt::format("is there only when {} is {}",
                                                    row(field.selector).name, field.presenceValue));
    case TQX_Presence::Always:
        return;
    }
}

void Filler::fillBits(int word, int part)
{
    const TQX_FieldLayout& bits = row(part);
    const TQX_FieldLayout& field = row(word);
    const bool isArray = field.kind != TQX_FieldKind::Value;
    const size_t count = isArray ? arrayOf(valueOf(part)).size() : 1;
    if (count > field.elements)
        throw LineError(fmt::format("{} elements, there is room for {}", count, field.elements));
    for (uint32_t i = 0; i < count; ++i) {
        const uint64_t mask = ~uint64_t{0} >> (64 - bits.width);
        const uint64_t value = bitsOf(bits, isArray ? arrayOf(valueOf(part))[i] : valueOf(part));
        const uint64_t whole = TQX_unsignedValue(field, m_record, i);
        if (!isGiven(word)) {
            storeInteger(field, m_record, i, (whole & ~(mask << bits.shift)) | value << bits.shift);
        } else if ((whole >> bits.shift & mask) != value) {
            throw LineError(fmt::format("contradicts {}", field.name));
        }
    }
    if (isArray)
        setCount(word, count);
}

/// The bit ranges of a packed field. Given together with the word, they must agree with it.
void Filler::fillWord(int word)
{
    for (int part = word + 1; part < m_type.fieldCount && row(part).parent == word; ++part) {
        if (isGiven(part))
            atField(row(part), [&] { fillBits(word, part); });
    }
}

void Filler::fillScalar(int index)
{
    if (isGiven(index))
        atField(row(index), [&] { storeElement(row(index), m_record, 0, valueOf(index)); });
    fillWord(index);
    splitWord(index);
}

/// Sets the members of the bit ranges, which may say what other fields there are.
void Filler::splitWord(int word)
{
    for (int i = word + 1; i < m_type.fieldCount && row(i).parent == word; ++i) {
        const TQX_FieldLayout& part = row(i);
        const uint64_t sign = TQX_isSigned(part) ? uint64_t{1} << (part.width - 1) : 0;
        const uint64_t value = TQX_unsignedValue(row(word), m_record) >> part.shift &
                               ~uint64_t{0} >> (64 - part.width);
        storeInteger(part, m_record, 0, (value ^ sign) - sign);
    }
}

/// Counts are what the arrays say. A count of bytes that is given may end inside an element behind
/// those of the array.
void Filler::setCount(int index, size_t elements)
{
    const TQX_FieldLayout& field = row(index);
    if (field.count < 0) {
        if (elements != field.elements)
            throw LineError(fmt::format("{} elements instead of {}", elements, field.elements));
        return;
    }
    const TQX_FieldLayout& count = row(field.count);
    const size_t unit = field.countsBytes ? TQX_elementSize(field) : 1;
    const uint64_t highest = ~uint64_t{0} >> (64 - count.width);
    const bool isBlocks = field.kind == TQX_FieldKind::Blocks;
    if (elements * unit > highest || (!isBlocks && elements > field.elements)) {
        throw LineError(
            fmt::format("{} elements, there is room for {}", elements,
                        isBlocks ? highest : std::min<uint64_t>(highest / unit, field.elements)));
    }
    const auto [known, isFirst] = m_countedBy.emplace(field.count, elements);
    if (!isFirst && known->second != elements) {
        throw LineError(fmt::format("{} elements, but {} for others that {} counts", elements,
                                    known->second, count.name));
    }
    if (isBlocks)
        return;
    if (!isGiven(field.count) || TQX_unsignedValue(count, m_record) / unit != elements)
        storeInteger(count, m_record, 0, elements * unit);
}

void Filler::fillArray(int index)
{
    const TQX_FieldLayout& field = row(index);
    atField(field, [&] { setCount(index, arrayOf(valueOf(index)).size()); });
    const json::array_t& elements = arrayOf(valueOf(index));
    for (uint32_t i = 0; i < elements.size(); ++i)
        atElement(field, i, [&] { storeElement(field, m_record, i, elements[i]); });
}

void Filler::fillText(int index)
{
    const TQX_FieldLayout& field = row(index);
    const std::string text = latin1Of(valueOf(index), field.elements);
    if (field.count >= 0)
        setCount(index, text.size());
    auto* characters = static_cast<char*>(TQX_element(field, m_record));
    const size_t end = field.count >= 0 ? text.size() : field.elements;
    std::memcpy(characters, text.data(), text.size());
    std::memset(characters + text.size(), 0, end + 1 - text.size());
}

/// Sets the entry lengths that stand in this record, those of nested entries included, unless
/// they are given.
void Filler::setEntryLengths(const TQX_TypeLayout& owner)
{
    const auto* header = static_cast<const TQX_MainHeader_s*>(mainOf(m_type, m_record));
    for (int i = 0; i < owner.fieldCount; ++i) {
        const TQX_FieldLayout& field = owner.fields[i];
        if (field.recordType == 0)
            continue;
        const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
        const bool isHere =
            &owner == &m_type ? !field.lengthInMain || m_type.linksToMain == 0 : field.lengthInMain;
        if (field.length >= 0 && isHere && !isGiven(field.length)) {
            const uint64_t known = TQX_unsignedValue(row(field.length), m_record);
            storeInteger(
                row(field.length), m_record, 0,
                std::max<uint64_t>(known, TQX_entrySize(field.recordType, header->Revision)));
        }
        if (m_type.linksToMain == 0)
            setEntryLengths(sub);
    }
}

void Filler::fillBlocks(int index)
{
    const TQX_FieldLayout& field = row(index);
    atField(field, [&] { setCount(index, arrayOf(valueOf(index)).size()); });
    const json::array_t& entries = arrayOf(valueOf(index));
    storeInteger(row(field.count), m_record, 0, 0);
    // All are appended before the first is filled: appending moves the others.
    for (size_t i = 0; i < entries.size(); ++i)
        field.append(m_record);
    for (uint32_t i = 0; i < entries.size(); ++i) {
        atElement(field, i, [&] {
            fillRecord(*TQX_layout(field.recordType), TQX_element(field, m_record, i),
                       objectOf(entries[i]));
        });
    }
}

void Filler::fillEmbedded(int index)
{
    const TQX_FieldLayout& field = row(index);
    const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
    void* entry = TQX_element(field, m_record);
    sub.init(entry);
    static_cast<KorcgHeader_s*>(entry)->korcg_father = m_record;
    if (isGiven(index))
        atField(field, [&] { fillRecord(sub, entry, objectOf(valueOf(index))); });
}

void Filler::fillContent(int index)
{
    const TQX_FieldLayout& field = row(index);
    if (!field.alwaysSent && !TQX_isPresent(m_type, field, m_record))
        return;
    switch (field.kind) {
    case TQX_FieldKind::Array:
    case TQX_FieldKind::CountedArray:
        // Initialising leaves most of a counted array as it was.
        std::memset(TQX_element(field, m_record), 0,
                    size_t{field.elements} * TQX_elementSize(field));
        if (isGiven(index))
            fillArray(index);
        fillWord(index);
        break;
    case TQX_FieldKind::Text:
    case TQX_FieldKind::CountedText:
        if (isGiven(index))
            atField(field, [&] { fillText(index); });
        break;
    case TQX_FieldKind::Blocks:
        if (isGiven(index))
            fillBlocks(index);
        break;
    case TQX_FieldKind::Embedded:
        fillEmbedded(index);
        break;
    case TQX_FieldKind::Value:
    case TQX_FieldKind::Bits:
    case TQX_FieldKind::Derived:
        return;
    }
    if (field.count >= 0 && m_countedBy.count(field.count) == 0 &&
        TQX_unsignedValue(row(field.count), m_record) != 0) {
        throw LineError::at(row(field.count).name,
                            fmt::format("is not 0, but {} is not given", field.name));
    }
}

/// Makes the three forms of a main block's number and revision agree with each other.
void Filler::settleId()
{
    auto* header = static_cast<TQX_MainHeader_s*>(m_record);
    if (header->Sync1 != '$' || header->Sync2 != '@')
        throw LineError("the sync characters are not those of a block");
    if ((header->ID & 0x1fffU) == 0)
        header->ID = static_cast<uint16_t>(header->ID | m_type.blockNumber);
    header->BlockNumber = header->ID & 0x1fffU;
    header->Revision = static_cast<uint8_t>(header->ID >> 13U);
    if (header->BlockNumber != m_type.blockNumber) {
        throw LineError(fmt::format("the ID is that of block {}, not of {} ({})",
                                    header->BlockNumber, m_type.name, m_type.blockNumber));
    }
}

void Filler::fill()
{
    assignRows();
    for (int i = 0; i < m_type.fieldCount; ++i) {
        if (row(i).kind == TQX_FieldKind::Value)
            fillScalar(i);
    }
    if (m_type.linksToMain == 0)
        settleId();
    setEntryLengths(m_type);
    for (int i = 0; i < m_type.fieldCount; ++i) {
        checkPresence(i);
        fillContent(i);
    }
}

} // namespace

void fillRecord(const TQX_TypeLayout& type, void* record, const Object& values)
{
    Filler(type, record, values).fill();
}

} // namespace tqx
