#pragma once

#include <FieldInfo.h>
#include <FormatInfo.h>
#include <MemLeakTracer.h>
#include <Message.h>
#include <MessageApiEvent.h>
#include <MessageInfo.h>

#include <memory>
#include <utility>
#include <vector>

// A format to be put together by hand: its classes open what the framework's keep for derived ones.

/// Holds the values of its fields, one list a field.
class ToyMessage final : public Message
{
public:
    explicit ToyMessage(const MessageInfo* info, QVector<QVector<FieldValue>> fieldValues = {})
        : Message(info), values(std::move(fieldValues))
    {
    }

    QString getRawStringFor(const QVector<bool>&) const override { return {}; }

    using Message::getRawRepresentationOf;

    /// Takes over a message that becomes part of this one.
    void adopt(ToyMessage* part)
    {
        part->setParentMessage(this);
        parts.emplace_back(part);
    }

    QVector<QVector<FieldValue>> values;
    std::vector<std::shared_ptr<ToyMessage>> parts; ///< shared with copies

private:
    const void* getRawRepresentation() const override { return &values; }
};

/// Field `index` of a ToyMessage.
class ToyField final : public FieldInfo
{
public:
    ToyField(QString name, const FieldType& type, int index = 0)
        : FieldInfo(std::move(name), type), m_index(index)
    {
        MemLeakTracer::allocateObject("ToyField");
    }
    ~ToyField() override { MemLeakTracer::deallocateObject("ToyField"); }

    using FieldInfo::addSubFieldInfo;
    using FieldInfo::addSymbolicValue;
    using FieldInfo::getValueString;
    using FieldInfo::setDoNotUseValue;
    using FieldInfo::setPrecision;
    using FieldInfo::setRepresentationMode;
    using FieldInfo::setScaleFactor;
    using FieldInfo::setUnit;

    bool hasValue(const Message* message) const override { return getNumberOfValues(message) > 0; }
    unsigned getNumberOfValues(const Message* message) const override
    {
        return message ? static_cast<unsigned>(valuesIn(message).size()) : 0;
    }
    FieldValue getValue(const Message* message, unsigned index) const override
    {
        if (index >= getNumberOfValues(message))
            throw MessageApiEvent(MessageApiEvent::FieldAccess, "No such value", nullptr);
        return getValueUnchecked(message, index);
    }
    FieldValue getValueUnchecked(const Message* message, unsigned index) const override
    {
        return valuesIn(message)[static_cast<int>(index)];
    }

private:
    const QVector<FieldValue>& valuesIn(const Message* message) const
    {
        return static_cast<const ToyMessage*>(message)->values[m_index];
    }

    int m_index;
};

class ToyInfo final : public MessageInfo
{
public:
    explicit ToyInfo(QString name) : MessageInfo(std::move(name)) {}
    ~ToyInfo() override = default;

    using MessageInfo::addFieldInfo;
    using MessageInfo::setAttribute;
    using MessageInfo::setFormatInfo;
    using MessageInfo::setIsMain;
};

class ToyFormat final : public FormatInfo
{
public:
    explicit ToyFormat(QString name) : FormatInfo(std::move(name)) {}
    ~ToyFormat() override = default;

    using FormatInfo::addMessageInfo;
    using FormatInfo::addSubMessageInfo;
    using FormatInfo::SetUp;
};
