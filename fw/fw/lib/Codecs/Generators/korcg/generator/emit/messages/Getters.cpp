#include "emit/messages/Getters.h"

#include "emit/messages/FieldShape.h"
#include "emit/messages/GetterComment.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <vector>

namespace korcg::generator
{

namespace
{

/// One function of a message class, as its header declares it.
struct Declaration {
    Getter getter;
    const char* text;
};

constexpr Declaration presenceDeclaration = {Getter::Presence, "    bool has{F}() const;\n"};

const std::vector<Declaration> scalarDeclarations = {
    {Getter::Value, "    {T} get{F}() const;\n"},
};

const std::vector<Declaration> repeatedDeclarations = {
    {Getter::Element, "    {T} get{F}(unsigned int index) const;\n"},
    {Getter::Count, "    unsigned int getNumberOf{F}() const;\n"},
    {Getter::Array, "    {T}* get{F}Array();\n"},
    {Getter::ConstArray, "    const {T}* get{F}Array() const;\n"},
    {Getter::Vector, "    QVector<{T}> get{F}Vector() const;\n"},
};

const std::vector<Declaration> blocksDeclarations = {
    {Getter::Block, "    {T} get{F}(unsigned int index);\n"},
    {Getter::ConstBlock, "    const {T} get{F}(unsigned int index) const;\n"},
    {Getter::Count, "    unsigned int getNumberOf{F}() const;\n"},
    {Getter::BlockVector, "    QVector<{T}> get{F}Vector();\n"},
    {Getter::ConstBlockVector, "    QVector<const {T}> get{F}Vector() const;\n"},
};

const std::vector<Declaration> embeddedDeclarations = {
    {Getter::Child, "    {T} get{F}();\n"},
    {Getter::ConstChild, "    const {T} get{F}() const;\n"},
};

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
const std::vector<Declaration>* const declarations[] = {&scalarDeclarations, &repeatedDeclarations,
                                                        &blocksDeclarations, &embeddedDeclarations};
constexpr const char* definitions[] = {scalarDefinition, repeatedDefinition, blocksDefinition,
                                       embeddedDefinition};

const char* definitionOf(Family family, bool optional)
{
    return family == Family::Scalar && optional ? optionalDefinition
                                                : definitions[static_cast<size_t>(family)];
}

/// Whether a field is a line of a list: plain header fields and the bit fields of a word are
/// together, everything else apart.
bool continuesList(const RecordType& type, const Field& field, const Field& previous)
{
    const bool plain = familyOf(type, field) == Family::Scalar && !isOptional(field);
    return plain && field.isHeader == previous.isHeader &&
           (field.isHeader || field.kind == FieldKind::Bits);
}

} // namespace

std::string getterDeclarations(const Format& format, const RecordType& type)
{
    std::string text;
    const auto declare = [&](const Field& field, const Declaration& declaration) {
        text += getterComment(format, type, field, declaration.getter);
        text += fill(declaration.text, type, field);
    };
    const Field* previous = nullptr;
    for (const Field& field : type.fields) {
        if (!previous || !continuesList(type, field, *previous))
            text += '\n';
        if (isOptional(field))
            declare(field, presenceDeclaration);
        for (const Declaration& declaration :
             *declarations[static_cast<size_t>(familyOf(type, field))])
            declare(field, declaration);
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
