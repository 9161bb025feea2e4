#include "Logs.h"
#include "TinyLog.h"

#include "model/FieldRows.h"
#include "model/GnssSurvey.h"
#include "model/LabelPlaces.h"
#include "model/MessageRows.h"
#include "model/PlotField.h"
#include "model/PlotSeries.h"
#include "model/Timeline.h"
#include "model/TqxContent.h"
#include "model/TqxLog.h"
#include "model/TrackFigures.h"

#include <QElapsedTimer>
#include <QLineF>
#include <QSet>
#include <QTest>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

using namespace tqx::view;

namespace
{

std::shared_ptr<const TqxLog> openLog(const QTemporaryDir& folder, const QByteArray& content)
{
    const QString path = writeFile(folder, "log.tqx", content);
    return std::make_shared<const TqxLog>(openContent({path.toStdString()}, TaskToken(), {}));
}

/// Waits for the entry of a row.
MessageEntry entryOf(MessageRows& rows, uint64_t row)
{
    std::optional<MessageEntry> entry;
    EXPECT_TRUE(waitFor([&] { return (entry = rows.getEntry(row)).has_value(); })) << row;
    return entry.value_or(MessageEntry());
}

void waitForRows(MessageRows& rows)
{
    EXPECT_TRUE(waitFor([&] { return !rows.isSearching(); }));
}

TEST(MessageRows, FiltersGiveTheRowsThatTheirWordsSay)
{
    const auto log = std::make_shared<TinyLog>(1000);
    MessageRows rows;
    rows.setLog(log);
    ASSERT_EQ(rows.getCount(), 1000U);
    EXPECT_EQ(entryOf(rows, 999).offset, 999U * 4);

    const struct {
        MessageFilter filter;
        uint64_t count;
        uint64_t third; // number of the message in the third row
    } cases[] = {
        {{{"Temp"}, {}, {}, {}}, 200, 10},
        {{{}, 100'000, 103'000, {}}, 3, 102},
        {{{"Temp"}, 101'000, {}, {}}, 179, 115},
        {{{}, {}, {}, {}}, 1000, 2},
    };
    for (const auto& [filter, count, third] : cases) {
        rows.setFilter(filter);
        waitForRows(rows);
        ASSERT_EQ(rows.getCount(), count);
        EXPECT_EQ(entryOf(rows, 2).offset, 4 * third);
    }
}

TEST(MessageRows, AFilterWithoutSenseIsReportedAndSelectsNothing)
{
    MessageRows rows;
    QString reason;
    QObject::connect(&rows, &MessageRows::failed, [&](const QString& text) { reason = text; });
    rows.setLog(std::make_shared<TinyLog>(50));
    rows.setFilter({{}, {}, {}, "Value > 3"});
    waitForRows(rows);
    EXPECT_EQ(reason, "tiny logs know no conditions");
    EXPECT_EQ(rows.getCount(), 0U);
}

TEST(MessageRows, ALogOfAnyLengthTakesOnlyTheLastPages)
{
    MessageRows rows;
    rows.setLog(std::make_shared<TinyLog>(200'000'000, 8192)); // as of more than 10 GB
    ASSERT_EQ(rows.getCount(), 200'000'000U);
    for (uint64_t row = 0; row < rows.getCount(); row += 1'000'000)
        EXPECT_EQ(entryOf(rows, row).offset, 4 * row);
    EXPECT_LE(rows.getLoadedPages(), MessageRows::mostPages);
}

TEST(MessageRows, FindsTimesAndOffsetsAmongTheRowsThatAreSelected)
{
    MessageRows rows;
    rows.setLog(std::make_shared<TinyLog>(1000));
    std::optional<uint64_t> found;
    QObject::connect(&rows, &MessageRows::found, [&](qulonglong row) { found = row; });
    const auto wait = [&] {
        EXPECT_TRUE(waitFor([&] { return found.has_value(); }));
        return *std::exchange(found, std::nullopt);
    };
    rows.findTime(500'500);
    EXPECT_EQ(wait(), 501U);
    rows.findOffset(4 * 77 + 2);
    EXPECT_EQ(wait(), 77U);
    rows.setFilter({{"Temp"}, {}, {}, {}});
    waitForRows(rows);
    rows.findTime(501'000);
    EXPECT_EQ(wait(), 101U);
}

TEST(MessageRows, ALogThatGoesOnKeepsItsRowsAndAddsTheNewOnes)
{
    for (const QStringList& types : {QStringList(), QStringList("Temp")}) {
        MessageRows rows;
        rows.setLog(std::make_shared<TinyLog>(103));
        rows.setFilter({types, {}, {}, {}});
        waitForRows(rows);
        bool isFromScratch = false;
        QObject::connect(&rows, &MessageRows::rowsChanged,
                         [&](bool fromScratch) { isFromScratch |= fromScratch; });
        rows.setLog(std::make_shared<TinyLog>(250), true);
        waitForRows(rows);
        EXPECT_EQ(rows.getCount(), types.isEmpty() ? 250U : 50U);
        EXPECT_FALSE(isFromScratch);
        EXPECT_EQ(entryOf(rows, 49).offset, types.isEmpty() ? 49U * 4 : 245U * 4);
    }
}

TEST(FieldRows, ShowAFormatThatNobodyKnows)
{
    const TinyLog log(10);
    const std::vector<FieldRow> speed = fieldRowsOf(log.load(log.entryAt(7)), log);
    ASSERT_EQ(speed.size(), 3U);
    EXPECT_EQ(speed[2].name, "Value");
    EXPECT_EQ(speed[2].value, "0.7");
    EXPECT_EQ(speed[2].unit, "knots");
    EXPECT_EQ(speed[2].raw, "7");
    EXPECT_EQ(speed[2].expression, "Tiny:Speed:Value");
    EXPECT_EQ(rowAtByte(speed, 3), 2);
    EXPECT_EQ(speed[0].meaning, "what it is");

    const std::vector<FieldRow> temp = fieldRowsOf(log.load(log.entryAt(5)), log);
    ASSERT_EQ(temp.size(), 8U); // kind, readings, and two of them with two fields each
    EXPECT_EQ(temp[5].path, "Readings[1]");
    EXPECT_EQ(temp[5].value, "2");
    EXPECT_EQ(temp[7].value, "-5");
    EXPECT_EQ(temp[7].parent, 5);
}

// Every byte of every block is in a field of the tree, and every field with a value of its own has
// the bytes that hold it.
TEST(FieldRows, BytesAndFieldsOfBlocksBelongTogether)
{
    const QTemporaryDir folder;
    const auto log = openLog(folder, simulatedLog(2));
    QSet<QString> types;
    size_t fields = 0;
    for (uint32_t page = 0; page < log->getPageCount(); ++page) {
        for (const MessageEntry& entry : log->loadPage(page)) {
            if (types.contains(entry.type))
                continue;
            types.insert(entry.type);
            const MessageContent content = log->load(entry);
            ASSERT_TRUE(content.message) << qPrintable(entry.type);
            const std::vector<FieldRow> rows = fieldRowsOf(content, *log);
            std::vector<bool> covered(static_cast<size_t>(content.bytes.size()), false);
            for (const FieldRow& row : rows) {
                const bool isComputed = row.field->isVirtual() || row.name == "TOWc";
                if (row.size == 0 && row.children.empty() && !isComputed)
                    ADD_FAILURE() << qPrintable(entry.type + ' ' + row.path) << " has no bytes";
                for (uint32_t i = row.offset; i < row.offset + row.size; ++i)
                    covered.at(i) = true;
                ++fields;
            }
            for (size_t i = 0; i < covered.size(); ++i) {
                // What follows the last field is padding, which the codec has no field for.
                const bool isKnown = covered[i] || i + 4 > covered.size();
                EXPECT_TRUE(isKnown) << qPrintable(entry.type) << " byte " << i;
            }
        }
    }
    EXPECT_GT(types.size(), 30);
    EXPECT_GT(fields, 500U);
}

TEST(PlotSeries, NoPeakIsLostByThinningOrByPixels)
{
    PlotSeries series("x");
    for (int i = 0; i < 100'000; ++i)
        series.add(i * 1000.0, i == 54'321 ? 99 : i == 70'001 ? -99 : std::sin(i));
    const auto extremes = [&] {
        std::vector<size_t> breaks;
        const std::vector<PlotPoint> points = series.visible(0, 1e8, 500, breaks);
        EXPECT_LE(points.size(), 4U * 500 + 8);
        EXPECT_TRUE(breaks.empty());
        double least = 0;
        double greatest = 0;
        double last = -1;
        for (const PlotPoint& point : points) {
            EXPECT_GE(point.time, last);
            last = point.time;
            least = std::min(least, point.value);
            greatest = std::max(greatest, point.value);
        }
        return std::pair(least, greatest);
    };
    EXPECT_EQ(extremes(), std::pair(-99.0, 99.0));
    for (int i = 0; i < 3; ++i)
        series.thin();
    EXPECT_LE(series.size(), 100'000U / 8 + 8);
    EXPECT_EQ(extremes(), std::pair(-99.0, 99.0));
}

TEST(PlotSeries, BreaksWhereValuesAreMissing)
{
    PlotSeries series("x");
    for (const double time : {0.0, 1.0, 2.0, 3.0, 8.0, 9.0})
        series.add(time * 1000, time);
    std::vector<size_t> breaks;
    EXPECT_EQ(series.visible(0, 10'000, 100, breaks).size(), 6U);
    EXPECT_EQ(breaks, std::vector<size_t>{4});
    EXPECT_EQ(series.nearest(7000)->value, 8);
    EXPECT_EQ(series.nearest(4000)->value, 3);
}

// As of the same log several times in a row, looked at now and then while it is read.
TEST(PlotSeries, TimesThatGoBackCostLittleAndAreSortedIn)
{
    constexpr int count = 10'000;
    constexpr int copies = 4;
    PlotSeries series("x");
    std::vector<size_t> breaks;
    for (int copy = 0; copy < copies; ++copy) {
        for (int i = 0; i < count; ++i)
            series.add(i * 1000.0, copy);
        series.visible(0, 1000.0 * count, 100, breaks);
    }
    ASSERT_EQ(series.size(), size_t{copies} * count);
    for (size_t i = 0; i < series.size(); ++i) {
        const size_t second = i / copies;
        ASSERT_EQ(series[i].time, static_cast<double>(second) * 1000) << i;
    }
    EXPECT_LT(series.getMoved(), uint64_t{copies} * copies * count);
}

TEST(PlotSeries, LatePointsFillGapsAndHaveTheirOwn)
{
    PlotSeries series("x");
    for (const double time : {10.0, 11.0, 12.0, 13.0, 17.0, 18.0, 22.0, 23.0})
        series.add(time, time);
    for (const double time : {1.0, 2.0, 5.0, 6.0, 14.0, 15.0, 16.0})
        series.add(time, time);
    std::vector<size_t> breaks;
    std::vector<double> ends;
    const std::vector<PlotPoint> points = series.visible(0, 30, 100, breaks);
    ASSERT_EQ(points.size(), 15U);
    for (const size_t place : breaks)
        ends.push_back(points[place].time);
    EXPECT_EQ(ends, (std::vector<double>{5, 10, 22}));
}

TEST(PlotField, HasASeriesForEachThingThatIsIdentified)
{
    const struct {
        const char* expression;
        size_t series;
        const char* name;
        size_t points;
        double third;
    } cases[] = {
        {"Tiny:Speed:Value", 1, "", 80, 0.3},
        {"Tiny:Temp:Readings:Degrees", 2, "2", 20, -10},
    };
    for (const auto& [expression, count, name, points, third] : cases) {
        PlotField field(expression);
        field.setLog(std::make_shared<TinyLog>(60), false);
        field.setLog(std::make_shared<TinyLog>(100), true); // goes on
        ASSERT_TRUE(waitFor([&] { return !field.isReading(); }));
        ASSERT_EQ(field.getSeries().size(), count) << expression;
        const PlotSeries& last = field.getSeries().back();
        EXPECT_EQ(last.getName(), name);
        ASSERT_EQ(last.size(), points) << expression;
        EXPECT_DOUBLE_EQ(last[2].value, third);
    }
}

TEST(PlotField, WhatIsNoNumberIsReported)
{
    for (const char* expression : {"Tiny:Speed:Nothing", "Other:Speed:Value", "Tiny:Speed:Kind"}) {
        PlotField field(expression);
        QString reason;
        QObject::connect(&field, &PlotField::failed, [&](const QString& text) { reason = text; });
        field.setLog(std::make_shared<TinyLog>(10), false);
        EXPECT_EQ(reason, QString("%1 is not a numeric field").arg(expression));
    }
}

TEST(Timeline, FindsTheOutageAndTheDamage)
{
    const QTemporaryDir folder;
    const auto log = openLog(folder, logWithOutage(30));
    const auto found = readTimeline(*log, TaskToken());
    ASSERT_FALSE(found->rows.empty());
    ASSERT_EQ(found->rows[0].missing.size(), 1U);
    EXPECT_EQ(found->rows[0].missing[0].to - found->rows[0].missing[0].from, 61'000);
    int outages = 0;
    int damages = 0;
    for (const TimelineFault& fault : found->faults) {
        outages += fault.kind == TimelineFault::Kind::Outage && fault.type.isEmpty();
        if (fault.kind != TimelineFault::Kind::Damage)
            continue;
        ++damages;
        EXPECT_LE(fault.offset, static_cast<uint64_t>(damagedByte(30)));
        EXPECT_GE(fault.time, found->rows[0].present[0].from);
        EXPECT_LT(fault.time, found->rows[0].missing[0].from);
    }
    EXPECT_EQ(outages, 1);
    EXPECT_EQ(damages, 1);

    TaskToken cancelled;
    cancelled.cancel();
    EXPECT_EQ(readTimeline(*log, cancelled), nullptr);
}

// A log that grows faster than it is read still has a time line.
TEST(Timeline, ReadsToTheEndWhileALogGoesOn)
{
    Timeline timeline;
    const auto slowLog = [](uint64_t count) {
        const auto log = std::make_shared<TinyLog>(count);
        log->onRead = [] { std::this_thread::sleep_for(std::chrono::microseconds(50)); };
        return log;
    };
    timeline.setLog(slowLog(1000), true);
    QElapsedTimer clock;
    clock.start();
    constexpr qint64 patience = 20'000;
    for (uint64_t count = 1001; timeline.getData().rows.empty(); ++count) {
        ASSERT_LT(clock.elapsed(), patience);
        timeline.setLog(slowLog(count), true);
        QTest::qWait(1);
    }
    EXPECT_EQ(timeline.getData().rows[0].count, 1000U);
    timeline.setLog(std::make_shared<TinyLog>(50'000), true);
    EXPECT_TRUE(waitFor([&] { return timeline.getData().rows[0].count == 50'000; }));
    timeline.setLog(nullptr);
    EXPECT_FALSE(timeline.isReading());
    EXPECT_TRUE(timeline.getData().rows.empty());
}

TEST(GnssSurvey, KnowsSatellitesAndPositions)
{
    const QTemporaryDir folder;
    const auto log = openLog(folder, logWithOutage(20));
    const auto found = readGnss(*log, TaskToken());
    EXPECT_EQ(found->strengths.size(), 40U);
    EXPECT_GT(found->strengths[3].signals.size(), 30U);
    EXPECT_EQ(found->positions, 40U);
    EXPECT_EQ(found->trackSource, "PVTGeodetic2");
    ASSERT_FALSE(found->directions.empty());
    for (const Direction& direction : found->directions[0].directions) {
        EXPECT_GE(direction.azimuth, 0);
        EXPECT_LT(direction.azimuth, 360);
        EXPECT_LE(direction.elevation, 90);
    }
    // The outage ends what was tracked.
    ASSERT_FALSE(found->visibility.empty());
    EXPECT_EQ(found->visibility[0].satellite.system, 'G');
    EXPECT_EQ(found->visibility[0].spans.size(), 2U);

    const std::vector<LocalPoint> points = localTrack(found->track, meanOf(found->track));
    const TrackFigures figures = figuresOf(points);
    EXPECT_LT(std::abs(figures.mean.x) + std::abs(figures.mean.y), 1e-3);
    EXPECT_GT(figures.horizontal, 0.05); // noise of a receiver that stands still
    EXPECT_LT(figures.horizontal, 10);
}

TEST(LabelPlaces, LabelsCoverNeitherEachOtherNorMarks)
{
    constexpr double radius = 4;
    const QRectF bounds(0, 0, 400, 400);
    std::vector<Mark> marks;
    for (const QPointF& place :
         {QPointF(200, 200), QPointF(206, 203), QPointF(212, 198), QPointF(230, 200),
          QPointF(398, 200), QPointF(3, 3), QPointF(200, 397), QPointF(215, 215)})
        marks.push_back({place, {24, 10}});
    const std::vector<QRectF> labels = placeLabels(marks, radius, bounds);
    ASSERT_EQ(labels.size(), marks.size());
    for (size_t i = 0; i < labels.size(); ++i) {
        EXPECT_TRUE(bounds.contains(labels[i])) << i;
        EXPECT_LT(QLineF(labels[i].center(), marks[i].place).length(), 40) << i;
        for (size_t k = 0; k < labels.size(); ++k) {
            EXPECT_FALSE(k != i && labels[i].intersects(labels[k])) << i << ' ' << k;
            const QPointF half(radius, radius);
            EXPECT_FALSE(labels[i].intersects({marks[k].place - half, marks[k].place + half}))
                << i << ' ' << k;
        }
    }
}

TEST(TrackFigures, ReadsPlaces)
{
    tqx::Geodetic place = {};
    EXPECT_TRUE(parsePlace("47.07, 15.45, 412.3", place));
    EXPECT_NEAR(place.latitude, 0.821526, 1e-6);
    EXPECT_EQ(place.height, 412.3);
    EXPECT_TRUE(parsePlace("-12 130.5", place));
    for (const char* text : {"", "47", "47, north", "91, 0", "1, 2, 3, 4"})
        EXPECT_FALSE(parsePlace(text, place)) << text;
}

TEST(TqxLog, ReadsTimesAsPeopleWriteThem)
{
    const QTemporaryDir folder;
    const auto log = openLog(folder, simulatedLog(1));
    EXPECT_EQ(log->parseTime("2400:216000"), *log->getFirstTime());
    EXPECT_EQ(log->parseTime("2026-01-06T12:00:00"), *log->getFirstTime());
    EXPECT_EQ(log->parseTime(log->timeText(*log->getFirstTime(), false)), *log->getFirstTime());
    EXPECT_THROW(log->parseTime("yesterday"), std::exception);
}

} // namespace
