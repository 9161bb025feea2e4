#include "emit/messages/SubMessages.h"

#include "emit/messages/FieldShape.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

constexpr const char* listDefinitions = R"(
QVector<Message*> {C}::getSubMessages()
{{
    ensureSubMessages();
    return m_subMessages;
}}

QVector<const Message*> {C}::getSubMessages() const
{{
    ensureSubMessages();
    return {{m_subMessages.constBegin(), m_subMessages.constEnd()}};
}}
)";

constexpr const char* collectDefinitions = R"(
QVector<Message*> {C}::getSubMessages()
{{
    ensureSubMessages();
    return TQX_collectChildren<Message*>({all});
}}

QVector<const Message*> {C}::getSubMessages() const
{{
    ensureSubMessages();
    return TQX_collectChildren<const Message*>({all});
}}
)";

constexpr const char* cacheDefinitions = R"(
void {C}::ensureSubMessages() const
{{
    if (m_subMessagesBuilt)
        return;
    requireRecord();
    auto* self = const_cast<{C}*>(this);
    const auto recordOf = [this](const Message* child) {{ return getRawRepresentationOf(child); }};
{build}    m_subMessagesBuilt = true;
}}

void {C}::disposeSubMessages() const
{{
{dispose}    m_subMessagesBuilt = false;
}}
)";

std::string buildStatement(const RecordType& type, const Field& field)
{
    const std::string member = childMember(field);
    const std::string name = identifier(field.name);
    if (field.kind == FieldKind::Blocks) {
        return fmt::format("    builder.build(m_record->{}, {}, {});\n", name,
                           countExpression(type, field), member);
    }
    const std::string record = isOptional(field)
                                   ? fmt::format("has{0}() ? &m_record->{0} : nullptr", name)
                                   : fmt::format("&m_record->{}", name);
    return fmt::format("    TQX_ensureChild({}, {},\n                    m_record, self, "
                       "recordOf);\n",
                       member, record);
}

} // namespace

std::string childDeclarations()
{
    return R"(    /// All sub-messages in field order, owned by this message.
    QVector<Message*> getSubMessages() override;
    /// Likewise, to be read.
    QVector<const Message*> getSubMessages() const override;
)";
}

std::string cacheDeclarations()
{
    return R"(    void ensureSubMessages() const;
    void disposeSubMessages() const;
)";
}

std::string cacheMembers(const RecordType& type)
{
    std::string text;
    for (const Field* field : childFields(type)) {
        const bool list = field->kind == FieldKind::Blocks;
        text += list ? fmt::format("    mutable QVector<{}> {};\n", valueType(*field),
                                   childMember(*field))
                     : fmt::format("    mutable {} {} = nullptr;\n", valueType(*field),
                                   childMember(*field));
    }
    if (text.empty())
        return "";
    if (hasBlocks(type))
        text += "    mutable QVector<Message*> m_subMessages;\n";
    return "    // Children, made when first asked for.\n    mutable bool m_subMessagesBuilt = "
           "false;\n" +
           text;
}

std::string childDefinitions(const RecordType& type)
{
    const std::vector<const Field*> children = childFields(type);
    if (children.empty())
        return "";
    std::string all;
    std::string build;
    std::string dispose;
    if (hasBlocks(type)) {
        build = "    TQX_SubMessageBuilder builder(m_subMessages, m_record, self, recordOf);\n";
        dispose = "    TQX_disposeChildren(m_subMessages);\n";
    }
    for (const Field* field : children) {
        all += (all.empty() ? "" : ", ") + childMember(*field);
        build += buildStatement(type, *field);
        if (field->kind == FieldKind::Embedded)
            dispose += fmt::format("    TQX_disposeChild({});\n", childMember(*field));
    }
    const std::string text =
        std::string(hasEmbedded(type) ? collectDefinitions : listDefinitions) + cacheDefinitions;
    return fmt::format(fmt::runtime(text), fmt::arg("C", fmt::format("TQX_{}_Message", type.name)),
                       fmt::arg("all", all), fmt::arg("build", build),
                       fmt::arg("dispose", dispose));
}

} // namespace korcg::generator
