#pragma once

#include "FieldType.h"
#include "FieldValue.h"
#include "Journal.h"

#include <QString>

/// Replaces the framework's class and notes each call of a derived class.
class FieldInfo
{
public:
    enum Role { Unset = 0, Data = 1, Structure = 2, Reserved = 3 };

    virtual bool hasValue(const Message* message) const = 0;
    virtual unsigned getNumberOfValues(const Message* message) const = 0;
    virtual FieldValue getValue(const Message* message, unsigned index) const = 0;
    virtual FieldValue getValueUnchecked(const Message* message, unsigned index) const = 0;
    virtual QString getValueString(const Message*) const { return {}; }
    virtual QString getValueString(const Message* message, unsigned index, bool withUnit) const = 0;

    const QString* findSymbolicValue(const FieldValue&) const { return nullptr; }
    const std::string& name() const { return m_name; }

protected:
    FieldInfo(QString name, const FieldType& type) : m_name(name.toStdString())
    {
        Journal::note("FieldInfo " + m_name + " " + type.text);
    }
    virtual ~FieldInfo() { Journal::note("~FieldInfo " + m_name); }

    void setUnit(QString unit) { Journal::note("setUnit " + unit.toStdString()); }
    void setScaleFactor(double factor)
    {
        Journal::note("setScaleFactor " + QString::number(factor).toStdString());
    }
    void setPrecision(signed char decimals)
    {
        Journal::note("setPrecision " + std::to_string(decimals));
    }
    void addSymbolicValue(const FieldValue& value, QString name)
    {
        Journal::note("addSymbolicValue " + value.text + " " + name.toStdString());
    }
    void setDoNotUseValue(FieldValue value) { Journal::note("setDoNotUseValue " + value.text); }
    void setRole(Role role) { Journal::note("setRole " + std::to_string(role)); }
    void setIsOptional(bool on) { noteFlag("setIsOptional", on); }
    void setIsRepeated(bool on) { noteFlag("setIsRepeated", on); }
    void setVirtual(bool on) { noteFlag("setVirtual", on); }
    void setRepresentationMode(FieldValue::RepresentationMode mode)
    {
        Journal::note("setRepresentationMode " + std::to_string(mode));
    }
    void addSubFieldInfo(FieldInfo* field) { Journal::note("addSubFieldInfo " + field->name()); }

private:
    static void noteFlag(const char* call, bool on)
    {
        Journal::note(std::string(call) + (on ? " true" : " false"));
    }

    std::string m_name;
};
