#include "model/Numbering.h"

#include "model/Limits.h"
#include "model/Names.h"
#include "model/Values.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace korcg::generator
{

namespace
{

/// Whether the wire can announce more elements than the record holds.
bool canExceedCapacity(const RecordType& type, const Field& field)
{
    if (!field.isCounted() || field.count < 0)
        return false;
    const uint64_t most = maximumOf(type.fields[static_cast<std::size_t>(field.count)]);
    const auto divisor = static_cast<uint64_t>(field.countsBytes ? bitsOf(field.type) / 8 : 1);
    return most / divisor > static_cast<uint64_t>(field.elements);
}

const Field* lastField(const RecordType& type, bool (*matches)(const Field&))
{
    const auto found = std::find_if(type.fields.rbegin(), type.fields.rend(), matches);
    return found == type.fields.rend() ? nullptr : &*found;
}

bool holdsSubBlocks(const Field& field)
{
    return field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded;
}

/// What the first SIZE_UNDERFLOW code is named after: the last sub-block field, else the last
/// field.
std::string_view underflowName(const RecordType& type)
{
    const Field* field = lastField(type, holdsSubBlocks);
    if (!field)
        field = lastField(type, [](const Field& each) { return each.hasCode(); });
    return field ? std::string_view(field->name) : "BODY";
}

/// What the second one of a nested owner is named after: the last field of its fixed part.
std::string_view fixedPartName(const RecordType& type)
{
    const Field* last = nullptr;
    for (const Field& field : type.fields) {
        if (holdsSubBlocks(field))
            break;
        if (field.hasCode() && !field.isCounted())
            last = &field;
    }
    return last ? std::string_view(last->name) : "BODY";
}

class CodeBook
{
public:
    explicit CodeBook(Format& format) : m_format(format)
    {
        m_format.codeNames.clear();
        next("TQX_ERR_INVALID_CRC");
    }

    void runs()
    {
        std::size_t described = 0;
        std::size_t reserved = 0;
        std::vector<const ReservedType*> waiting = byRecord();
        while (described < m_format.types.size() || reserved < waiting.size()) {
            const bool takeReserved =
                described == m_format.types.size() ||
                (reserved < waiting.size() &&
                 waiting[reserved]->record < m_format.types[described].record);
            const int record =
                takeReserved ? waiting[reserved]->record : m_format.types[described].record;
            if (record > bufferOverflowAfterRecord)
                bufferOverflow();
            if (takeReserved) {
                run(*waiting[reserved++]);
            } else {
                run(m_format.types[described++]);
            }
        }
        bufferOverflow();
    }

    void disabled()
    {
        std::vector<std::pair<int, std::pair<std::string, int*>>> mains;
        for (RecordType& type : m_format.types) {
            if (type.isMain())
                mains.push_back({type.record, {type.name, &type.disabled}});
        }
        for (ReservedType& type : m_format.reserved) {
            if (type.number != 0)
                mains.push_back({type.record, {type.name, &type.disabled}});
        }
        std::stable_sort(mains.begin(), mains.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        for (auto& main : mains) {
            *main.second.second =
                next(fmt::format("TQX_ERR_{}_DISABLED", upperName(main.second.first)));
        }
    }

    void end()
    {
        m_format.codeNames.resize(codeCount - 2, "???");
        next("TQX_ERR_INVALID_MESSAGE");
        next("TQX_ERR_EOF");
    }

    int bufferOverflowAt() const { return m_bufferOverflow; }
    int nextCode() const { return -static_cast<int>(m_format.codeNames.size()) - 1; }

private:
    int next(std::string name)
    {
        m_format.codeNames.push_back(std::move(name));
        return -static_cast<int>(m_format.codeNames.size());
    }

    void bufferOverflow()
    {
        if (m_bufferOverflow == 0)
            m_bufferOverflow = next("TQX_ERR_BUFFER_OVERFLOW");
    }

    std::vector<const ReservedType*> byRecord() const
    {
        std::vector<const ReservedType*> types;
        for (const ReservedType& type : m_format.reserved)
            types.push_back(&type);
        std::stable_sort(
            types.begin(), types.end(),
            [](const ReservedType* a, const ReservedType* b) { return a->record < b->record; });
        return types;
    }

    void run(const ReservedType& type)
    {
        for (int i = 0; i < type.codes; ++i)
            next(fmt::format("TQX_ERR_{}_RESERVED", upperName(type.name)));
    }

    void run(RecordType& type)
    {
        const std::string name = upperName(type.name);
        for (Field& field : type.fields) {
            if (!field.hasCode())
                continue;
            const std::string fieldName = upperName(field.name);
            field.code = next(fmt::format("TQX_ERR_{}_{}_EXT_BUFFER_OVERFLOW", name, fieldName));
            if (canExceedCapacity(type, field)) {
                field.capacityCode =
                    next(fmt::format("TQX_ERR_{}_{}_INT_BUFFER_OVERFLOW", name, fieldName));
            }
        }
        const auto underflow = [&](std::string_view field) {
            return next(fmt::format("TQX_ERR_{}_{}_SIZE_UNDERFLOW", name, upperName(field)));
        };
        type.sizeUnderflow = underflow(underflowName(type));
        // Two places of such a decoder compare lengths; the second code stays unused.
        if (!type.isMain() && type.level > 0)
            underflow(fixedPartName(type));
        type.internal = next(fmt::format("TQX_ERR_{}_INTERNAL", name));
        if (type.isMain())
            type.crcChecksum = next(fmt::format("TQX_ERR_{}_CRC_CHECKSUM", name));
    }

    Format& m_format;
    int m_bufferOverflow = 0;
};

void expectCode(const Format& format, Errors& errors, std::string_view what, int code, int expected)
{
    if (code == expected)
        return;
    const Location where =
        format.reserved.empty() ? format.types.back().where : format.reserved.front().where;
    errors.add(where, fmt::format("{} gets code {} instead of {}: the runs in front have {} code{} "
                                  "too {}",
                                  what, code, expected, std::abs(code - expected),
                                  std::abs(code - expected) == 1 ? "" : "s",
                                  code < expected ? "many" : "few"));
}

} // namespace

void number(Format& format, Errors& errors)
{
    CodeBook book(format);
    book.runs();
    const int firstDisabled = book.nextCode();
    book.disabled();
    const bool isComplete =
        format.types.size() + format.reserved.size() == static_cast<std::size_t>(lastRecord);
    if (isComplete) {
        expectCode(format, errors, "TQX_ERR_BUFFER_OVERFLOW", book.bufferOverflowAt(),
                   bufferOverflowCode);
        expectCode(format, errors, "the first DISABLED code", firstDisabled, firstDisabledCode);
        expectCode(format, errors, "TQX_ERR_INVALID_MESSAGE", book.nextCode(), invalidMessageCode);
    } else if (book.nextCode() < invalidMessageCode) {
        errors.add(format.types.empty() ? Location{} : format.types.back().where,
                   fmt::format("the format needs more than {} codes", codeCount));
    }
    book.end();
}

} // namespace korcg::generator
