#include "tqx/log/table/NumberColumn.h"

#include "TQX_RecordAccess.h"

#include <algorithm>
#include <cstring>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Number of values processed at a time: intermediate results stay in the cache.
constexpr size_t chunk = 256;

struct alignas(64) Scratch {
    uint8_t bytes[chunk * sizeof(uint64_t)];
};

template<typename Value>
void findIntegers(const void* values, size_t count, const NumberSource& source, uint8_t* flags)
{
    const auto* all = static_cast<const Value*>(values);
    const auto none = static_cast<Value>(source.doNotUse);
    for (size_t i = 0; i < count; ++i)
        flags[i] = all[i] != none ? 1 : 0;
}

template<typename Value>
void findReals(const void* values, size_t count, const NumberSource& source, uint8_t* flags)
{
    const auto* all = static_cast<const Value*>(values);
    const auto none = static_cast<Value>(source.realDoNotUse);
    for (size_t i = 0; i < count; ++i)
        flags[i] = all[i] != none ? 1 : 0;
}

template<typename Value>
void applyTo(const void* values, size_t count, const Scale& scale, void* out)
{
    const auto* all = static_cast<const Value*>(values);
    auto* to = static_cast<double*>(out);
    for (size_t i = 0; i < count; ++i)
        to[i] = scale.apply(static_cast<double>(all[i]));
}

/// Nulls have the index of the first text, for readers that use indices before they check for
/// nulls.
template<typename Index>
void clearNulls(void* indices, size_t count, const uint8_t* flags)
{
    auto* all = static_cast<Index*>(indices);
    for (size_t i = 0; i < count; ++i)
        all[i] = static_cast<Index>(all[i] * flags[i]);
}

template<typename Index>
void replaceAll(void* indices, size_t count, const std::vector<uint8_t>& places)
{
    auto* all = static_cast<Index*>(indices);
    for (size_t i = 0; i < count; ++i)
        all[i] = places[all[i]];
}

uint32_t sizeOf(const ColumnPlan& plan)
{
    if (plan.names)
        return plan.names->getIndexSize();
    return plan.scale ? sizeof(double) : plan.source.size;
}

} // namespace

NumberColumn::FindAvailable NumberColumn::findAvailableFor(const NumberSource& source,
                                                           uint32_t size)
{
    if (!source.hasDoNotUse)
        return nullptr;
    if (source.form == NumberSource::Form::Real)
        return source.size == sizeof(float) ? findReals<float> : findReals<double>;
    switch (size) {
    case 1:
        return findIntegers<uint8_t>;
    case 2:
        return findIntegers<uint16_t>;
    case 4:
        return findIntegers<uint32_t>;
    default:
        return findIntegers<uint64_t>;
    }
}

NumberColumn::Apply NumberColumn::applyFor(const NumberSource& source)
{
    if (source.form == NumberSource::Form::Real)
        return source.size == sizeof(float) ? applyTo<float> : applyTo<double>;
    const bool isSigned = source.form == NumberSource::Form::Signed;
    switch (source.size) {
    case 1:
        return isSigned ? applyTo<int8_t> : applyTo<uint8_t>;
    case 2:
        return isSigned ? applyTo<int16_t> : applyTo<uint16_t>;
    case 4:
        return isSigned ? applyTo<int32_t> : applyTo<uint32_t>;
    default:
        return isSigned ? applyTo<int64_t> : applyTo<uint64_t>;
    }
}

NumberColumn::NumberColumn(const ColumnPlan& column)
    : m_plan(column), m_size(sizeOf(column)),
      m_readSize(column.names ? m_size : column.source.size),
      m_readings{Reading{column.source.place, gatherFor(column.source.place, m_readSize)},
                 Reading{column.placeOnWire, gatherFor(column.placeOnWire, m_readSize)}},
      m_findAvailable(findAvailableFor(column.source, m_readSize)),
      m_apply(column.scale ? applyFor(column.source) : nullptr)
{
    for (const DerivedInput& input : column.inputs) {
        m_inputs.push_back({&input, gatherFor(input.source.place, input.source.size),
                            findAvailableFor(input.source, input.source.size)});
    }
}

void NumberColumn::reserve(size_t count)
{
    m_values.reserve(count * m_size);
}

void NumberColumn::appendNulls(size_t count)
{
    std::memset(m_values.extend(count * m_size), 0, count * m_size);
    m_validity.appendNulls(count);
}

void NumberColumn::append(const Run& run)
{
    const Reading& reading = m_readings[run.isOnWire ? 1 : 0];
    for (size_t first = 0; first < run.count; first += chunk) {
        const Run part = run.part(first, std::min(first + chunk, run.count));
        appendSome(part.base + reading.place.offset, part, reading);
    }
}

void NumberColumn::appendSome(const uint8_t* from, const Run& run, const Reading& reading)
{
    Scratch stored;
    uint8_t flags[chunk];
    uint8_t* out = m_values.extend(run.count * m_size);
    uint8_t* read = m_apply ? stored.bytes : out;
    reading.gather(from, run.stride, run.count, reading.place, read);
    if (m_apply)
        m_apply(read, run.count, *m_plan.scale, out);
    if (m_findAvailable) {
        m_findAvailable(read, run.count, m_plan.source, flags);
        // Such arrays are appended one by one and are shorter than a chunk.
        if (m_plan.source.isWhole && std::find(flags, flags + run.count, 1) != flags + run.count)
            std::memset(flags, 1, run.count);
    } else if (!m_inputs.empty()) {
        std::memset(flags, 1, run.count);
    }
    if (!m_inputs.empty())
        checkInputs(run, flags);
    const bool mayBeNull = m_findAvailable || !m_inputs.empty();
    if (m_plan.names)
        finishNames(out, run.count, mayBeNull ? flags : nullptr);
    if (mayBeNull) {
        m_validity.append(flags, run.count);
    } else {
        m_validity.appendValid(run.count);
    }
}

/// Makes indices of codes; flags are null when every code has a text.
void NumberColumn::finishNames(uint8_t* codes, size_t count, const uint8_t* flags) const
{
    const std::vector<uint8_t>& places = m_plan.names->getPlaces();
    const bool isNarrow = m_size == 1;
    if (!places.empty())
        (isNarrow ? replaceAll<uint8_t> : replaceAll<uint16_t>)(codes, count, places);
    if (flags)
        (isNarrow ? clearNulls<uint8_t> : clearNulls<uint16_t>)(codes, count, flags);
}

/// Clears the flags of the values that have an input which is not available.
void NumberColumn::checkInputs(const Run& run, uint8_t* flags) const
{
    Scratch stored;
    uint8_t available[chunk];
    for (const Input& input : m_inputs) {
        const NumberSource& source = input.plan->source;
        if (input.plan->links == 0) {
            input.gather(run.base + source.place.offset, run.stride, run.count, source.place,
                         stored.bytes);
        } else {
            for (size_t i = 0; i < run.count; ++i) {
                const void* record = run.at(i);
                for (unsigned link = 0; link < input.plan->links; ++link)
                    record = static_cast<const KorcgHeader_s*>(record)->korcg_father;
                input.gather(static_cast<const uint8_t*>(record) + source.place.offset, 0, 1,
                             source.place, stored.bytes + i * source.size);
            }
        }
        input.findAvailable(stored.bytes, run.count, source, available);
        for (size_t i = 0; i < run.count; ++i)
            flags[i] = flags[i] & available[i];
    }
}

OwnedArrow<ArrowArray> NumberColumn::finish()
{
    ArrayParts parts = takeParts();
    parts.buffers.push_back(std::exchange(m_values, ColumnBuffer()));
    parts.names = m_plan.names;
    return exportArray(std::move(parts));
}

} // namespace tqx
