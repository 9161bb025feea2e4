#include "model/CheckParts.h"
#include "model/Identifiers.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>

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
                                            "blanks and underscores only, no digit in front",
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

void checkOverlaps(const RecordType& type, Errors& errors)
{
    std::map<int, uint64_t> usedBits; // by row of the word
    for (const Field& field : type.fields) {
        if (field.kind != FieldKind::Bits || field.isVirtual)
            continue;
        const uint64_t ones = field.width >= 64 ? ~uint64_t{0} : (uint64_t{1} << field.width) - 1;
        uint64_t& used = usedBits[field.parent];
        if ((used & ones << field.shift) != 0) {
            errors.add(field.where, fmt::format("{} overlaps another sub-field; 'virtual: true' "
                                                "would allow it",
                                                qualified(type, field)));
        }
        used |= ones << field.shift;
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
