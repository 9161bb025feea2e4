#include "model/Numbering.h"

#include "model/Names.h"
#include "model/Values.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
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

/// Runs of codes are those of the fields that the type was born with.
bool isOwn(const RecordType& type, const Field& field)
{
    return field.edition <= type.edition;
}

const Field* lastOwnField(const RecordType& type, bool (*matches)(const Field&))
{
    const auto found =
        std::find_if(type.fields.rbegin(), type.fields.rend(),
                     [&](const Field& field) { return isOwn(type, field) && matches(field); });
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
    const Field* field = lastOwnField(type, holdsSubBlocks);
    if (!field)
        field = lastOwnField(type, [](const Field& each) { return each.hasCode(); });
    return field ? std::string_view(field->name) : "BODY";
}

/// What the second one of a nested owner is named after: the last field of its fixed part.
std::string_view fixedPartName(const RecordType& type)
{
    const Field* last = nullptr;
    for (const Field& field : type.fields) {
        if (!isOwn(type, field))
            continue;
        if (holdsSubBlocks(field))
            break;
        if (field.hasCode() && !field.isCounted())
            last = &field;
    }
    return last ? std::string_view(last->name) : "BODY";
}

constexpr int additionEdition = 2; // what the ledger of an addition calls it

class CodeBook
{
public:
    CodeBook(Format& format, Ledger& ledger, Errors& errors)
        : m_format(format), m_ledger(ledger), m_errors(errors)
    {
        m_format.codeNames.clear();
    }

    void firstEdition()
    {
        const FirstEdition& first = m_format.first;
        next("TQX_ERR_INVALID_CRC");
        int overflow = 0;
        const auto addOverflow = [&] {
            if (overflow == 0)
                overflow = next("TQX_ERR_BUFFER_OVERFLOW");
        };
        for (RecordType& type : m_format.types) {
            if (type.edition != 1)
                continue;
            if (first.overflowAfter != 0 && type.record > first.overflowAfter)
                addOverflow();
            run(type);
        }
        addOverflow();
        expect("TQX_ERR_BUFFER_OVERFLOW", overflow, first.overflowCode);
        expect("the first DISABLED code", nextCode(), first.firstDisabled);
        for (RecordType& type : m_format.types) {
            if (type.edition == 1 && type.isMain())
                disabled(type);
        }
        m_format.invalidMessage = next("TQX_ERR_INVALID_MESSAGE");
        m_format.lastFirstCode = next("TQX_ERR_EOF");
        expect("TQX_ERR_EOF", m_format.lastFirstCode, -first.codes);
    }

    /// Types and fields of one edition, in the order of the record types.
    void laterEdition(int edition)
    {
        m_edition = edition;
        for (RecordType& type : m_format.types) {
            if (type.edition == edition) {
                run(type);
                if (type.isMain())
                    disabled(type);
                continue;
            }
            for (Field& field : type.fields) {
                if (type.edition < edition && field.edition == edition)
                    fieldCodes(type, field);
            }
        }
    }

    void addition(int firstCode)
    {
        m_edition = additionEdition;
        m_firstCode = firstCode;
        for (RecordType& type : m_format.types) {
            run(type);
            if (type.isMain())
                disabled(type);
        }
    }

private:
    int nextCode() const { return -static_cast<int>(m_format.codeNames.size()) - 1; }

    int next(std::string name)
    {
        std::vector<std::string>& names = m_format.codeNames;
        if (m_edition == 1) {
            names.push_back(std::move(name));
            return -static_cast<int>(names.size());
        }
        const int code = m_ledger.number(Ledger::Code, m_edition, name, m_where, m_errors);
        if (code >= 0)
            return code;
        const auto index = static_cast<std::size_t>(m_firstCode - code);
        if (names.size() <= index)
            names.resize(index + 1, "???");
        names[index] = std::move(name);
        return code;
    }

    void fieldCodes(const RecordType& type, Field& field)
    {
        if (!field.hasCode())
            return;
        m_where = field.where;
        const std::string name =
            fmt::format("TQX_ERR_{}_{}", upperName(type.name), upperName(field.name));
        field.code = next(name + "_EXT_BUFFER_OVERFLOW");
        if (canExceedCapacity(type, field)) {
            field.capacityCode = next(name + "_INT_BUFFER_OVERFLOW");
            if (field.code != 0 && field.capacityCode != field.code - 1) {
                m_errors.add(field.where, fmt::format("the codes {} and {} of {} in the ledger do "
                                                      "not follow each other",
                                                      field.code, field.capacityCode, name));
            }
        }
    }

    void run(RecordType& type)
    {
        const std::string name = upperName(type.name);
        for (Field& field : type.fields) {
            if (isOwn(type, field))
                fieldCodes(type, field);
        }
        m_where = type.where;
        const auto underflow = [&](std::string_view field) {
            return next(fmt::format("TQX_ERR_{}_{}_SIZE_UNDERFLOW", name, upperName(field)));
        };
        type.sizeUnderflow = underflow(underflowName(type));
        // Two places of such a decoder compare lengths; the second code stays unused.
        if (!type.isMain() && type.ownLevel > 0)
            underflow(fixedPartName(type));
        type.internal = next(fmt::format("TQX_ERR_{}_INTERNAL", name));
        if (type.isMain())
            type.crcChecksum = next(fmt::format("TQX_ERR_{}_CRC_CHECKSUM", name));
    }

    void disabled(RecordType& type)
    {
        m_where = type.where;
        type.disabled = next(fmt::format("TQX_ERR_{}_DISABLED", upperName(type.name)));
    }

    void expect(std::string_view what, int code, int expected)
    {
        if (expected == 0 || code == expected)
            return;
        m_errors.add(m_format.first.where,
                     fmt::format("{} gets code {} instead of {}: the runs in front have {} code{} "
                                 "too {}",
                                 what, code, expected, std::abs(code - expected),
                                 std::abs(code - expected) == 1 ? "" : "s",
                                 code < expected ? "many" : "few"));
    }

    Format& m_format;
    Ledger& m_ledger;
    Errors& m_errors;
    int m_edition = 1;
    int m_firstCode = -1;
    Location m_where; ///< of what gets a code
};

} // namespace

void number(Format& format, Ledger& ledger, Errors& errors)
{
    CodeBook book(format, ledger, errors);
    book.firstEdition();
    ledger.startAt(Ledger::Code, format.lastFirstCode - 1);
    for (int edition = 2; edition <= format.edition; ++edition)
        book.laterEdition(edition);
}

void numberAddedTypes(Format& format, int firstRecord, Ledger& ledger, Errors& errors)
{
    ledger.restart(additionEdition);
    ledger.startAt(Ledger::Type, firstRecord);
    for (RecordType& type : format.types) {
        type.record = ledger.number(Ledger::Type, additionEdition, type.name, type.where, errors);
        format.lastFirstRecord = std::max(format.lastFirstRecord, type.record);
    }
    std::stable_sort(format.types.begin(), format.types.end(),
                     [](const RecordType& a, const RecordType& b) { return a.record < b.record; });
}

void numberAddedCodes(Format& format, int firstCode, Ledger& ledger, Errors& errors)
{
    ledger.startAt(Ledger::Code, firstCode);
    CodeBook(format, ledger, errors).addition(firstCode);
    ledger.finish(errors);
}

} // namespace korcg::generator
