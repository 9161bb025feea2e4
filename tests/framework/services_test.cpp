#include "QtPrinters.h"
#include "weather/WeatherFormat.h"

#include <AbstractSync.h>
#include <TimeSource.h>

#include <gtest/gtest.h>

namespace
{

/// Every line is a block; a '?' stands for damage.
class LineSync : public AbstractSync
{
public:
    LineSync() : AbstractSync(nullptr) {}

    void appendBytes(QByteArray& bytes) override
    {
        const auto damaged = static_cast<unsigned>(bytes.count('?'));
        if (damaged > 0) {
            reportCRCError(WeatherFormat::getInstance());
            reportDroppedBytes(WeatherFormat::getInstance(), damaged);
        }
        m_buffer += bytes.replace("?", "");
    }
    bool hasBlock() const override { return m_buffer.contains('\n'); }
    QByteArray getBlockBytes() override
    {
        const int size = m_buffer.indexOf('\n') + 1;
        const QByteArray block = m_buffer.left(size);
        m_buffer.remove(0, size);
        return block;
    }
    int getNumberOfBytesLeft() const override { return m_buffer.size(); }

    void reportWithoutFormat() { reportCRCError(nullptr); }

private:
    QByteArray m_buffer;
};

TEST(AbstractSync, ReportsDamageAsEvents)
{
    LineSync lines;
    AbstractSync& sync = lines;
    QStringList log;
    QObject::connect(&sync, &AbstractSync::newEvent, [&log](const MessageApiEvent& event) {
        EXPECT_EQ(event.getType(), MessageApiEvent::DecodingError);
        log += event.getText();
    });
    QByteArray bytes("one\nt?w?o\nthr");
    sync.appendBytes(bytes);
    lines.reportWithoutFormat();
    EXPECT_EQ(log, (QStringList{"Weather_ERR_INVALID_CRC", "Weather: 2 bytes dropped",
                                "UNKNOWN_ERR_INVALID_CRC"}));
    ASSERT_TRUE(sync.hasBlock());
    EXPECT_EQ(sync.getBlockBytes(), "one\n");
    EXPECT_EQ(sync.getBlockBytes(), "two\n");
    EXPECT_FALSE(sync.hasBlock());
    EXPECT_EQ(sync.getNumberOfBytesLeft(), 3);
}

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
