#include "WeatherFormat.h"

#include "WeatherField.h"

#include <limits>

namespace
{

using ObservationField = WeatherField<ObservationRecord>;
using GustField = WeatherField<GustRecord>;
using BatteryField = WeatherField<BatteryRecord>;

class WeatherInfo : public MessageInfo
{
protected:
    explicit WeatherInfo(const char* name) : MessageInfo(QString::fromLatin1(name))
    {
        setFormatInfo(WeatherFormat::getInstance());
    }
};

class GustInfo final : public WeatherInfo
{
public:
    GustInfo() : WeatherInfo("Gust")
    {
        setIsMain(false);
        second.setUnit(QStringLiteral("second"));
        speed.setUnit(QStringLiteral("meterpersecond"));
        speed.setPrecision(1);
        addFieldInfo(&second, 0, true);
        addFieldInfo(&speed, 1, false);
    }

private:
    GustField second{"Second", FieldType::u(8), [](const WeatherMessage<GustRecord>& m, unsigned) {
                         return FieldValue::u(m.record().second, 8);
                     }};
    GustField speed{"Speed", FieldType::f32(), [](const WeatherMessage<GustRecord>& m, unsigned) {
                        return FieldValue::f32(m.record().speed);
                    }};
};

class ObservationInfo final : public WeatherInfo
{
public:
    ObservationInfo() : WeatherInfo("Observation")
    {
        setShortDescriptiveText(QStringLiteral("What the weather is like"));
        setUpFields();
        // In another order than that of the list.
        addFieldInfo(&gusts, 7, false);
        addFieldInfo(&station, 0, true);
        addFieldInfo(&sky, 2, false);
        addFieldInfo(&clouds, 3, false);
        addFieldInfo(&rain, 4, false);
        addFieldInfo(&pressure, 5, false);
        addFieldInfo(&note, 6, false);
        addFieldInfo(&temperature, 1, false);
        setAttribute(QStringLiteral("number"), 0);
        setAttribute(QStringLiteral("source"), QStringLiteral("mast"));
        setAttribute(QStringLiteral("number"), 1);
        addDiscriminantValue(&station, FieldValue::u(7, 16));
    }

private:
    using M = WeatherMessage<ObservationRecord>;
    using R = ObservationRecord;

    void setUpFields()
    {
        temperature.setScaleFactor(0.1);
        temperature.setUnit(QStringLiteral("celsius"));
        temperature.addSymbolicValue(FieldValue::i(0, 16), QStringLiteral("freezing"));
        temperature.setDoNotUseValue(FieldValue::i(-32768, 16));
        sky.setRole(FieldInfo::Structure);
        sky.setRepresentationMode(FieldValue::BitMask);
        sky.addSubFieldInfo(&clouds);
        sky.addSubFieldInfo(&rain);
        const char* const names[] = {"clear", "few", "scattered", "broken", "overcast"};
        for (unsigned i = 0; i < 5; ++i) {
            clouds.addSymbolicValue(FieldValue::u(i, 3), QString::fromLatin1(names[i]));
        }
        pressure.setIsOptional(true);
        pressure.setUnit(QStringLiteral("hectopascal"));
        pressure.setPrecision(2);
        pressure.setDoNotUseValue(FieldValue::f32(std::numeric_limits<float>::quiet_NaN()));
        note.setIsRepeated(true);
        gusts.setIsRepeated(true);
    }

    GustInfo gustInfo;
    ObservationField station{"Station", FieldType::u(16), [](const M& m, unsigned) {
                                 return FieldValue::u(m.record().station, 16);
                             }};
    ObservationField temperature{"Temperature", FieldType::i(16), [](const M& m, unsigned) {
                                     return FieldValue::i(m.record().temperature, 16);
                                 }};
    ObservationField sky{"Sky", FieldType::u(8),
                         [](const M& m, unsigned) { return FieldValue::u(m.record().sky, 8); }};
    ObservationField clouds{"Clouds", FieldType::u(3), [](const M& m, unsigned) {
                                return FieldValue::u(m.record().sky & 7u, 3);
                            }};
    ObservationField rain{"Rain", FieldType::u(1), [](const M& m, unsigned) {
                              return FieldValue::u(m.record().sky >> 3 & 1u, 1);
                          }};
    ObservationField pressure{
        "Pressure", FieldType::f32(),
        [](const M& m, unsigned) { return FieldValue::f32(m.record().pressure); },
        [](const R& r) { return r.hasPressure ? 1u : 0u; }};
    ObservationField note{
        "Note", FieldType::ch(),
        [](const M& m, unsigned i) { return FieldValue::ch(m.record().note[static_cast<int>(i)]); },
        [](const R& r) { return static_cast<unsigned>(r.note.size()); }};
    ObservationField gusts{"Gusts", FieldType::subMessage(&gustInfo),
                           [](const M& m, unsigned i) {
                               return FieldValue::subMessage(
                                   m.getSubMessages()[static_cast<int>(i)]);
                           },
                           [](const R& r) { return static_cast<unsigned>(r.gusts.size()); }};

    friend class ::WeatherFormat;
};

class BatteryInfo final : public WeatherInfo
{
public:
    BatteryInfo() : WeatherInfo("Battery")
    {
        voltage.setScaleFactor(0.001);
        voltage.setUnit(QStringLiteral("volt"));
        addFieldInfo(&station, 0, true);
        addFieldInfo(&voltage, 1, false);
    }

private:
    using M = WeatherMessage<BatteryRecord>;

    BatteryField station{"Station", FieldType::u(16), [](const M& m, unsigned) {
                             return FieldValue::u(m.record().station, 16);
                         }};
    BatteryField voltage{"Voltage", FieldType::u(32), [](const M& m, unsigned) {
                             return FieldValue::u(m.record().millivolts, 32);
                         }};
};

const ObservationInfo& observationInfo()
{
    static const ObservationInfo info;
    return info;
}

const BatteryInfo& batteryInfo()
{
    static const BatteryInfo info;
    return info;
}

} // namespace

WeatherFormat::WeatherFormat() : FormatInfo(QStringLiteral("Weather")) {}

const WeatherFormat* WeatherFormat::getInstance()
{
    static WeatherFormat instance;
    if (!instance.m_isSetUp) {
        instance.setUp();
    }
    return &instance;
}

void WeatherFormat::setUp()
{
    m_isSetUp = true;
    addMessageInfo(&observationInfo());
    addSubMessageInfo(infoOf<GustRecord>());
    addMessageInfo(&batteryInfo());
}

template<>
const MessageInfo* WeatherFormat::infoOf<ObservationRecord>()
{
    return &observationInfo();
}

template<>
const MessageInfo* WeatherFormat::infoOf<GustRecord>()
{
    return &observationInfo().gustInfo;
}

template<>
const MessageInfo* WeatherFormat::infoOf<BatteryRecord>()
{
    return &batteryInfo();
}
