#pragma once

#include "FieldInfo.h"

#include <QString>
#include <QVariant>

class FormatInfo;

/// Replaces the framework's class and notes each call of a derived class.
class MessageInfo
{
protected:
    explicit MessageInfo(QString name) : m_name(name.toStdString())
    {
        Journal::note("MessageInfo " + m_name);
    }
    MessageInfo(const MessageInfo&) = default;
    MessageInfo& operator=(const MessageInfo&) = default;
    virtual ~MessageInfo() { Journal::note("~MessageInfo " + m_name); }

    void setShortDescriptiveText(QString text)
    {
        Journal::note("setShortDescriptiveText " + text.toStdString());
    }
    void setAttribute(QString key, QVariant value)
    {
        Journal::note("setAttribute " + key.toStdString() + " " + value.typeName() + " " +
                      value.toString().toStdString());
    }
    void setIsMain(bool isMain) { Journal::note(isMain ? "setIsMain true" : "setIsMain false"); }
    void setFormatInfo(const FormatInfo*) { Journal::note("setFormatInfo"); }
    void addFieldInfo(FieldInfo* field, int order, bool flag)
    {
        Journal::note("addFieldInfo " + field->name() + " " + std::to_string(order) +
                      (flag ? " true" : " false"));
    }
    void addDiscriminantValue(const FieldInfo* field, const FieldValue& value)
    {
        Journal::note("addDiscriminantValue " + field->name() + " " + value.text);
    }

private:
    std::string m_name;
};
