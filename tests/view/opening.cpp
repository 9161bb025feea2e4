// view_opening LOG
//
// Measures how long it takes until the messages, time line and satellites of a log are shown, how
// long the window did not answer meanwhile, and the memory of the process.

#include "model/Timeline.h"
#include "view/MainWindow.h"
#include "view/MessagePage.h"
#include "view/PlotPage.h"
#include "view/PlotPanel.h"
#include "view/TimelinePage.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace
{

QByteArray memory()
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return "unknown";
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed();
    }
    return "unknown";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: view_opening LOG\n");
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    tqx::view::MainWindow window;
    window.show();
    QElapsedTimer beat;
    qint64 longest = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout,
                     [&] { longest = std::max(longest, beat.restart()); });
    heart.start(5);
    const auto measure = [&](const char* what, const std::function<void()>& begin,
                             const std::function<bool()>& isDone) {
        QElapsedTimer clock;
        clock.start();
        beat.start();
        longest = 0;
        begin();
        while (!isDone())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        QCoreApplication::processEvents();
        std::printf("%-12s %7.2f s, longest pause %4lld ms, memory %s\n", what,
                    static_cast<double>(clock.elapsed()) / 1000, static_cast<long long>(longest),
                    memory().constData());
    };
    measure(
        "messages", [&] { window.open({QString::fromLocal8Bit(argv[1])}); },
        [&] { return window.getMessages().getRows().getEntry(0).has_value(); });
    tqx::view::MessageFilter filter;
    filter.condition = "NrSV > 30";
    measure(
        "condition", [&] { window.getMessages().setFilter(filter); },
        [&] { return !window.getMessages().getRows().isSearching(); });
    measure(
        "plot", [&] { window.getPlots().add("TQX:MeasEpoch2:Type1:CN0", ""); },
        [&] { return !window.getPlots().getPanels()[0]->getField().isReading(); });
    measure(
        "timeline", [&] { window.getTabs().setCurrentIndex(2); },
        [&] { return !window.getTimeline().getTimeline().isReading(); });
    measure(
        "satellites", [&] { window.getTabs().setCurrentIndex(3); },
        [&] { return !window.getSurvey().isReading(); });
    return 0;
}
