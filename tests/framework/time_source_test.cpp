#include "QtPrinters.h"

#include <TimeSource.h>

#include <gtest/gtest.h>

namespace
{

class FixedTime : public TimeSource
{
public:
    FixedTime() : TimeSource(nullptr) {}

    QDateTime getTime() override
    {
        return QDateTime(QDate(2024, 2, 29), QTime(12, 34, 56, 789), Qt::UTC);
    }
};

TEST(TimeSource, TellsTheTimeInUtc)
{
    TimeSource now(nullptr);
    EXPECT_EQ(now.getTime().timeSpec(), Qt::UTC);
    EXPECT_TRUE(now.hasValidMillis());
    EXPECT_LE(QDateTime::currentMSecsSinceEpoch() - 60000, static_cast<qint64>(now.getMillis()));

    FixedTime fixed;
    EXPECT_EQ(fixed.getMillis(), 1709210096789u);
    EXPECT_EQ(fixed.getMillis(nullptr), 1709210096789u);
    EXPECT_EQ(fixed.millisToString(1709210096789u), "2024-02-29T12:34:56.789Z");
}

} // namespace
