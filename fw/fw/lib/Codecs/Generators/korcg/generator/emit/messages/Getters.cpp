#include "emit/messages/Getters.h"

#include "emit/messages/FieldShape.h"
#include "emit/messages/GetterComment.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <utility>

namespace korcg::generator
{

namespace
{

constexpr const char* presenceDeclaration = "    bool has{F}() const;\n";

constexpr const char* scalarDeclaration = "    {T} get{F}() const;\n";

constexpr const char* repeatedDeclaration = R"(    {T} get{F}(unsigned int index) const;
    unsigned int getNumberOf{F}() const;
    {T}* get{F}Array();
    const {T}* get{F}Array() const;
    QVector<{T}> get{F}Vector() const;
)";

constexpr const char* blocksDeclaration = R"(    {T} get{F}(unsigned int index);
    const {T} get{F}(unsigned int index) const;
    unsigned int getNumberOf{F}() const;
    QVector<{T}> get{F}Vector();
    QVector<const {T}> get{F}Vector() const;
)";

constexpr const char* embeddedDeclaration = R"(    {T} get{F}();
    const {T} get{F}() const;
)";

constexpr const char* presenceDefinition = R"(
bool {C}::has{F}() const
{{
    requireRecord();
    return {presence};
}}
)";

constexpr const char* scalarDefinition = R"(
{T} {C}::get{F}() const
{{
    requireRecord();
    return m_record->{F};
}}
)";

constexpr const char* optionalDefinition = R"(
{T} {C}::get{F}() const
{{
    if (!has{F}())
        TQX_throwAbsent("{N}", "{F}");
    return m_record->{F};
}}
)";

constexpr const char* repeatedDefinition = R"(
{T} {C}::get{F}(unsigned int index) const
{{
    requireRecord();
    if (index >= {limit})
        TQX_throwOutOfRange("{N}", "{F}");
    return m_record->{F}[index];
}}

unsigned int {C}::getNumberOf{F}() const
{{
    requireRecord();
    return {count};
}}

{T}* {C}::get{F}Array()
{{
    return m_record->{F};
}}

const {T}* {C}::get{F}Array() const
{{
    return m_record->{F};
}}

QVector<{T}> {C}::get{F}Vector() const
{{
    requireRecord();
    return QVector<{T}>(m_record->{F}, m_record->{F} + {limit});
}}
)";

constexpr const char* blocksDefinition = R"(
{T} {C}::get{F}(unsigned int index)
{{
    requireRecord();
    ensureSubMessages();
    if (index >= static_cast<unsigned int>({member}.size()))
        TQX_throwOutOfRange("{N}", "{F}");
    return {member}[static_cast<int>(index)];
}}

const {T} {C}::get{F}(unsigned int index) const
{{
    return const_cast<{C}*>(this)->get{F}(index);
}}

unsigned int {C}::getNumberOf{F}() const
{{
    requireRecord();
    return {count};
}}

QVector<{T}> {C}::get{F}Vector()
{{
    requireRecord();
    ensureSubMessages();
    return {member};
}}

QVector<const {T}> {C}::get{F}Vector() const
{{
    requireRecord();
    ensureSubMessages();
    return {{{member}.constBegin(), {member}.constEnd()}};
}}
)";

constexpr const char* embeddedDefinition = R"(
{T} {C}::get{F}()
{{{absent}
    ensureSubMessages();
    return {member};
}}

const {T} {C}::get{F}() const
{{
    return const_cast<{C}*>(this)->get{F}();
}}
)";

constexpr const char* absentTest = R"(
    if (!has{F}())
        TQX_throwAbsent("{N}", "{F}");)";

std::string fill(const char* text, const RecordType& type, const Field& field)
{
    const Family family = familyOf(type, field);
    const bool isList = family == Family::Repeated || family == Family::Blocks;
    const bool optional = isOptional(field);
    return fmt::format(
        fmt::runtime(text), fmt::arg("F", identifier(field.name)), fmt::arg("T", valueType(field)),
        fmt::arg("N", type.name), fmt::arg("C", fmt::format("TQX_{}_Message", type.name)),
        fmt::arg("presence", optional ? presenceExpression(type, field) : ""),
        fmt::arg("count", isList ? countExpression(type, field) : ""),
        fmt::arg("limit", family == Family::Repeated ? readableCount(type, field) : ""),
        fmt::arg("member", childMember(field)),
        fmt::arg("absent", optional ? fmt::format(fmt::runtime(absentTest),
                                                  fmt::arg("F", identifier(field.name)),
                                                  fmt::arg("N", type.name))
                                    : ""));
}

/// Texts by family, in the order of that enumeration.
constexpr const char* declarations[] = {scalarDeclaration, repeatedDeclaration, blocksDeclaration,
                                        embeddedDeclaration};
constexpr const char* definitions[] = {scalarDefinition, repeatedDefinition, blocksDefinition,
                                       embeddedDefinition};

const char* definitionOf(Family family, bool optional)
{
    return family == Family::Scalar && optional ? optionalDefinition
                                                : definitions[static_cast<size_t>(family)];
}

/// Whether a field is a line of a list: plain header fields, the bit fields of a word, and fields
/// that need no comment stand together, everything else apart.
bool continuesList(const RecordType& type, const Field& field, const Field& previous, bool bothBare)
{
    const bool plain = familyOf(type, field) == Family::Scalar && !isOptional(field);
    if (!plain || field.isHeader != previous.isHeader)
        return false;
    return field.isHeader || field.kind == FieldKind::Bits || bothBare;
}

} // namespace

std::string getterDeclarations(const Format& format, const RecordType& type)
{
    std::string text;
    const Field* previous = nullptr;
    bool bare = false;
    for (const Field& field : type.fields) {
        const std::string comment = getterComment(format, type, field);
        const bool wasBare = std::exchange(bare, comment.empty());
        if (!previous || !continuesList(type, field, *previous, bare && wasBare))
            text += '\n';
        if (!previous && field.isHeader)
            text += "    // Header of the block.\n";
        text += comment;
        if (isOptional(field))
            text += fill(presenceDeclaration, type, field);
        text += fill(declarations[static_cast<size_t>(familyOf(type, field))], type, field);
        previous = &field;
    }
    return text;
}

std::string getterDefinitions(const RecordType& type)
{
    std::string text;
    for (const Field& field : type.fields) {
        if (isOptional(field))
            text += fill(presenceDefinition, type, field);
        text += fill(definitionOf(familyOf(type, field), isOptional(field)), type, field);
    }
    return text;
}

} // namespace korcg::generator
