#include "WeatherMessages.h"

#include "WeatherFormat.h"

#include <FieldInfo.h>
#include <MemLeakTracer.h>

#include <QStringList>

template<typename Record>
WeatherMessage<Record>::WeatherMessage(Record record, Message* parent)
    : Message(info()), m_record(std::move(record))
{
    setParentMessage(parent);
    MemLeakTracer::allocateObject("WeatherMessage");
}

template<typename Record>
WeatherMessage<Record>::~WeatherMessage()
{
    MemLeakTracer::deallocateObject("WeatherMessage");
}

template<typename Record>
QString WeatherMessage<Record>::getRawStringFor(const QVector<bool>& fieldMask) const
{
    QStringList columns;
    const auto& fields = info()->getFieldInfos();
    for (int i = 0; i < fields.size() && i < fieldMask.size(); ++i) {
        if (!fieldMask[i]) {
            continue;
        }
        QStringList values;
        for (unsigned k = 0; k < fields[i]->getNumberOfValues(this); ++k) {
            const FieldValue value = fields[i]->getValueUnchecked(this, k);
            const bool hide = useDoNotUseString && fields[i]->isDoNotUse(value);
            values += hide ? doNotUseString : value.toString();
        }
        const bool isText = fields[i]->getType() == FieldType::ch();
        columns += values.join(isText ? QString() : QStringLiteral(" "));
    }
    return columns.join(fieldSeparator);
}

template<typename Record>
const MessageInfo* WeatherMessage<Record>::info()
{
    return WeatherFormat::infoOf<Record>();
}

template class WeatherMessage<GustRecord>;
template class WeatherMessage<ObservationRecord>;
template class WeatherMessage<BatteryRecord>;

ObservationMessage::ObservationMessage(ObservationRecord observation)
    : WeatherMessage(std::move(observation))
{
    for (const GustRecord& gust : record().gusts) {
        m_gusts.append(new GustMessage(gust, this));
    }
}

ObservationMessage::~ObservationMessage()
{
    qDeleteAll(m_gusts);
}

QVector<const Message*> ObservationMessage::getSubMessages() const
{
    return {m_gusts.cbegin(), m_gusts.cend()};
}

bool ObservationMessage::gustsReadOwnRecords() const
{
    for (const Message* gust : m_gusts) {
        if (getRawRepresentationOf(gust) != &static_cast<const GustMessage*>(gust)->record()) {
            return false;
        }
    }
    return !getRawRepresentationOf(nullptr);
}
