// tqx-view [FILE...]
//
// Shows logs of TQX blocks in a window.

#include "view/MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName("tqx");
    QApplication::setApplicationName("tqx-view");
    QApplication::setApplicationVersion(TQX_VERSION);
    QApplication::setWindowIcon(QIcon(":/tqx-view.svg"));
    QGuiApplication::setDesktopFileName("tqx-view");

    QTranslator ofQt;
    if (ofQt.load(QLocale(), "qtbase", "_", QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&ofQt);
    QTranslator ours;
    const QString folder = QCoreApplication::applicationDirPath() + "/../share/tqx/translations";
    if (ours.load(QLocale(), "tqx-view", "_", folder))
        QCoreApplication::installTranslator(&ours);

    QCommandLineParser parser;
    parser.setApplicationDescription(QApplication::translate(
        "main", "Shows logs of TQX blocks: messages, fields, bytes, plots, satellites, outages."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption follow(
        {"f", "follow"}, QApplication::translate("main", "Show data appended to the file."));
    parser.addOption(follow);
    parser.addPositionalArgument(
        "FILE",
        QApplication::translate(
            "main",
            "Logs, shown as one; - is standard input. Without any, those of the last session."),
        "[FILE...]");
    parser.process(application);

    tqx::view::MainWindow window;
    const QStringList files = parser.positionalArguments();
    window.restoreSession(files.isEmpty());
    window.open(files);
    window.setFollowing(parser.isSet(follow));
    window.show();
    return QApplication::exec();
}
