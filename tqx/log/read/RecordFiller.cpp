#include "tqx/log/read/RecordFiller.h"

#include "TQX_Format.h"
#include "TQX_LayoutFunctions.h"
#include "TQX_codec.h"
#include "tqx/log/read/LineError.h"
#include "tqx/log/read/StoredValue.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace tqx
{

using namespace Kor::MessageApi;

/// The filling of one record.
class RecordFilling
{
public:
    RecordFilling(RecordFiller& filler, const TQX_TypeLayout& layout, void* target,
                  const JsonValue& object)
        : m_filler(filler), m_plan(filler.planOf(layout)), m_type(layout), m_record(target),
          m_values(object), m_firstGiven(filler.m_given.size()),
          m_firstAnnounced(filler.m_announced.size())
    {
        filler.m_given.resize(m_firstGiven + layout.fieldCount, nullptr);
    }
    ~RecordFilling()
    {
        m_filler.m_given.resize(m_firstGiven);
        m_filler.m_announced.resize(m_firstAnnounced);
    }
    RecordFilling(const RecordFilling&) = delete;
    RecordFilling& operator=(const RecordFilling&) = delete;

    void fill();

private:
    const TQX_FieldLayout& row(int index) const { return m_type.fields[index]; }
    const JsonValue*& given(int index)
    {
        return m_filler.m_given[m_firstGiven + static_cast<size_t>(index)];
    }
    bool isGiven(int index) { return given(index) != nullptr; }
    const JsonValue& valueOf(int index) { return *given(index); }

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
    void announce(int count, size_t elements);
    bool isAnnounced(int count) const;
    void setCount(int index, size_t elements);
    void setEntryLengths(const FillPlan& owner);
    void settleId();
    void checkPresence(int index);

    RecordFiller& m_filler;
    const FillPlan& m_plan;
    const TQX_TypeLayout& m_type;
    void* m_record;
    const JsonValue& m_values;
    size_t m_firstGiven;     ///< of the filler's, the first that is this record's
    size_t m_firstAnnounced; ///< likewise
};

namespace
{

const void* mainOf(const TQX_TypeLayout& type, const void* record)
{
    for (unsigned link = 0; link < type.linksToMain; ++link)
        record = static_cast<const KorcgHeader_s*>(record)->korcg_father;
    return record;
}

/// Calls `step`, and adds the field's name as the place to what it throws.
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

} // namespace

void RecordFilling::assignRows()
{
    bool isKnown = true;
    int derived = m_type.fieldCount; // the first one
    int guess = 0;
    for (const JsonValue& value : m_values) {
        const int index = m_plan.find(value.name(), guess);
        if (index < 0) {
            isKnown = false;
            continue;
        }
        given(index) = &value;
        guess = index + 1;
        if (row(index).kind == TQX_FieldKind::Derived)
            derived = std::min(derived, index);
    }
    if (derived != m_type.fieldCount) {
        throw LineError::at(row(derived).name, "is computed by decoding and cannot be given");
    }
    if (!isKnown)
        failUnknown();
}

/// Reports the alphabetically first unknown name.
void RecordFilling::failUnknown() const
{
    std::string_view unknown;
    for (const JsonValue& value : m_values) {
        if (m_plan.find(value.name(), 0) < 0 &&
            (unknown.data() == nullptr || value.name() < unknown))
            unknown = value.name();
    }
    throw LineError(unknownName("field", unknown, m_plan.getNames()));
}

void RecordFilling::checkPresence(int index)
{
    const TQX_FieldLayout& field = row(index);
    if (!isGiven(index) || field.alwaysSent || TQX_isPresent(m_type, field, m_record))
        return;
    switch (field.presence) {
    case TQX_Presence::SinceRevision:
        throw LineError::at(field.name,
                            fmt::format("exists only from revision {} on", field.presenceValue));
    case TQX_Presence::OnlyRevision:
        throw LineError::at(field.name,
                            fmt::format("exists only in revision {}", field.presenceValue));
    case TQX_Presence::Selected:
        throw LineError::at(field.name, fmt::format("exists only when {} is {}",
                                                    row(field.selector).name, field.presenceValue));
    case TQX_Presence::Always:
        return;
    }
}

void RecordFilling::fillBits(int word, int part)
{
    const TQX_FieldLayout& bits = row(part);
    const TQX_FieldLayout& field = row(word);
    const auto fillElement = [&](uint32_t index, const JsonValue& given) {
        if (bits.summary != TQX_Summary::None) {
            const uint64_t whole = TQX_unsignedValue(field, m_record, index);
            if (TQX_bitsOf(&row(word + 1), bits, whole) != bitsOf(bits, given))
                throw LineError("contradicts the bits that it summarises");
            return;
        }
        const uint64_t mask = ~uint64_t{0} >> (64 - bits.width);
        const uint64_t value = bitsOf(bits, given);
        const uint64_t whole = TQX_unsignedValue(field, m_record, index);
        if (!isGiven(word)) {
            storeInteger(field, m_record, index,
                         (whole & ~(mask << bits.shift)) | value << bits.shift);
        } else if ((whole >> bits.shift & mask) != value) {
            throw LineError(fmt::format("contradicts {}", field.name));
        }
    };
    if (field.kind == TQX_FieldKind::Value)
        return fillElement(0, valueOf(part));
    const JsonValue& elements = arrayOf(valueOf(part));
    if (elements.size() > field.elements) {
        throw LineError(
            fmt::format("{} elements, there is room for {}", elements.size(), field.elements));
    }
    uint32_t index = 0;
    for (const JsonValue& element : elements)
        fillElement(index++, element);
    setCount(word, elements.size());
}

/// The bit ranges of a packed field. Given together with the word, they must agree with it.
void RecordFilling::fillWord(int word)
{
    for (const bool isSummary : {false, true}) { // these when all others are known
        for (int part = word + 1; part < m_plan.afterBits(word); ++part) {
            if (isGiven(part) && isSummary == (row(part).summary != TQX_Summary::None))
                atField(row(part), [&] { fillBits(word, part); });
        }
    }
}

void RecordFilling::fillScalar(int index)
{
    if (isGiven(index))
        atField(row(index), [&] { storeElement(row(index), m_record, 0, valueOf(index)); });
    fillWord(index);
    splitWord(index);
}

/// Sets the members of the bit ranges, which may decide what other fields there are.
void RecordFilling::splitWord(int word)
{
    for (int i = word + 1; i < m_plan.afterBits(word); ++i) {
        const TQX_FieldLayout& part = row(i);
        const uint64_t sign = TQX_isSigned(part) ? uint64_t{1} << (part.width - 1) : 0;
        const uint64_t value =
            TQX_bitsOf(&row(word + 1), part, TQX_unsignedValue(row(word), m_record));
        storeInteger(part, m_record, 0, (value ^ sign) - sign);
    }
}

bool RecordFilling::isAnnounced(int count) const
{
    const auto& all = m_filler.m_announced;
    return std::any_of(all.begin() + static_cast<std::ptrdiff_t>(m_firstAnnounced), all.end(),
                       [&](const auto& one) { return one.first == count; });
}

/// Records what a count must be; everything it counts must agree.
void RecordFilling::announce(int count, size_t elements)
{
    auto& all = m_filler.m_announced;
    for (size_t i = m_firstAnnounced; i < all.size(); ++i) {
        if (all[i].first == count && all[i].second != elements) {
            throw LineError(fmt::format("{} elements, but {} for others that {} counts", elements,
                                        all[i].second, row(count).name));
        }
    }
    if (!isAnnounced(count))
        all.emplace_back(count, elements);
}

/// Counts follow from the arrays. A given count of bytes may end inside an element after those of
/// the array.
void RecordFilling::setCount(int index, size_t elements)
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
    announce(field.count, elements);
    if (isBlocks)
        return;
    if (!isGiven(field.count) || TQX_unsignedValue(count, m_record) / unit != elements)
        storeInteger(count, m_record, 0, elements * unit);
}

void RecordFilling::fillArray(int index)
{
    const TQX_FieldLayout& field = row(index);
    atField(field, [&] { setCount(index, arrayOf(valueOf(index)).size()); });
    uint32_t i = 0;
    for (const JsonValue& element : valueOf(index)) {
        atElement(field, i, [&] { storeElement(field, m_record, i, element); });
        ++i;
    }
}

void RecordFilling::fillText(int index)
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

/// Sets the entry lengths that are in this record, those of nested entries included, unless they
/// are given.
void RecordFilling::setEntryLengths(const FillPlan& owner)
{
    const auto* header = static_cast<const TQX_MainHeader_s*>(mainOf(m_type, m_record));
    for (const int index : owner.getSubBlocks()) {
        const TQX_FieldLayout& field = owner.getType().fields[index];
        const bool isHere =
            &owner == &m_plan ? !field.lengthInMain || m_type.linksToMain == 0 : field.lengthInMain;
        if (field.length >= 0 && isHere && !isGiven(field.length)) {
            const uint64_t known = TQX_unsignedValue(row(field.length), m_record);
            storeInteger(row(field.length), m_record, 0,
                         std::max<uint64_t>(known, TQX_entrySizeOf(*field.sub, header->Revision)));
        }
        if (m_type.linksToMain == 0)
            setEntryLengths(m_filler.planOf(*field.sub));
    }
}

void RecordFilling::fillBlocks(int index)
{
    const TQX_FieldLayout& field = row(index);
    atField(field, [&] { setCount(index, arrayOf(valueOf(index)).size()); });
    const JsonValue& entries = valueOf(index);
    storeInteger(row(field.count), m_record, 0, 0);
    // All are appended before the first is filled: appending moves the others.
    for (size_t i = 0; i < entries.size(); ++i)
        TQX_appendEntry(m_type, field, m_record);
    const TQX_TypeLayout& sub = *field.sub;
    uint32_t i = 0;
    for (const JsonValue& entry : entries) {
        atElement(field, i,
                  [&] { m_filler.fill(sub, TQX_element(field, m_record, i), objectOf(entry)); });
        ++i;
    }
}

void RecordFilling::fillEmbedded(int index)
{
    const TQX_FieldLayout& field = row(index);
    const TQX_TypeLayout& sub = *field.sub;
    void* entry = TQX_element(field, m_record);
    TQX_initRecord(sub, entry);
    static_cast<KorcgHeader_s*>(entry)->korcg_father = m_record;
    if (isGiven(index))
        atField(field, [&] { m_filler.fill(sub, entry, objectOf(valueOf(index))); });
}

void RecordFilling::fillContent(int index)
{
    const TQX_FieldLayout& field = row(index);
    if (!field.alwaysSent && !TQX_isPresent(m_type, field, m_record))
        return;
    switch (field.kind) {
    case TQX_FieldKind::Array:
    case TQX_FieldKind::CountedArray:
        // Initialising leaves most of a counted array unchanged.
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
    if (field.count >= 0 && !isAnnounced(field.count) &&
        TQX_unsignedValue(row(field.count), m_record) != 0) {
        throw LineError::at(row(field.count).name,
                            fmt::format("is not 0, but {} is not given", field.name));
    }
}

/// Makes the three forms of a main block's number and revision agree.
void RecordFilling::settleId()
{
    auto* header = static_cast<TQX_MainHeader_s*>(m_record);
    if (header->Sync1 != '$' || header->Sync2 != '@')
        throw LineError("the sync characters are not those of a block");
    if (TQX_blockNumberOf(header->ID) == 0)
        header->ID = static_cast<uint16_t>(header->ID | m_type.blockNumber);
    header->BlockNumber = TQX_blockNumberOf(header->ID);
    header->Revision = TQX_revisionOf(header->ID);
    if (header->BlockNumber != m_type.blockNumber) {
        throw LineError(fmt::format("the ID is that of block {}, not of {} ({})",
                                    header->BlockNumber, m_type.name, m_type.blockNumber));
    }
}

void RecordFilling::fill()
{
    assignRows();
    for (const int index : m_plan.getValues())
        fillScalar(index);
    if (m_type.linksToMain == 0)
        settleId();
    setEntryLengths(m_plan);
    for (const int index : m_plan.getContents()) {
        checkPresence(index);
        fillContent(index);
    }
}

void RecordFiller::fill(const TQX_TypeLayout& type, void* record, const JsonValue& values)
{
    RecordFilling(*this, type, record, values).fill();
}

const FillPlan& RecordFiller::planOf(const TQX_TypeLayout& type)
{
    if (m_plans.size() <= type.recordType)
        m_plans.resize(type.recordType + size_t{1});
    std::unique_ptr<FillPlan>& plan = m_plans[type.recordType];
    if (!plan)
        plan = std::make_unique<FillPlan>(type);
    return *plan;
}

} // namespace tqx
