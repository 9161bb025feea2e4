#include "QtPrinters.h"
#include "weather/MessageViewer.h"
#include "weather/WeatherFormat.h"
#include "weather/WeatherMessages.h"

#include <MessageApiEvent.h>
#include <PathExpression.h>

#include <QLocale>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace
{

ObservationRecord sampleObservation()
{
    ObservationRecord record;
    record.station = 7;
    record.temperature = -35;
    record.sky = 4 | 8;
    record.hasPressure = true;
    record.pressure = 1013.25f;
    record.note = QByteArray("wet\0dry", 7);
    record.gusts = {{3, 12.5f}, {41, 9.5f}};
    return record;
}

QStringList namesOf(const MessageInfo* info)
{
    QStringList names;
    for (const FieldInfo* field : info->getFieldInfos()) {
        names += field->getName();
    }
    return names;
}

class Metadata : public testing::Test
{
protected:
    const WeatherFormat* format = WeatherFormat::getInstance();
    const MessageInfo* observation = WeatherFormat::infoOf<ObservationRecord>();
    const MessageInfo* gust = WeatherFormat::infoOf<GustRecord>();
};

TEST_F(Metadata, DescribesTheTypes)
{
    EXPECT_EQ(format->getName(), "Weather");
    EXPECT_EQ(format->getMessageInfos().size(), 2);
    EXPECT_EQ(format->getSubMessageInfos(), QVector<const MessageInfo*>{gust});
    EXPECT_EQ(format->getMessageInfo(QStringLiteral("Gust")), gust);
    EXPECT_EQ(format->getMessageInfo(QStringLiteral("gust")), nullptr);
    EXPECT_EQ(FormatInfo::getFormat(QStringLiteral("Weather")), format);

    EXPECT_TRUE(observation->isMain());
    EXPECT_FALSE(gust->isMain());
    EXPECT_EQ(observation->getFormatInfo(), format);
    EXPECT_EQ(observation->getShortDescriptiveText(), "What the weather is like");
    EXPECT_EQ(namesOf(observation), (QStringList{"Station", "Temperature", "Sky", "Clouds", "Rain",
                                                 "Pressure", "Note", "Gusts"}));
    const std::vector<bool> identifying = {true, false, false, false, false, false, false, false};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(observation->isIdentifying(i), identifying[static_cast<size_t>(i)]) << i;
    }
    EXPECT_FALSE(observation->isIdentifying(8) || observation->isIdentifying(-1));
    EXPECT_EQ(observation->getFieldInfo(QStringLiteral("Note"))->getType(), FieldType::ch());
    EXPECT_EQ(observation->getFieldInfo(QStringLiteral("note")), nullptr);

    EXPECT_EQ(observation->getAttribute(QStringLiteral("number")), QVariant(1));
    EXPECT_EQ(observation->getAttribute(QStringLiteral("source")).toString(), "mast");
    EXPECT_TRUE(observation->getAttribute(QStringLiteral("colour")).isNull());
    EXPECT_EQ(observation->getAttributes().size(), 2);
    ASSERT_EQ(observation->getDiscriminantValues().size(), 1);
    EXPECT_EQ(observation->getDiscriminantValues()[0].field, observation->getFieldInfos()[0]);
    EXPECT_EQ(observation->getDiscriminantValues()[0].value, FieldValue::u(7, 16));
}

TEST_F(Metadata, PathsLeadToFields)
{
    struct Row {
        const char* path;
        const MessageInfo* owner; ///< null: no such field
        int index;
    };
    const std::vector<Row> rows = {
        {"Weather:Observation:Station", observation, 0},
        {"Weather:Observation:Sky:Rain", observation, 4},
        {"Weather:Observation:Gusts", observation, 7},
        {"Weather:Observation:Gusts:Speed", gust, 1},
        {"Weather:Gust:Speed", gust, 1},
        {"Weather:Observation:Wind", nullptr, 0},
        {"Weather:Observation:Wind:Speed", nullptr, 0},
        {"Weather:Observation:Station:Speed", nullptr, 0},
        {"Weather:Observation:Gusts:Direction", nullptr, 0},
        {"Weather:Observation:", nullptr, 0},
    };
    for (const Row& row : rows) {
        const FieldInfo* expected = row.owner ? row.owner->getFieldInfos()[row.index] : nullptr;
        EXPECT_EQ(PathExpression::getUniqueFieldInfo(row.path), expected) << row.path;
    }
}

TEST_F(Metadata, PathsThroughTheUnknownThrow)
{
    struct Row {
        const char* path;
        const FormatInfo* format;
        const char* text;
    };
    const std::vector<Row> rows = {
        {"Tides:High:Level", nullptr, "Unknown format \"Tides\" in the path \"Tides:High:Level\"."},
        {"Weather:Storm:Speed", format,
         "Unknown message \"Storm\" in the path \"Weather:Storm:Speed\"."},
        {"Weather:Gust", nullptr,
         "FORMAT:MESSAGE:FIELD is expected, not found in the path \"Weather:Gust\"."},
        {"", nullptr, "FORMAT:MESSAGE:FIELD is expected, not found in the path \"\"."},
    };
    for (const Row& row : rows) {
        try {
            PathExpression::getUniqueFieldInfo(row.path);
            ADD_FAILURE() << row.path;
        } catch (const MessageApiEvent& event) {
            EXPECT_EQ(event.getType(), MessageApiEvent::FieldAccess);
            EXPECT_EQ(event.getText(), row.text);
            EXPECT_EQ(event.getFormatInfo(), row.format);
        }
    }
}

TEST_F(Metadata, AViewerNeedsNothingElse)
{
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    ObservationRecord record = sampleObservation();
    EXPECT_EQ(viewMessage(ObservationMessage(record)).join('\n'), "Weather Observation\n"
                                                                  "*Station: 7\n"
                                                                  "Temperature: -3.5 celsius\n"
                                                                  "Clouds: overcast\n"
                                                                  "Rain: 1\n"
                                                                  "Pressure: 1013.25 hectopascal\n"
                                                                  "Note: wet\n"
                                                                  "  Weather Gust\n"
                                                                  "  *Second: 3 second\n"
                                                                  "  Speed: 12.5 meterpersecond\n"
                                                                  "  Weather Gust\n"
                                                                  "  *Second: 41 second\n"
                                                                  "  Speed: 9.5 meterpersecond");

    record.temperature = -32768;
    record.sky = 7;
    record.pressure = std::numeric_limits<float>::quiet_NaN();
    record.note.clear();
    record.gusts.clear();
    EXPECT_EQ(viewMessage(ObservationMessage(record)).join('\n'), "Weather Observation\n"
                                                                  "*Station: 7\n"
                                                                  "Temperature: DoNotUse\n"
                                                                  "Clouds: 7\n"
                                                                  "Rain: 0\n"
                                                                  "Pressure: DoNotUse");

    record.hasPressure = false;
    record.temperature = 0;
    EXPECT_EQ(viewMessage(ObservationMessage(record))[2], "Temperature: freezing");
    EXPECT_EQ(viewMessage(ObservationMessage(record)).size(), 5);

    EXPECT_EQ(viewMessage(BatteryMessage({9, 12345})).join('\n'), "Weather Battery\n"
                                                                  "*Station: 9\n"
                                                                  "Voltage: 12.345 volt");
    QLocale::setDefault(before);
}

TEST_F(Metadata, FieldsRefuseMessagesOfAnotherType)
{
    const BatteryMessage battery({9, 12345});
    const FieldInfo* field = observation->getFieldInfo(QStringLiteral("Station"));
    EXPECT_FALSE(field->hasValue(&battery));
    EXPECT_FALSE(field->hasValue(nullptr));
    EXPECT_EQ(field->getNumberOfValues(&battery), 0u);
    EXPECT_THROW(field->getValue(&battery, 0), MessageApiEvent);
    EXPECT_EQ(field->getValueString(&battery), "");
}

TEST_F(Metadata, MessagesKnowTheirPlace)
{
    ObservationMessage message(sampleObservation());
    const ObservationMessage& constMessage = message;
    ASSERT_EQ(message.getSubMessages().size(), 2);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(message.getSubMessages()[i]->getParentMessage(), &message);
        EXPECT_EQ(constMessage.getSubMessages()[i], message.getSubMessages()[i]);
        EXPECT_EQ(message.getSubMessages()[i]->getInfo(), gust);
    }
    EXPECT_EQ(message.getParentMessage(), nullptr);
    EXPECT_TRUE(message.gustsReadOwnRecords());
    EXPECT_TRUE(BatteryMessage({1, 2}).getSubMessages().isEmpty());

    EXPECT_EQ(message.getRawStringFor(QVector<bool>(8, true)),
              "7\t-35\t12\t4\t1\t1013.25\twetdry\tsubmsg submsg");
    EXPECT_EQ(message.getRawStringFor({true, false, true}), "7\t12");
    EXPECT_EQ(message.getRawStringFor({}), "");
}

} // namespace
