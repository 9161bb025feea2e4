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
    const auto before = static_cast<uint64_t>(QDateTime::currentMSecsSinceEpoch());
    const uint64_t millis = now.getMillis();
    const auto after = static_cast<uint64_t>(QDateTime::currentMSecsSinceEpoch());
    EXPECT_TRUE(before <= millis && millis <= after);
    EXPECT_EQ(now.getTime().timeSpec(), Qt::UTC);
    EXPECT_TRUE(now.hasValidMillis());

    FixedTime fixed;
    EXPECT_EQ(fixed.getMillis(), 1709210096789u);
    EXPECT_EQ(fixed.getMillis(nullptr), 1709210096789u);
    EXPECT_EQ(fixed.millisToString(1709210096789u), "2024-02-29T12:34:56.789Z");
}

} // namespace
