#include "model/CheckParts.h"
#include "model/Identifiers.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <vector>

namespace korcg::generator
{

namespace
{

/// Members of every record that no field may be called like.
constexpr std::string_view bookkeepingPrefix = "korcg_";

/// Members of Message and of its bases, which no getter should hide from those who hold a message
/// by its own class.
constexpr std::string_view messageMembers[] = {
    "getInfo",         "getParentMessage",  "getRawRepresentation", "getRawRepresentationOf",
    "getRawStringFor", "getReferenceCount", "getSubMessages"};

void checkIdentifier(const RecordType& type, const Field& field, Errors& errors)
{
    const std::string name = identifier(field.name);
    if (isKeyword(name)) {
        errors.add(field.where,
                   fmt::format("{} is named like a C++ keyword", qualified(type, field)));
    } else if (!isIdentifier(name)) {
        errors.add(field.where, fmt::format("'{}' cannot name a field of {}: letters, digits, "
                                            "blanks and underscores only, no digit first",
                                            field.name, type.name));
    } else if (name.rfind(bookkeepingPrefix, 0) == 0) {
        errors.add(field.where,
                   fmt::format("{} is named like a bookkeeping member", qualified(type, field)));
    }
}

void checkHiding(const RecordType& type, const Field& field, Errors& errors)
{
    const std::string getter = "get" + identifier(field.name);
    const bool hides = type.hasMessage &&
                       std::find(std::begin(messageMembers), std::end(messageMembers), getter) !=
                           std::end(messageMembers);
    if (hides && field.hides.empty()) {
        errors.add(field.where, fmt::format("{} makes a getter that hides Message::{}; "
                                            "'hides: {}' would allow it",
                                            qualified(type, field), getter, getter));
    } else if (!field.hides.empty() && (!hides || field.hides != getter)) {
        errors.add(field.where, fmt::format("{} does not hide Message::{}", qualified(type, field),
                                            field.hides));
    }
}

std::string describe(const Field& field)
{
    return field.isHeader ? fmt::format("{} of the header", field.name)
                          : fmt::format("'{}' in line {}", field.name, field.where.line);
}

void checkCollisions(const RecordType& type, Errors& errors)
{
    std::map<std::string, const Field*> members;
    std::map<std::string, const Field*> codes;
    for (const Field& field : type.fields) {
        const auto [member, isNew] = members.emplace(identifier(field.name), &field);
        if (!isNew) {
            errors.add(field.where, fmt::format("{} is named like {}", qualified(type, field),
                                                describe(*member->second)));
            continue;
        }
        if (!field.hasCode())
            continue;
        const auto [code, isNewCode] = codes.emplace(upperName(field.name), &field);
        if (!isNewCode) {
            errors.add(field.where, fmt::format("{} gives the same code names as {}",
                                                qualified(type, field), code->second->name));
        }
    }
}

uint64_t bitsOf(const Field& field)
{
    const uint64_t ones = field.width >= 64 ? ~uint64_t{0} : (uint64_t{1} << field.width) - 1;
    return ones << field.shift;
}

/// Whether one sub-field may lie over the other: it sums stored ones up, or a later edition took it
/// out of a reserved one, which keeps its name.
bool mayOverlap(const Field& below, const Field& above)
{
    return above.isVirtual || below.isVirtual ||
           (below.role == Role::Reserved && above.edition > below.edition);
}

void checkOverlaps(const RecordType& type, Errors& errors)
{
    struct Word {
        std::vector<const Field*> parts;
        uint64_t stored = 0;
    };
    std::map<int, Word> words; // by row of the word
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Bits && !field.isVirtual)
            words[field.parent].stored |= bitsOf(field);
    }
    for (const Field& field : type.fields) {
        if (field.kind != FieldKind::Bits)
            continue;
        Word& word = words[field.parent];
        for (const Field* other : word.parts) {
            const uint64_t common = bitsOf(*other) & bitsOf(field);
            if (common == 0)
                continue;
            if (other->isVirtual && field.isVirtual && (common & ~word.stored) != 0) {
                errors.add(field.where, fmt::format("{} overlaps {}, and no stored sub-field is "
                                                    "beneath both",
                                                    qualified(type, field), other->name));
            } else if (!mayOverlap(*other, field) && !mayOverlap(field, *other)) {
                errors.add(field.where, fmt::format("{} overlaps another sub-field; 'virtual: "
                                                    "true' would allow it",
                                                    qualified(type, field)));
                break;
            }
        }
        word.parts.push_back(&field);
    }
}

} // namespace

void checkNames(const RecordType& type, Errors& errors)
{
    for (const Field& field : type.fields) {
        checkIdentifier(type, field, errors);
        checkHiding(type, field, errors);
    }
    checkCollisions(type, errors);
    checkOverlaps(type, errors);
}

} // namespace korcg::generator
