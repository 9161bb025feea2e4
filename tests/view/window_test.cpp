#include "Logs.h"
#include "TinyLog.h"

#include "model/TqxLog.h"
#include "view/BytesView.h"
#include "view/MainWindow.h"
#include "view/MessagePage.h"
#include "view/MessageTable.h"
#include "view/PlotPage.h"
#include "view/PlotPanel.h"
#include "view/SkyPage.h"
#include "view/SpanPlot.h"
#include "view/TimelinePage.h"
#include "view/TrackPage.h"
#include "view/TypeList.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QSettings>
#include <QSlider>
#include <QSvgRenderer>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>

#include <gtest/gtest.h>
#include <qwt_plot.h>

#include <ctime>
#include <thread>

#ifdef __unix__
#include <unistd.h>
#endif

using namespace tqx::view;

namespace
{

/// Few in a picture without curves, grid and smoothed texts.
int coloursOf(const QImage& picture)
{
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); y += 2) {
        for (int x = 0; x < picture.width(); x += 2)
            colours.insert(picture.pixel(x, y));
    }
    return colours.size();
}

/// Of this process in bytes, 0 where it is not known.
size_t memoryInUse()
{
    QFile pages("/proc/self/statm");
    constexpr size_t pageSize = 4096;
    return pages.open(QIODevice::ReadOnly) ? pages.readAll().split(' ')[1].toULong() * pageSize : 0;
}

/// What this thread has worked so far.
double workMillis()
{
#ifdef __unix__
    timespec spent = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &spent);
    return static_cast<double>(spent.tv_sec) * 1e3 + static_cast<double>(spent.tv_nsec) / 1e6;
#else
    return static_cast<double>(std::clock()) * 1e3 / CLOCKS_PER_SEC;
#endif
}

class Window : public testing::Test
{
protected:
    Window()
    {
        QSettings().clear();
        m_window.show();
    }

    void open(const QByteArray& content)
    {
        m_window.open({writeFile(m_folder, "log.tqx", content)});
        ASSERT_TRUE(waitFor([&] { return m_window.getDocument().getLog() != nullptr; }));
    }

    MessageTable& table() { return *m_window.findChild<MessageTable*>(); }
    QTreeView& tree() { return *m_window.findChild<QTreeView*>("fields"); }
    BytesView& bytes() { return *m_window.findChild<BytesView*>(); }
    const FieldTreeModel& fields() { return m_window.getMessages().getFields(); }

    /// Waits until a field of that path is in the tree, and selects it.
    void selectField(const QString& path)
    {
        ASSERT_TRUE(waitFor([&] { return fields().rowOfPath(path) != FieldRow::none; }));
        tree().setCurrentIndex(fields().indexOf(fields().rowOfPath(path)));
    }

    void type(const char* name, const char* text)
    {
        auto* edit = m_window.findChild<QLineEdit*>(name);
        ASSERT_TRUE(edit);
        edit->clear();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    QByteArray contentOf(const QString& name)
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    uint64_t rows() { return m_window.getMessages().getRows().getCount(); }

    QTemporaryDir m_folder;
    MainWindow m_window;
};

TEST_F(Window, SelectingAFieldMarksItsBytesAndTheOtherWayRound)
{
    open(simulatedLog(2));
    type("condition", "has Latitude and has NrSV");
    ASSERT_TRUE(waitFor([&] { return !m_window.getMessages().getRows().isSearching(); }));
    selectField("NrSV"); // of the first message that the condition holds for
    selectField("Latitude");
    EXPECT_EQ(bytes().getMarkedOffset(), 16U);
    EXPECT_EQ(bytes().getMarkedSize(), 8U);

    QTest::mouseClick(bytes().viewport(), Qt::LeftButton, {}, bytes().cellOf(8).center());
    const int row = FieldTreeModel::rowOf(tree().currentIndex());
    EXPECT_EQ(fields().getRows()[static_cast<size_t>(row)].path, "TOW");
    EXPECT_EQ(bytes().getMarkedSize(), 4U);

    // The same field of the next message is selected again.
    QTest::keyClick(&table(), Qt::Key_Down);
    ASSERT_TRUE(waitFor([&] { return bytes().getMarkedSize() == 4; }));
}

TEST_F(Window, FiltersByTypeTimeAndCondition)
{
    open(simulatedLog(10));
    const uint64_t all = rows();
    auto& types = *m_window.findChild<TypeList*>();
    const QList<QTreeWidgetItem*> found = types.findItems("PVTGeodetic2", Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1);
    types.setCurrentItem(found[0]);
    EXPECT_TRUE(waitFor([&] { return rows() == 10; }));
    type("from", "2400:216003");
    EXPECT_TRUE(waitFor([&] { return rows() == 7; }));
    type("condition", "NrSV > 1000");
    EXPECT_TRUE(waitFor([&] { return rows() == 0; }));
    type("condition", "NrSV > ");
    auto* error = m_window.findChild<QLabel*>("filterError");
    EXPECT_TRUE(waitFor([&] { return error->isVisible() && !error->text().isEmpty(); }));
    type("condition", "");
    type("from", "");
    types.setCurrentItem(types.topLevelItem(0));
    EXPECT_TRUE(waitFor([&] { return rows() == all; }));
    EXPECT_FALSE(error->isVisible());
}

TEST_F(Window, PlotsTheFieldThatIsSelectedAndZooms)
{
    open(simulatedLog(10));
    type("condition", "any(Type1: SVID like \"G*\")");
    ASSERT_TRUE(waitFor([&] { return !m_window.getMessages().getRows().isSearching(); }));
    selectField("Type1[1].CN0");
    QTest::keyClick(&tree(), Qt::Key_Return);
    PlotPage& plots = m_window.getPlots();
    ASSERT_EQ(m_window.getTabs().currentWidget(), &plots);
    ASSERT_EQ(plots.getPanels().size(), 1U);
    PlotPanel& panel = *plots.getPanels()[0];
    ASSERT_TRUE(waitFor([&] { return !panel.getField().isReading(); }));
    ASSERT_EQ(panel.getShown().size(), 1U) << qPrintable(panel.getChoice());
    EXPECT_EQ(panel.getShown()[0]->size(), 10U);
    EXPECT_EQ(panel.getField().getTitle(), "MeasEpoch2:Type1:CN0 [dB-Hz]");

    type("plotName", "pvtgeodetic2:height");
    ASSERT_EQ(plots.getPanels().size(), 2U);
    const double width = plots.getTo() - plots.getFrom();
    plots.setFocus();
    QTest::keyClick(&plots, Qt::Key_Plus);
    EXPECT_NEAR(plots.getTo() - plots.getFrom(), width / 2, 1e-3);
    const double from = plots.getFrom();
    QTest::keyClick(&plots, Qt::Key_Right);
    EXPECT_NEAR(plots.getFrom(), from + width / 10, 1e-3);
    QTest::keyClick(&plots, Qt::Key_0);
    EXPECT_NEAR(plots.getTo() - plots.getFrom(), width, 1e-3);

    type("plotName", "PVTGeodetic2:Nothing");
    EXPECT_EQ(plots.getPanels().size(), 2U);
}

TEST_F(Window, ExportsPicturesDrawingsAndTables)
{
    open(simulatedLog(5));
    PlotPage& plots = m_window.getPlots();
    EXPECT_FALSE(plots.exportTo(m_folder.filePath("nothing.png")));
    plots.add("TQX:PVTGeodetic2:Height", "");
    ASSERT_TRUE(waitFor([&] { return !plots.getPanels()[0]->getField().isReading(); }));
    ASSERT_TRUE(plots.exportTo(m_folder.filePath("plot.png")));
    EXPECT_GT(coloursOf(QImage(m_folder.filePath("plot.png"))), 8);

    ASSERT_TRUE(plots.exportTo(m_folder.filePath("plot.svg")));
    EXPECT_TRUE(QSvgRenderer(m_folder.filePath("plot.svg")).isValid());

    ASSERT_TRUE(plots.exportTo(m_folder.filePath("plot.csv")));
    const QList<QByteArray> lines = contentOf("plot.csv").trimmed().split('\n');
    ASSERT_EQ(lines.size(), 6);
    EXPECT_EQ(lines[0], "time,field,series,value,unit");
    EXPECT_TRUE(lines[1].startsWith("2026-01-06 12:00:00.000,TQX:PVTGeodetic2:Height,,41"));
    EXPECT_TRUE(lines[1].endsWith(",m"));
    EXPECT_FALSE(plots.exportTo(m_folder.filePath("no/folder/plot.csv")));
}

TEST_F(Window, ExportsEveryPage)
{
    open(logWithOutage(20));
    QTabWidget& tabs = m_window.getTabs();
    tabs.setCurrentWidget(&m_window.getTimeline());
    tabs.setCurrentWidget(&m_window.getSky());
    tabs.setCurrentWidget(&m_window.getTrack());
    ASSERT_TRUE(waitFor([&] {
        return m_window.getSurvey().getData().positions > 0 &&
               m_window.getTimeline().getFaults().topLevelItemCount() > 0;
    }));
    const struct {
        ExportPage& page;
        const char* head;
        int lines;
        const char* line; // one of them
    } cases[] = {
        {m_window.getTimeline(), "time,seconds,kind,type,offset,details", 0,
         "2026-01-06 12:00:19.000,61.000,outage,,,"},
        {m_window.getSky(), "time,satellite,signal,cn0,azimuth,elevation", 0,
         "2026-01-06 12:00:00.000,G"},
        {m_window.getTrack(), "time,latitude,longitude,height,east,north,up,fix", 41,
         "2026-01-06 12:00:19.000,47.07"},
    };
    for (const auto& [page, head, lines, line] : cases) {
        tabs.setCurrentWidget(&page);
        for (const char* name : {"x.png", "x.svg", "x.pdf", "x.csv"})
            ASSERT_TRUE(page.exportTo(m_folder.filePath(name))) << head << ' ' << name;
        EXPECT_GT(coloursOf(QImage(m_folder.filePath("x.png"))), 8) << head;
        QSvgRenderer drawing(m_folder.filePath("x.svg"));
        QImage drawn(page.size(), QImage::Format_RGB32);
        QPainter painter(&drawn);
        drawing.render(&painter);
        painter.end();
        EXPECT_GT(coloursOf(drawn), 8) << head;
        EXPECT_TRUE(contentOf("x.pdf").startsWith("%PDF-")) << head;
        const QList<QByteArray> table = contentOf("x.csv").trimmed().split('\n');
        EXPECT_EQ(table[0], head);
        EXPECT_TRUE(lines == 0 || table.size() == lines) << head << ' ' << table.size();
        EXPECT_TRUE(contentOf("x.csv").contains(QByteArray("\n") + line)) << head;
        EXPECT_FALSE(page.exportTo(m_folder.filePath("x.txt"))) << head;
    }
}

TEST_F(Window, ARubberBandZoomsTimesAndValues)
{
    open(simulatedLog(20));
    PlotPage& plots = m_window.getPlots();
    m_window.getTabs().setCurrentWidget(&plots);
    plots.add("TQX:PVTGeodetic2:Height", "");
    PlotPanel& panel = *plots.getPanels()[0];
    ASSERT_TRUE(waitFor([&] { return !panel.getField().isReading(); }));
    QTest::qWait(300); // until the values have a scale
    QwtPlot& plot = panel.getPlot();
    const auto drag = [&](Qt::MouseButton button, Qt::KeyboardModifiers modifiers, QPoint from,
                          QPoint to) {
        QTest::mousePress(plot.canvas(), button, modifiers, from);
        QMouseEvent move(QEvent::MouseMove, to, button, button, modifiers);
        QCoreApplication::sendEvent(plot.canvas(), &move);
        QTest::mouseRelease(plot.canvas(), button, modifiers, to);
    };
    const auto values = [&] {
        const QwtInterval scale = plot.axisInterval(QwtPlot::yLeft);
        return std::pair(scale.minValue(), scale.maxValue());
    };
    const double width = plots.getTo() - plots.getFrom();
    const auto all = values();
    constexpr double margin = 0.03; // of the canvas around the scales
    const int middle = plot.canvas()->width() / 2;
    drag(Qt::RightButton, Qt::NoModifier, {0, 20}, {middle, 22}); // level: times only
    EXPECT_NEAR(plots.getTo() - plots.getFrom(), width / 2, width * margin);
    const auto half = values();
    const int height = plot.canvas()->height();
    drag(Qt::LeftButton, Qt::ShiftModifier, {middle, height / 2}, {1, 1});
    EXPECT_NEAR(plots.getTo() - plots.getFrom(), width / 4, width * margin);
    const double span = half.second - half.first;
    EXPECT_NEAR(values().first, (half.first + half.second) / 2, span * margin);
    EXPECT_NEAR(values().second, half.second, span * margin);
    plots.setFocus();
    QTest::keyClick(&plots, Qt::Key_0);
    EXPECT_NEAR(plots.getTo() - plots.getFrom(), width, 1e-3);
    EXPECT_EQ(values(), all);
}

TEST_F(Window, LeadsFromTheOutageToItsMessages)
{
    open(logWithOutage(20));
    m_window.getTabs().setCurrentWidget(&m_window.getTimeline());
    QTreeWidget& faults = m_window.getTimeline().getFaults();
    ASSERT_TRUE(waitFor([&] { return faults.topLevelItemCount() > 0; }));
    const QList<QTreeWidgetItem*> outage =
        faults.findItems("Outage of all messages", Qt::MatchExactly, 2);
    ASSERT_EQ(outage.size(), 1);
    EXPECT_EQ(outage[0]->text(0), "2026-01-06 12:00:19.000");
    Q_EMIT faults.itemActivated(outage[0], 0);
    EXPECT_EQ(m_window.getTabs().currentWidget(), &m_window.getMessages());
    const std::shared_ptr<const MessageLog> log = m_window.getDocument().getLog();
    const int64_t time = log->parseTime("2026-01-06 12:00:19.000");
    EXPECT_TRUE(waitFor([&] {
        const auto entry =
            m_window.getMessages().getRows().getEntry(table().getCurrent().value_or(0));
        return entry && entry->time == time;
    }));
}

TEST_F(Window, ShowsSatellitesAndTheTrack)
{
    open(simulatedLog(10));
    m_window.getTabs().setCurrentWidget(&m_window.getSky());
    QSlider& slider = m_window.getSky().getSlider();
    ASSERT_TRUE(waitFor([&] { return slider.maximum() == 9; }));
    EXPECT_GT(m_window.getSky().getVisibility().getRows().size(), 40U);
    slider.setValue(7);
    m_window.getTabs().setCurrentWidget(&m_window.getTrack());
    EXPECT_TRUE(m_window.getTrack().getFiguresText().startsWith("10 positions of PVTGeodetic2"))
        << qPrintable(m_window.getTrack().getFiguresText());
    QTest::keyClicks(&m_window.getTrack().getCentre(), "somewhere");
    QTest::keyClick(&m_window.getTrack().getCentre(), Qt::Key_Return);
    EXPECT_TRUE(m_window.getTrack().getFiguresText().startsWith("somewhere is not a place"));
}

TEST_F(Window, FollowsAFileAndStaysAtItsEnd)
{
    const QByteArray log = simulatedLog(6);
    open(log.left(log.size() / 2));
    m_window.setFollowing(true);
    const uint64_t before = rows();
    EXPECT_EQ(table().getCurrent(), before - 1);
    QFile file(m_folder.filePath("log.tqx"));
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write(log.mid(log.size() / 2));
    file.close();
    ASSERT_TRUE(waitFor([&] { return rows() > before; }));
    EXPECT_EQ(table().getCurrent(), rows() - 1);
}

TEST_F(Window, OtherFormatsAreShownByTheSameViews)
{
    m_window.getDocument().show(std::make_shared<TinyLog>(500));
    EXPECT_EQ(rows(), 500U);
    selectField("Readings[1].Degrees");
    QTest::keyClick(&tree(), Qt::Key_Return);
    ASSERT_EQ(m_window.getPlots().getPanels().size(), 1U);
    PlotPanel& panel = *m_window.getPlots().getPanels()[0];
    ASSERT_TRUE(waitFor([&] { return !panel.getField().isReading(); }));
    ASSERT_EQ(panel.getShown().size(), 1U);
    EXPECT_EQ(panel.getField().getTitle(), "Temp:Readings:Degrees [C]");
    m_window.getTabs().setCurrentWidget(&m_window.getTimeline());
    EXPECT_TRUE(
        waitFor([&] { return m_window.getTimeline().getTimeline().getData().rows.size() == 3; }));
}

TEST_F(Window, KeepsTheSessionAndTakesDroppedFiles)
{
    open(simulatedLog(1));
    const QString path = m_folder.filePath("log.tqx");
    m_window.getPlots().add("TQX:PVTGeodetic2:Height", "");
    m_window.getTabs().setCurrentIndex(2);
    m_window.saveSession();
    MainWindow next;
    next.restoreSession(true);
    ASSERT_TRUE(waitFor([&] { return next.getDocument().getLog() != nullptr; }));
    EXPECT_EQ(QFileInfo(next.getDocument().getPaths()[0]), QFileInfo(path));
    EXPECT_EQ(next.getTabs().currentIndex(), 2);
    EXPECT_EQ(next.getPlots().getPanels().size(), 1U);
    EXPECT_EQ(QSettings().value("recent").toStringList(), QStringList(path));

    const QString other = writeFile(m_folder, "other.tqx", simulatedLog(2));
    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(other)});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&next, &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop({5, 5}, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&next, &drop);
    EXPECT_TRUE(waitFor([&] { return next.windowTitle().startsWith("other.tqx"); }));
}

// Of 10 GB, made as it is read.
TEST_F(Window, ALogOfTenGigabytesIsScrolledMarkedAndFollowed)
{
    constexpr uint64_t count = 200'000'000;
    constexpr uint32_t perPage = 4096;
    constexpr uint32_t spacing = 50;
    m_window.getDocument().show(std::make_shared<TinyLog>(count, perPage, spacing));
    ASSERT_EQ(rows(), count);
    EXPECT_GE(m_window.getDocument().getLog()->getSize(), 10'000'000'000U);
    const size_t before = memoryInUse();
    for (const uint64_t row : {count / 3, count - 1, uint64_t{0}, count / 2}) {
        table().select(row);
        ASSERT_TRUE(waitFor([&] { return bytes().getOffset() == row * spacing; })) << row;
        selectField(row % 5 == 0 ? "Kind" : "Value");
        EXPECT_EQ(bytes().getMarkedOffset(), row % 5 == 0 ? 0U : 2U);
    }
    QTest::keyClick(&table(), Qt::Key_End);
    EXPECT_EQ(table().getCurrent(), count - 1);
    m_window.getMessages().goToOffset(9'000'000'002);
    EXPECT_TRUE(waitFor([&] { return table().getCurrent() == 9'000'000'000 / spacing; }));
    for (int i = 0; i < 200; ++i) { // through all of it, page after page
        table().select(count / 200 * static_cast<uint64_t>(i));
        QTest::qWait(1);
    }
    m_window.getMessages().setStickingToEnd(true);
    for (uint64_t more = 1; more <= 50; ++more) {
        m_window.getDocument().show(
            std::make_shared<TinyLog>(count + more * 1000, perPage, spacing), true);
        EXPECT_EQ(table().getCurrent(), count + more * 1000 - 1);
    }
    EXPECT_LE(m_window.getMessages().getRows().getLoadedPages(), MessageRows::mostPages);
#ifdef TQX_SLOW_BUILD
    constexpr size_t bound = 1'000'000'000; // sanitizers keep what was freed
#else
    constexpr size_t bound = 100'000'000;
#endif
    EXPECT_LT(memoryInUse(), before + bound);
}

TEST_F(Window, AnswersWhileALogOfThousandsOfTypesGrows)
{
    constexpr uint64_t perSecond = 5000;
    // The work between two beats, so that other programs make no difference.
    double last = workMillis();
    double longest = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&] {
        longest = std::max(longest, workMillis() - last);
        last = workMillis();
    });
    m_window.getDocument().show(std::make_shared<TinyLog>(1));
    m_window.getMessages().setStickingToEnd(true);
    heart.start(5);
    constexpr uint64_t steps = 10;
    for (uint64_t step = 1; step <= steps; ++step) {
        const auto log = std::make_shared<TinyLog>(step * perSecond, 4096);
        log->addTypes(3000 + static_cast<int>(step));
        m_window.getDocument().show(log, true);
        if (step == steps / 2)
            m_window.getTabs().setCurrentIndex(2);
        QTest::qWait(100);
    }
    EXPECT_GT(longest, 0);
#ifndef TQX_SLOW_BUILD
    EXPECT_LE(longest, 100);
#endif
    EXPECT_EQ(rows(), steps * perSecond);
    EXPECT_EQ(m_window.findChild<TypeList*>()->topLevelItemCount(), 3000 + 10 + 3);
}

#ifdef __unix__
TEST_F(Window, ShowsStandardInputAsItComes)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int before = dup(STDIN_FILENO);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    m_window.open({"-"});
    EXPECT_TRUE(waitFor([&] { return m_window.getDocument().getLog() != nullptr; }));
    uint64_t shown = 0;
    for (int part = 0; part < 3; ++part) {
        const QByteArray some = simulatedLog(2, 2 * part);
        ASSERT_EQ(write(ends[1], some.constData(), static_cast<size_t>(some.size())), some.size());
        EXPECT_TRUE(waitFor([&] { return rows() > shown + 50; })) << part;
        shown = rows();
    }
    EXPECT_EQ(table().getCurrent(), rows() - 1);
    close(ends[1]);
    // The end of the pipe leaves what has come.
    QTest::qWait(100);
    EXPECT_GE(rows(), shown);
    dup2(before, STDIN_FILENO);
    close(before);
}
#endif

// Reading waits as from a slow disk; the window must not.
TEST_F(Window, AnswersWhileALogIsReadSlowly)
{
    const auto log = std::make_shared<TinyLog>(50'000'000, 8192);
    log->onRead = [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); };
    QElapsedTimer clock;
    qint64 longest = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout,
                     [&] { longest = std::max(longest, clock.restart()); });
    m_window.getDocument().show(log);
    clock.start();
    heart.start(5);
    m_window.getPlots().add("Tiny:Speed:Value", "");
    for (int i = 0; i < m_window.getTabs().count(); ++i) {
        m_window.getTabs().setCurrentIndex(i);
        QTest::qWait(100);
    }
    m_window.getTabs().setCurrentIndex(0);
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(&table(), i % 2 == 0 ? Qt::Key_End : Qt::Key_Home);
        QTest::qWait(10);
    }
    EXPECT_GT(longest, 0);
#ifndef TQX_SLOW_BUILD
    EXPECT_LE(longest, 100);
#endif
    m_window.getDocument().close();
    EXPECT_EQ(rows(), 0U);
}

} // namespace
