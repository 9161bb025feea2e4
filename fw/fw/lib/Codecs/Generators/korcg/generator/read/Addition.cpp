#include "read/Addition.h"

#include "model/Checks.h"
#include "model/Limits.h"
#include "model/Names.h"
#include "model/Numbering.h"
#include "read/Reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace korcg::generator
{

namespace
{

constexpr int firstAddedCode = -50000; // of those that are built in

/// Sub-blocks that take a length from a main block ask for its kind; here one kind is enough.
void setKinds(Format& format)
{
    for (RecordType& type : format.types) {
        if (type.isMain() && type.kindName.empty())
            type.kindName = "ADDED";
    }
}

void checkKnown(const Format& format, const AddedTo& base, Errors& errors)
{
    for (const RecordType& type : format.types) {
        if (const auto known = base.numbers.find(type.number); known != base.numbers.end()) {
            errors.add(type.where, fmt::format("block number {} of {} is that of {}", type.number,
                                               type.name, known->second));
        }
        if (const auto known = base.names.find(upperName(type.name)); known != base.names.end()) {
            errors.add(type.where, fmt::format("the name {} is that of a type of the format: {}",
                                               type.name, known->second));
        }
        if (!type.isMain() || type.broken)
            continue;
        if (!type.hasMessage)
            errors.add(type.where, fmt::format("{} is a main block and has a message", type.name));
    }
}

bool isNumber(const Field& field)
{
    return !field.isRepeated && field.subType.empty() && field.type != Scalar::Char;
}

/// An input that exists, as other checks report, is a single number.
void checkInputs(const Format& format, const RecordType& type, const Field& field, Errors& errors)
{
    constexpr std::string_view parent = "parent.";
    for (const std::string& input : field.inputs) {
        const RecordType* owner = &type;
        std::string_view name = input;
        for (; name.rfind(parent, 0) == 0 && owner; name.remove_prefix(parent.size())) {
            owner = owner->owners.empty()
                        ? nullptr
                        : &format.types[static_cast<std::size_t>(owner->owners.front())];
        }
        if (!owner)
            continue;
        for (const Field& source : owner->fields) {
            if (identifier(source.name) == name && !isNumber(source)) {
                errors.add(field.where,
                           fmt::format("{}.{} is computed from {}, which is not a single number",
                                       type.name, field.name, input));
            }
        }
    }
}

void checkFormulas(const Format& format, const AddedTo& base, Errors& errors)
{
    for (const RecordType& type : format.types) {
        for (const Field& field : type.fields) {
            if (field.kind != FieldKind::Derived || field.isHeader)
                continue;
            unsigned arguments = 0;
            if (!base.hasFormula(field.function, arguments)) {
                errors.add(field.where, fmt::format("{}.{}: there is no formula '{}'", type.name,
                                                    field.name, field.function));
            } else if (arguments != field.inputs.size()) {
                errors.add(field.where,
                           fmt::format("{}.{}: formula {} takes {} inputs, not {}", type.name,
                                       field.name, field.function, arguments, field.inputs.size()));
            }
            checkInputs(format, type, field, errors);
        }
    }
}

} // namespace

Format loadAddition(const std::vector<Source>& sources, const AddedTo& base, Errors& errors)
{
    Format format = readAddition(sources, base.format, errors);
    setKinds(format);
    Ledger ownLedger;
    Ledger& ledger = base.ledger == nullptr ? ownLedger : *base.ledger;
    numberAddedTypes(format, base.firstRecord, ledger, errors);
    link(format, errors);
    placeFields(format);
    numberAddedCodes(format, base.firstCode, ledger, errors);
    check(format, errors);
    checkKnown(format, base, errors);
    if (base.hasFormula)
        checkFormulas(format, base, errors);
    return format;
}

void addTypes(Format& format, const std::vector<Source>& sources, Ledger& ledger, Errors& errors)
{
    AddedTo base;
    base.format.name = format.name;
    base.format.units = format.units;
    base.format.scales = format.scales;
    base.format.symbols = format.symbols;
    for (const RecordType& type : format.types) {
        base.names.emplace(upperName(type.name), type.name);
        if (type.isMain())
            base.numbers.emplace(type.number, type.name);
    }
    const int lastRecord = format.lastFirstRecord + laterTypes;
    base.firstRecord = lastRecord - addedTypes + 1;
    base.firstCode = firstAddedCode;
    base.ledger = &ledger;
    Format added = loadAddition(sources, base, errors);
    if (!added.types.empty() && added.types.back().record > lastRecord) {
        errors.add(added.types.back().where,
                   fmt::format("a build has room for {} added types", addedTypes));
    }
    const int offset = static_cast<int>(format.types.size());
    for (RecordType& type : added.types) {
        type.edition = addedEdition;
        for (Field& field : type.fields)
            field.edition = addedEdition;
        for (int& owner : type.owners)
            owner += offset;
        if (type.registration != 0)
            type.registration += static_cast<int>(format.registration.size());
        format.types.push_back(std::move(type));
    }
    format.registration.insert(format.registration.end(), added.registration.begin(),
                               added.registration.end());
    format.symbols = std::move(added.symbols);
    format.firstAddedCode = firstAddedCode;
    format.addedCodeNames = std::move(added.codeNames);
}

std::vector<Source> readSourcesAt(const std::string& path, Errors& errors)
{
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure))
        return readSources(path, errors);
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        errors.add({path, 0}, "cannot be read");
        return {};
    }
    return {{path, {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}}};
}

} // namespace korcg::generator
