#include "model/CheckParts.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <set>

namespace korcg::generator
{

namespace
{

/// Whether all sub-blocks of the type are known.
bool checkSubTypes(const Format& format, const RecordType& type, Errors& errors)
{
    const std::size_t errorsBefore = errors.count();
    for (const Field& field : type.fields) {
        if (field.subType.empty())
            continue;
        const RecordType* const sub = format.find(field.subType);
        if (!sub) {
            errors.add(field.where, fmt::format("{} holds {}, which does not exist",
                                                qualified(type, field), field.subType));
        } else if (sub->isMain()) {
            errors.add(field.where, fmt::format("{} holds {}, which is a main block",
                                                qualified(type, field), field.subType));
        }
    }
    return errors.count() == errorsBefore;
}

/// In the first edition, types without sub-blocks have the lowest numbers, then come those whose
/// sub-blocks have none, then those whose sub-blocks have some. What later editions add to them
/// does not count.
void checkLevel(const FirstEdition& first, const RecordType& type, Errors& errors)
{
    struct Range {
        int first;
        int last;
        const char* meaning;
    };
    const int last = first.types != 0 ? first.types : std::numeric_limits<int>::max();
    const Range ranges[] = {
        {1, first.leaves, "own no sub-block"},
        {first.leaves + 1, first.owners, "own sub-blocks that own none"},
        {first.owners + 1, last, "own sub-blocks that own sub-blocks"},
    };
    static const char* const actual[] = {"owns no sub-block", "owns sub-blocks that own none",
                                         "owns sub-blocks that own sub-blocks"};
    if (type.level >= static_cast<int>(std::size(ranges))) {
        errors.add(type.where,
                   fmt::format("{} nests sub-blocks deeper than two levels", type.name));
        return;
    }
    if (type.edition != 1 || first.owners == 0 || type.record < 1 || type.record > last)
        return;
    const Range& range = *std::find_if(std::begin(ranges), std::end(ranges),
                                       [&](const Range& each) { return type.record <= each.last; });
    if (&range - ranges != type.ownLevel) {
        errors.add(type.where,
                   fmt::format("{} {}, but record numbers {} to {} {}", type.name,
                               actual[type.ownLevel], range.first, range.last, range.meaning));
    }
}

/// Sub-blocks that look up a length assert the kind of the main block, one kind for all of them.
void checkKinds(const Format& format, const RecordType& type, Errors& errors)
{
    for (const Field& field : type.fields) {
        if (!field.lengthInMain)
            continue;
        if (type.isMain()) {
            errors.add(field.where, fmt::format("{} takes its length from a main block, but is "
                                                "in one",
                                                qualified(type, field)));
            continue;
        }
        std::set<std::string> kinds;
        for (const int owner : type.owners) {
            const RecordType& main = format.types[static_cast<std::size_t>(owner)];
            kinds.insert(main.kindName);
            if (main.isMain() && main.kindName.empty()) {
                errors.add(main.where, fmt::format("{} needs 'kind': {} takes a length from it",
                                                   main.name, qualified(type, field)));
            }
        }
        kinds.erase("");
        if (kinds.size() > 1) {
            errors.add(field.where, fmt::format("the main blocks around {} are of different kinds",
                                                qualified(type, field)));
        }
    }
}

/// The main block's length must have been read before its sub-blocks are.
void checkMainLengths(const Format& format, const RecordType& type, Errors& errors)
{
    for (const Field& field : type.fields) {
        if (!field.lengthInMain || field.length < 0)
            continue;
        for (const int owner : type.owners) {
            const RecordType& main = format.types[static_cast<std::size_t>(owner)];
            for (std::size_t row = 0; row < main.fields.size(); ++row) {
                if (main.fields[row].subType == type.name && static_cast<int>(row) < field.length) {
                    errors.add(main.fields[row].where,
                               fmt::format("{} precedes the length that {} takes",
                                           qualified(main, main.fields[row]),
                                           qualified(type, field)));
                }
            }
        }
    }
}

} // namespace

void checkNesting(const Format& format, Errors& errors)
{
    for (const RecordType& type : format.types) {
        const bool subTypesAreKnown = checkSubTypes(format, type, errors);
        if (!type.isMain() && type.owners.empty())
            errors.add(type.where, fmt::format("no type holds the sub-block {}", type.name));
        if (type.broken)
            continue;
        if (subTypesAreKnown)
            checkLevel(format.first, type, errors);
        checkKinds(format, type, errors);
        checkMainLengths(format, type, errors);
    }
}

} // namespace korcg::generator
