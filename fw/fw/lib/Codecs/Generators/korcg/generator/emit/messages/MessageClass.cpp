#include "emit/messages/MessageClass.h"

#include "emit/messages/FieldShape.h"
#include "emit/messages/GetterComment.h"
#include "emit/messages/Getters.h"
#include "emit/messages/SubMessages.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <set>

namespace korcg::generator
{

namespace
{

constexpr const char* headerText = R"(#pragma once

#include "Message.h"
#include "TQX_MessageErrors.h"
{includes}#include "tqx_export.h"

#include <QVector>

namespace Kor::MessageApi
{{
struct {R};
}}

{comment}class TQX_API {C} : public Message
{{
public:
    /// A view of `record`, which is deleted with the view when `ownsRecord` is set.{parentComment}
    {C}(Kor::MessageApi::{R}* record, {parent}bool ownsRecord);
    /// A copy reads the same record and claims whatever the original owns: only views are copied.
    {C}(const {C}& other);
    {C}& operator=(const {C}& other);
    ~{C}() override;
{getters}
{children}    /// One line of text of the fields whose place is set in `fieldMask`, see Message.
    QString getRawStringFor(const QVector<bool>& fieldMask) const override;

private:
    void assertRepresentation() const;
    bool hasRepresentation() const;
    void setRepresentation(Kor::MessageApi::{R}* record);
    void disposeRepresentation();
    /// The record, or null.
    const void* getRawRepresentation() const override;
{cacheFunctions}
    /// assertRepresentation() in line, for the getters.
    void requireRecord() const
    {{
        if (!m_record)
            TQX_failUninitialized("{C}");
    }}

{cacheMembers}    Kor::MessageApi::{R}* m_record;
    bool m_ownsRecord;
}};
)";

constexpr const char* lifeText = R"(
{comment}{C}::{C}({R}* record, {parent}bool ownsRecord)
    : Message(TQX_{N}_MessageInfo::getInstance()), m_record(record), m_ownsRecord(ownsRecord)
{{
    static std::atomic<int> traceLevel{{-1}};
    TQX_resolveTrace(traceLevel, "{C}");
    MemLeakTracer::allocateObject("{C}");{setParent}
}}

{C}::{C}(const {C}& other) = default;
{C}& {C}::operator=(const {C}& other) = default;

{C}::~{C}()
{{
    MemLeakTracer::deallocateObject("{C}");
    disposeRepresentation();
}}
)";

constexpr const char* recordText = R"(
QString {C}::getRawStringFor(const QVector<bool>& fieldMask) const
{{
    return TQX_rawString({type}, m_record, fieldMask);
}}

void {C}::assertRepresentation() const
{{
    requireRecord();
}}

bool {C}::hasRepresentation() const
{{
    return m_record != nullptr;
}}

void {C}::setRepresentation({R}* record)
{{
    m_record = record;
}}

void {C}::disposeRepresentation()
{{{disposeChildren}
    if (m_ownsRecord)
        delete m_record;
    m_record = nullptr;
}}

const void* {C}::getRawRepresentation() const
{{
    return m_record;
}}
)";

std::string fill(const char* text, const RecordType& type, const std::string& comment = "",
                 const std::string& getters = "")
{
    const bool owner = hasBlocks(type) || hasEmbedded(type);
    const bool main = type.isMain();
    std::set<std::string> subTypes;
    for (const Field* field : childFields(type))
        subTypes.insert(field->subType);
    std::string includes;
    for (const std::string& subType : subTypes)
        includes += fmt::format("#include \"TQX_{}_Message.h\"\n", subType);
    return fmt::format(
        fmt::runtime(text), fmt::arg("N", type.name),
        fmt::arg("C", fmt::format("TQX_{}_Message", type.name)), fmt::arg("R", recordName(type)),
        fmt::arg("type", type.record), fmt::arg("includes", includes), fmt::arg("comment", comment),
        fmt::arg("parent", main ? "" : "Message* parent, "),
        fmt::arg("parentComment",
                 main ? "" : "\n    /// `parent` may be null; it is recorded only."),
        fmt::arg("setParent", main ? "" : "\n    setParentMessage(parent);"),
        fmt::arg("getters", getters), fmt::arg("children", owner ? childDeclarations() : ""),
        fmt::arg("cacheFunctions", owner ? cacheDeclarations() : ""),
        fmt::arg("cacheMembers", cacheMembers(type)),
        fmt::arg("disposeChildren", owner ? "\n    disposeSubMessages();" : ""));
}

} // namespace

std::string messageHeader(const Format& format, const RecordType& type)
{
    return fill(headerText, type, classComment("/// ", format, type),
                getterDeclarations(format, type));
}

std::string messageSource(const Format& format, const RecordType& type)
{
    return fill(lifeText, type, classComment("// ", format, type)) + getterDefinitions(type) +
           childDefinitions(type) + fill(recordText, type);
}

} // namespace korcg::generator
