#include "TQX_MessageInfo.h"

#include "TQX_FieldInfo.h"
#include "TQX_FormatInfo.h"

#include "FieldValue.h"
#include "MemLeakTracer.h"

#include <QVariant>

using namespace Kor::MessageApi;

namespace
{

/// Shared by all types.
struct AttributeKeys {
    QString flexrate = QString::fromLatin1("flexrate");
    QString esoc = QString::fromLatin1("esoc");
    QString timestamp = QString::fromLatin1("timestamp");
    QString version = QString::fromLatin1("version");
    QString blocknr = QString::fromLatin1("blocknr");
};

} // namespace

TQX_MessageInfo::TQX_MessageInfo(const TQX_TypeRow& type)
    : MessageInfo(QString::fromLatin1(TQX_layout(type.recordType)->name)), m_type(&type)
{
    MemLeakTracer::allocateObject(type.className);
    if (TQX_layout(type.recordType)->blockNumber == 0) {
        setIsMain(false);
    } else if (const auto text = TQX_description(*TQX_typeFacts(type.recordType)); !text.empty()) {
        setShortDescriptiveText(QString::fromUtf8(text.data(), static_cast<int>(text.size())));
    }
    setFormatInfo(TQX_FormatInfo::getInstance());
}

TQX_MessageInfo::~TQX_MessageInfo()
{
    MemLeakTracer::deallocateObject(m_type->className);
}

void TQX_MessageInfo::addFields()
{
    const int count = TQX_layout(m_type->recordType)->fieldCount;
    const TQX_FieldFacts* facts = TQX_fieldFacts(m_type->recordType);
    for (int i = 0; i < count; ++i) {
        TQX_FieldInfo* field = m_type->fields[i].instance();
        field->m_owner = this;
        addFieldInfo(field, i, facts[i].has(TQX_FieldFacts::Identifying));
    }
}

void TQX_MessageInfo::addMainProperties(const FieldInfo* blockNumber)
{
    const unsigned number = TQX_layout(m_type->recordType)->blockNumber;
    addDiscriminantValue(blockNumber, FieldValue::u(number, 13));
    const TQX_TypeFacts& facts = *TQX_typeFacts(m_type->recordType);
    static const AttributeKeys keys;
    setAttribute(keys.flexrate, QVariant(facts.flexrate));
    setAttribute(keys.esoc, QVariant(facts.esoc));
    setAttribute(keys.timestamp, QVariant(static_cast<int>(facts.timestamp)));
    setAttribute(keys.version, QVariant(static_cast<int>(facts.generation)));
    setAttribute(keys.blocknr, QVariant(static_cast<int>(number)));
}
