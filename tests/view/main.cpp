#include <TQX_FormatInfo.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

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
