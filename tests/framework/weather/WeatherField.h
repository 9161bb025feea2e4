#pragma once

#include "WeatherMessages.h"

#include <FieldInfo.h>
#include <MessageApiEvent.h>

/// A field that two functions read from a record; `Count` says how many values there are.
template<typename Record>
class WeatherField final : public FieldInfo
{
public:
    using Count = unsigned (*)(const Record&);
    using Read = FieldValue (*)(const WeatherMessage<Record>&, unsigned);

    WeatherField(
        const char* name, const FieldType& type, Read read,
        Count count = [](const Record&) { return 1u; })
        : FieldInfo(QString::fromLatin1(name), type), m_read(read), m_count(count)
    {
        setRole(Data);
    }

    using FieldInfo::addSubFieldInfo;
    using FieldInfo::addSymbolicValue;
    using FieldInfo::setDoNotUseValue;
    using FieldInfo::setIsOptional;
    using FieldInfo::setIsRepeated;
    using FieldInfo::setPrecision;
    using FieldInfo::setRepresentationMode;
    using FieldInfo::setRole;
    using FieldInfo::setScaleFactor;
    using FieldInfo::setUnit;
    using FieldInfo::setVirtual;

    bool hasValue(const Message* message) const override { return getNumberOfValues(message) > 0; }

    unsigned getNumberOfValues(const Message* message) const override
    {
        const bool isMine = message && message->getInfo() == WeatherMessage<Record>::info();
        return isMine ? m_count(cast(message).record()) : 0;
    }

    FieldValue getValue(const Message* message, unsigned index) const override
    {
        if (index >= getNumberOfValues(message)) {
            throw MessageApiEvent(MessageApiEvent::FieldAccess,
                                  QStringLiteral("No value %1 of %2").arg(index).arg(getName()),
                                  WeatherMessage<Record>::info()->getFormatInfo());
        }
        return getValueUnchecked(message, index);
    }

    FieldValue getValueUnchecked(const Message* message, unsigned index) const override
    {
        return m_read(cast(message), index);
    }

private:
    static const WeatherMessage<Record>& cast(const Message* message)
    {
        return *static_cast<const WeatherMessage<Record>*>(message);
    }

    Read m_read;
    Count m_count;
};
