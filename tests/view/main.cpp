#include <TQX_FormatInfo.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#ifdef TQX_SLOW_BUILD
/// Qt and its platforms keep what they allocated for screens and fonts until the process ends.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions()
{
    return "leak:libQt5\nleak:libqoffscreen\nleak:libfontconfig\n";
}
#endif

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setOrganizationName("tqx-tests");
    QLocale::setDefault(QLocale::c());
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    TQX_FormatInfo::getInstance();
    return RUN_ALL_TESTS();
}
