#include "model/CheckParts.h"
#include "model/Identifiers.h"
#include "model/Limits.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <map>
#include <set>
#include <vector>

namespace korcg::generator
{

namespace
{

/// What described and reserved types have in common. Numbers that could not be read are not
/// positive, and names that could not be read are empty; both are reported already.
struct Identity {
    const std::string& name;
    int record;
    int number;
    const Location& where;
};

std::vector<Identity> identities(const Format& format)
{
    std::vector<Identity> all;
    for (const RecordType& type : format.types) {
        if (!type.name.empty() || !type.broken)
            all.push_back({type.name, type.record, type.number, type.where});
    }
    for (const ReservedType& type : format.reserved)
        all.push_back({type.name, type.record, type.number, type.where});
    return all;
}

void checkUnique(const Format& format, Errors& errors)
{
    std::map<std::string, const Identity*> names;
    std::map<int, const Identity*> records;
    std::map<int, const Identity*> numbers;
    const std::vector<Identity> all = identities(format);
    for (const Identity& type : all) {
        const auto taken = [&](const std::string& what, const Identity& by) {
            errors.add(type.where, fmt::format("{} of {} is taken by {} ({}:{})", what, type.name,
                                               by.name, by.where.file, by.where.line));
        };
        // Code names are upper case, so names must differ in more than case.
        if (const auto [entry, isNew] = names.emplace(upperName(type.name), &type); !isNew)
            taken("the name", *entry->second);
        const auto claim = [&](std::map<int, const Identity*>& owners, int number,
                               std::string_view what) {
            if (number <= 0)
                return;
            if (const auto [entry, isNew] = owners.emplace(number, &type); !isNew)
                taken(fmt::format("{} {}", what, number), *entry->second);
        };
        claim(records, type.record, "record number");
        claim(numbers, type.number, "block number");
    }
}

void checkRanges(const Format& format, Errors& errors)
{
    for (const Identity& type : identities(format)) {
        if (!isIdentifier(type.name))
            errors.add(type.where, fmt::format("'{}' cannot name a type", type.name));
        if (type.record > lastRecord) {
            errors.add(type.where, fmt::format("record number {} of {} is above {}", type.record,
                                               type.name, lastRecord));
        }
        if (type.number > lastBlockNumber) {
            errors.add(type.where, fmt::format("block number {} of {} is above {}", type.number,
                                               type.name, lastBlockNumber));
        }
    }
}

void checkRegistration(const Format& format, Errors& errors)
{
    std::map<std::string, bool> hasMessage; // by name of a type
    for (const RecordType& type : format.types)
        hasMessage.emplace(type.name, type.hasMessage);
    for (const ReservedType& type : format.reserved)
        hasMessage.emplace(type.name, true);

    std::set<std::string> registered;
    for (const RegistrationEntry& entry : format.registration) {
        const auto type = hasMessage.find(entry.name);
        if (!registered.insert(entry.name).second) {
            errors.add(entry.where, fmt::format("{} is registered twice", entry.name));
        } else if (type == hasMessage.end()) {
            errors.add(entry.where, fmt::format("registered type {} does not exist", entry.name));
        } else if (!type->second) {
            errors.add(entry.where,
                       fmt::format("registered type {} has no message class", entry.name));
        }
    }
    for (const RecordType& type : format.types) {
        if (type.hasMessage && !type.name.empty() && registered.count(type.name) == 0)
            errors.add(type.where, fmt::format("{} is missing in the registration", type.name));
    }
}

} // namespace

void checkIdentities(const Format& format, Errors& errors)
{
    checkUnique(format, errors);
    checkRanges(format, errors);
    checkRegistration(format, errors);
}

} // namespace korcg::generator
