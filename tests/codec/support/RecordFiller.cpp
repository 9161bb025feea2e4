#include "RecordFiller.h"

#include "FieldRoles.h"
#include "RecordMembers.h"

#include <algorithm>

namespace
{

using namespace Kor::MessageApi;

class Filler
{
public:
    Filler(const FillOptions& options, const ValueSource& next) : m_options(options), m_next(next)
    {
    }

    void fill(const TQX_TypeLayout& type, void* record)
    {
        for (int row = 0; row < type.fieldCount; ++row) {
            const TQX_FieldLayout& field = type.fields[row];
            if (field.presence == TQX_Presence::Selected && !TQX_isPresent(type, field, record))
                continue;
            if (field.kind == TQX_FieldKind::Value) {
                value(type, row, record);
            } else if (field.kind == TQX_FieldKind::Embedded) {
                fill(*TQX_layout(field.recordType), TQX_element(field, record));
            } else if (field.kind == TQX_FieldKind::Blocks) {
                entries(field, record);
            } else if (isOnWire(field)) {
                array(field, record);
            }
        }
    }

private:
    uint64_t next(unsigned bytes) { return m_next(bytes) & ~uint64_t{0} >> (64U - 8U * bytes); }

    void value(const TQX_TypeLayout& type, int row, void* record)
    {
        const TQX_FieldLayout& field = type.fields[row];
        const FieldRole& role = roleOf(type, row);
        const unsigned size = TQX_elementSize(field);
        if (type.linksToMain == 0 && field.wireOffset == 4)
            return;
        if (role.counted != nullptr && holdsEntries(*role.counted))
            return;
        uint64_t word = next(size);
        if (!m_options.trustSource && role.sized != nullptr)
            word = 0;
        if (!m_options.trustSource && role.counted != nullptr) {
            const unsigned unit = role.counted->countsBytes ? TQX_elementSize(*role.counted) : 1;
            word %= std::min<uint64_t>(m_options.largestCount, role.counted->elements) * unit + 1;
        }
        writeUnsigned(field, record, 0, selected(role, word));
        setParts(type, row, record);
    }

    // A selecting field mostly takes one of the values that select something.
    uint64_t selected(const FieldRole& role, uint64_t word)
    {
        if (role.choices.empty())
            return word;
        if (const uint64_t which = next(1); which < 224) {
            const FieldRole::Choice& choice =
                role.choices[static_cast<size_t>(which % role.choices.size())];
            word = (word & ~choice.mask) | choice.bits;
        }
        return word;
    }

    // Selectors are looked up in the members that are split from a word.
    static void setParts(const TQX_TypeLayout& type, int row, void* record)
    {
        for (int i = row + 1; i < type.fieldCount && type.fields[i].parent == row; ++i) {
            const TQX_FieldLayout& part = type.fields[i];
            writeUnsigned(part, record, 0,
                          TQX_bitsOf(type.fields + row + 1, part,
                                     TQX_unsignedValue(type.fields[row], record)));
        }
    }

    void array(const TQX_FieldLayout& field, void* record)
    {
        const unsigned last = field.count < 0
                                  ? field.elements
                                  : std::min<unsigned>(m_options.largestCount + 1U, field.elements);
        for (unsigned i = 0; i < last; ++i)
            writeUnsigned(field, record, i, next(TQX_elementSize(field)));
    }

    void entries(const TQX_FieldLayout& field, void* record)
    {
        const uint64_t count = next(1) % (m_options.largestCount + 1);
        for (uint64_t i = 0; i < count; ++i)
            fill(*TQX_layout(field.recordType), field.append(record));
    }

    const FillOptions& m_options;
    const ValueSource& m_next;
};

} // namespace

void fillRecord(const TQX_TypeLayout& type, void* record, unsigned revision,
                const FillOptions& options, const ValueSource& next)
{
    static_cast<TQX_MainHeader_s*>(record)->Revision = static_cast<uint8_t>(revision);
    Filler(options, next).fill(type, record);
}

void appendToAll(const TQX_TypeLayout& type, void* record, unsigned elements)
{
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (field.kind != TQX_FieldKind::Blocks)
            continue;
        const uint64_t most = TQX_elementSize(type.fields[field.count]) == 1 ? 255 : 65535;
        for (unsigned i = 0; i < elements && TQX_elementCount(type, field, record) < most; ++i)
            appendToAll(*TQX_layout(field.recordType), field.append(record), elements);
    }
}
