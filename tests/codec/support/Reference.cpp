#include "Reference.h"

#include "korcg_bits.h"

#include <bitset>

namespace reference
{

namespace
{

using namespace Kor::MessageApi;

unsigned widthOf(TQX_MemberType type)
{
    switch (type) {
    case TQX_MemberType::U16:
    case TQX_MemberType::I16:
        return 16;
    case TQX_MemberType::U32:
    case TQX_MemberType::I32:
    case TQX_MemberType::F32:
        return 32;
    case TQX_MemberType::U64:
    case TQX_MemberType::F64:
        return 64;
    default:
        return 8;
    }
}

struct Reader {
    const std::vector<uint8_t>& bytes;
    uint32_t at = 0;
    int32_t pending = 0;
    unsigned revision = 0;
    const TQX_TypeLayout* main = nullptr;
    const Entry* mainEntry = nullptr;
    Clock* clock = nullptr;

    // One unit of a whole number of bytes, byte by byte.
    bool read(unsigned bits, uint64_t& value)
    {
        if (uint64_t{at} + bits > bytes.size() * 8)
            return false;
        value = 0;
        for (unsigned done = 0; done < bits; done += 8) {
            uint8_t byte = 0;
            korcg_read_u8(bytes.data(), static_cast<uint16_t>(bytes.size()), at + done, 8, &byte);
            value |= uint64_t{byte} << done;
        }
        at += bits;
        return true;
    }

    uint64_t valueOf(const TQX_TypeLayout& type, int row, const Entry& entry) const
    {
        const TQX_FieldLayout& field = type.fields[row];
        if (field.kind == TQX_FieldKind::Bits) {
            const uint64_t word = valueOf(type, field.parent, entry);
            return word >> field.shift & (~uint64_t{0} >> (64U - field.width));
        }
        const auto found = entry.fields.find(field.name);
        return found == entry.fields.end() || found->second.values.empty()
                   ? 0
                   : found->second.values.front();
    }

    bool wanted(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const Entry& entry) const
    {
        if (field.alwaysSent || field.presence == TQX_Presence::Always)
            return true;
        if (pending != 0)
            return false;
        if (field.presence == TQX_Presence::Selected)
            return valueOf(type, field.selector, entry) == field.presenceValue;
        return field.presence == TQX_Presence::SinceRevision ? revision >= field.presenceValue
                                                             : revision == field.presenceValue;
    }

    void readScalar(const TQX_FieldLayout& field, Entry& entry)
    {
        uint64_t value = 0;
        if (!read(widthOf(field.type), value)) {
            pending = field.code;
            return;
        }
        entry.fields[field.name].values.push_back(value);
        entry.bits += widthOf(field.type);
        if (main == nullptr && std::string(field.name) == "ID")
            revision = static_cast<unsigned>(value >> 13U);
        if (main == nullptr && std::string(field.name) == "TOW")
            entry.fields["TOWc"].values.push_back(continuous(static_cast<uint32_t>(value)));
    }

    // Going back by more than two days is taken for a new week; all sums are modulo 2^32.
    uint32_t continuous(uint32_t tow) const
    {
        if (clock == nullptr || tow == 0xffffffffU)
            return 0xffffffffU;
        if ((uint64_t{tow} + 2 * 86400000U) % 0x100000000U < clock->last)
            clock->rollovers = (clock->rollovers + 1) % 256;
        clock->last = tow;
        return static_cast<uint32_t>(uint64_t{clock->rollovers} * 7 * 86400000U + tow);
    }

    void readArray(const TQX_TypeLayout& type, const TQX_FieldLayout& field, Entry& entry)
    {
        const unsigned width = widthOf(field.type);
        uint64_t count = field.elements;
        uint64_t tail = 0;
        if (field.count >= 0) {
            count = valueOf(type, field.count, entry);
            if (field.countsBytes) {
                tail = count % (width / 8);
                count /= width / 8;
            }
        }
        Content& content = entry.fields[field.name];
        for (uint64_t i = 0; i < count; ++i) {
            uint64_t value = 0;
            if (i == field.elements) {
                pending = field.code - 1;
                return;
            }
            if (!read(width, value)) {
                pending = field.code;
                return;
            }
            content.values.push_back(value);
            entry.bits += width;
        }
        uint64_t last = 0;
        for (uint64_t i = 0; i < tail; ++i) {
            uint64_t value = 0;
            if (!read(8, value)) {
                pending = field.code;
                break;
            }
            last |= value << (8 * i);
            entry.bits += 8;
        }
        if (tail != 0)
            content.values.push_back(last);
    }

    int32_t readEntries(const TQX_TypeLayout& type, const TQX_FieldLayout& field, Entry& entry)
    {
        const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
        const uint64_t count =
            field.kind == TQX_FieldKind::Blocks ? valueOf(type, field.count, entry) : 1;
        uint64_t length = 0;
        if (field.length >= 0) {
            length = field.lengthInMain ? valueOf(*main, field.length, *mainEntry)
                                        : valueOf(type, field.length, entry);
        }
        for (uint64_t i = 0; i < count; ++i) {
            Reader inner = *this;
            inner.main = main == nullptr ? &type : main;
            inner.mainEntry = main == nullptr ? &entry : mainEntry;
            Entry child;
            const int32_t result =
                inner.readRecord(sub, static_cast<uint32_t>(length) * 8, true, child);
            at = inner.at;
            if (result < 0)
                return result;
            entry.bits += child.bits;
            entry.fields[field.name].entries.push_back(child);
        }
        return 0;
    }

    int32_t readRecord(const TQX_TypeLayout& type, uint32_t length, bool inside, Entry& entry)
    {
        entry.recordType = type.recordType;
        const uint32_t start = at;
        bool measured = length == 0;
        for (int row = 0; row < type.fieldCount; ++row) {
            const TQX_FieldLayout& field = type.fields[row];
            switch (field.kind) {
            case TQX_FieldKind::Bits:
            case TQX_FieldKind::Derived:
                break;
            case TQX_FieldKind::Value:
                if (wanted(type, field, entry))
                    readScalar(field, entry);
                break;
            case TQX_FieldKind::Blocks:
            case TQX_FieldKind::Embedded:
                if (pending != 0 || !wanted(type, field, entry))
                    break;
                if (inside && !measured &&
                    (field.kind == TQX_FieldKind::Blocks || field.length >= 0)) {
                    if (at - start > length)
                        return type.sizeUnderflow;
                    at = start + length;
                    measured = true;
                }
                if (const int32_t result = readEntries(type, field, entry); result < 0)
                    return result;
                break;
            default:
                if (pending == 0 && wanted(type, field, entry))
                    readArray(type, field, entry);
                break;
            }
        }
        if (!measured && pending == 0) {
            if (at - start > length)
                return type.sizeUnderflow;
            at = start + length; // wraps
        }
        if (pending == 0 && (at < start || at - start >= 0x80000000U))
            return type.internal;
        return pending != 0 ? pending : static_cast<int32_t>(at - start);
    }
};

} // namespace

Outcome decode(const TQX_TypeLayout& type, const std::vector<uint8_t>& bytes, const Start& start)
{
    Outcome outcome;
    Reader reader{bytes};
    reader.at = start.offset;
    reader.clock = start.clock;
    if (start.above != nullptr && start.above->main != nullptr) {
        reader.main = start.above->main;
        reader.mainEntry = &start.above->values;
        reader.revision = start.above->revision;
    }
    outcome.result = reader.readRecord(type, start.length, start.above != nullptr, outcome.block);
    outcome.offset = reader.at;
    return outcome;
}

} // namespace reference
