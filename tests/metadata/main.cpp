#include <QLocale>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Before any text: each field keeps the locale that it meets first.
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
