#include "model/CheckParts.h"
#include "model/Identifiers.h"
#include "model/Limits.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace korcg::generator
{

namespace
{

/// Names that could not be read are empty, which is reported already.
bool isRead(const RecordType& type)
{
    return !type.name.empty() || !type.broken;
}

void checkUnique(const Format& format, Errors& errors)
{
    std::map<std::string, const RecordType*> names;
    std::map<int, const RecordType*> records;
    std::map<int, const RecordType*> numbers;
    for (const RecordType& type : format.types) {
        if (!isRead(type))
            continue;
        const auto taken = [&](const std::string& what, const RecordType& by) {
            errors.add(type.where, fmt::format("{} of {} is taken by {} ({}:{})", what, type.name,
                                               by.name, by.where.file, by.where.line));
        };
        // Code names are upper case, so names must differ in more than case.
        if (const auto [entry, isNew] = names.emplace(upperName(type.name), &type); !isNew)
            taken("the name", *entry->second);
        const auto claim = [&](std::map<int, const RecordType*>& owners, int number,
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
    const int lastFirst = format.first.types;
    for (const RecordType& type : format.types) {
        if (!isRead(type))
            continue;
        if (!isIdentifier(type.name))
            errors.add(type.where, fmt::format("'{}' cannot name a type", type.name));
        if (type.edition == 1 && lastFirst != 0 && type.record > lastFirst) {
            errors.add(type.where, fmt::format("record number {} of {} is above {}", type.record,
                                               type.name, lastFirst));
        }
        if (type.record > format.lastFirstRecord + laterTypes) {
            errors.add(
                type.where,
                fmt::format("record number {} of {} is above {}, the last that a context has "
                            "a bit for",
                            type.record, type.name, format.lastFirstRecord + laterTypes));
        }
        if (type.number > lastBlockNumber) {
            errors.add(type.where, fmt::format("block number {} of {} is above {}", type.number,
                                               type.name, lastBlockNumber));
        }
    }
}

void checkTotal(const Format& format, Errors& errors)
{
    const auto types = std::count_if(format.types.begin(), format.types.end(),
                                     [](const RecordType& type) { return type.edition == 1; });
    if (format.first.types != 0 && types != format.first.types) {
        errors.add(format.first.where, fmt::format("the first edition has {} types, not {}", types,
                                                   format.first.types));
    }
}

void checkRegistration(const Format& format, Errors& errors)
{
    std::map<std::string, bool> hasMessage; // by name of a type
    for (const RecordType& type : format.types)
        hasMessage.emplace(type.name, type.hasMessage);

    std::set<std::string> registered;
    for (const RegistrationEntry& entry : format.registration) {
        const auto type = hasMessage.find(entry.name);
        if (!registered.insert(entry.name).second) {
            errors.add(entry.where, fmt::format("{} is registered twice", entry.name));
        } else if (type == hasMessage.end() && entry.edition <= format.edition) {
            errors.add(entry.where, fmt::format("registered type {} does not exist", entry.name));
        } else if (type != hasMessage.end() && !type->second) {
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
    checkTotal(format, errors);
    checkRegistration(format, errors);
}

} // namespace korcg::generator
