// view_pictures FOLDER
//
// Writes a picture of each view, light and dark, of a simulated log with damage and an outage.

#include "view/MainWindow.h"
#include "view/MessagePage.h"
#include "view/PlotPage.h"
#include "view/SkyPage.h"
#include "view/TimelinePage.h"
#include "view/TrackPage.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSettings>
#include <QSlider>
#include <QStyle>
#include <QTabWidget>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace
{

using tqx::view::MainWindow;

void setDark(bool isDark)
{
    QPalette colours = QApplication::style()->standardPalette();
    if (isDark) {
        colours.setColor(QPalette::Window, QColor(45, 45, 48));
        colours.setColor(QPalette::WindowText, QColor(225, 225, 225));
        colours.setColor(QPalette::Base, QColor(30, 30, 32));
        colours.setColor(QPalette::AlternateBase, QColor(37, 37, 40));
        colours.setColor(QPalette::Text, QColor(225, 225, 225));
        colours.setColor(QPalette::Button, QColor(53, 53, 56));
        colours.setColor(QPalette::ButtonText, QColor(225, 225, 225));
        colours.setColor(QPalette::ToolTipBase, QColor(53, 53, 56));
        colours.setColor(QPalette::ToolTipText, QColor(225, 225, 225));
        colours.setColor(QPalette::Highlight, QColor(42, 110, 170));
        colours.setColor(QPalette::HighlightedText, Qt::white);
        colours.setColor(QPalette::Light, QColor(70, 70, 74));
        colours.setColor(QPalette::Midlight, QColor(60, 60, 64));
        colours.setColor(QPalette::Mid, QColor(38, 38, 40));
        colours.setColor(QPalette::Dark, QColor(25, 25, 27));
        colours.setColor(QPalette::PlaceholderText, QColor(140, 140, 140));
        colours.setColor(QPalette::Disabled, QPalette::Text, QColor(120, 120, 120));
        colours.setColor(QPalette::Disabled, QPalette::WindowText, QColor(120, 120, 120));
        colours.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(120, 120, 120));
    }
    QApplication::setPalette(colours);
}

void settle(int millis = 600)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < millis)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: view_pictures LOG FOLDER\n");
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    QApplication::setFont(QFont("DejaVu Sans", 9));
    QApplication::setOrganizationName("tqx-pictures");
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    const QDir folder(argv[2]);
    folder.mkpath(".");
    for (const bool isDark : {false, true}) {
        setDark(isDark);
        MainWindow window;
        window.show();
        const auto take = [&](const QString& name) {
            settle();
            const QString file = name + (isDark ? "-dark.png" : "-light.png");
            window.grab().save(folder.filePath(file));
        };
        take("empty");
        window.open({QString::fromLocal8Bit(argv[1])});
        settle(1500);
        take("messages");
        window.getPlots().add("TQX:MeasEpoch2:Type1:CN0_dBHz", "");
        window.getPlots().add("TQX:PVTGeodetic2:Height", "");
        window.getPlots().add("TQX:PVTGeodetic2:NrSV", "");
        window.getTabs().setCurrentWidget(&window.getPlots());
        settle(2500);
        take("plots");
        window.getTabs().setCurrentWidget(&window.getTimeline());
        settle(1500);
        take("timeline");
        window.getTabs().setCurrentWidget(&window.getSky());
        settle(2500);
        window.getSky().getSlider().setValue(window.getSky().getSlider().maximum() * 3 / 4);
        take("satellites");
        window.getTabs().setCurrentWidget(&window.getTrack());
        take("track");
    }
    return 0;
}
