#include "io/ToolError.h"
#include "output/ParallelDump.h"

#include "TQX_codec.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace Kor::MessageApi;

/// A minimal block; every third one is of an unknown number.
std::vector<uint8_t> blockOf(uint32_t index)
{
    constexpr uint16_t endOfMeas = 5922;
    constexpr uint16_t unknown = 8000;
    std::vector<uint8_t> bytes(16);
    const uint16_t number = index % 3 == 2 ? unknown : endOfMeas;
    bytes[4] = static_cast<uint8_t>(number);
    bytes[5] = static_cast<uint8_t>(number >> 8U);
    bytes[6] = 16;
    for (unsigned i = 0; i < 4; ++i)
        bytes[8 + i] = static_cast<uint8_t>(index >> 8 * i);
    return bytes;
}

/// Writes the time of each block, some slower than others, so that batches end out of order.
class SlowWriter : public tqx::tool::BlockWriter
{
public:
    explicit SlowWriter(uint32_t blockThatFails) : m_failing(blockThatFails) {}

    void write(tqx::Buffer& out, const tqx::DecodedBlock& decoded) override
    {
        const uint32_t time = decoded.getHeader().TOW;
        if (time == m_failing)
            throw std::runtime_error("cannot be written");
        if (time % 7000 == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        out.append("known " + std::to_string(time) + '\n');
    }

    void writeOther(tqx::Buffer& out, const tqx::DecodedBlock& decoded) override
    {
        out.append("other " + std::to_string(decoded.block.offset) + '\n');
    }

private:
    uint32_t m_failing;
};

std::string contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().toStdString();
}

} // namespace

class ParallelDumpTest : public testing::TestWithParam<unsigned>
{
protected:
    static constexpr uint32_t none = 0xffffffff;

    void take(tqx::tool::ParallelDump& dump, uint32_t first, uint32_t last)
    {
        for (uint32_t i = first; i < last; ++i) {
            const std::vector<uint8_t> bytes = blockOf(i);
            dump.take(m_stream, {bytes.data(), static_cast<uint16_t>(bytes.size()), i});
            if (i % 1000 == 999)
                dump.handOn();
        }
    }

    static std::string expected(uint32_t count)
    {
        std::string text;
        for (uint32_t i = 0; i < count; ++i)
            text += (i % 3 == 2 ? "other " : "known ") + std::to_string(i) + '\n';
        return text;
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath("text");
    tqx::tool::InputStream m_stream{{}, false};
};

TEST_P(ParallelDumpTest, KeepsTheOrderOfTheStream)
{
    constexpr uint32_t count = 60000;
    tqx::tool::Output output(m_path.toStdString());
    tqx::tool::OutputTarget target(output);
    {
        tqx::tool::ParallelDump dump(
            target, [] { return std::make_unique<SlowWriter>(none); }, GetParam());
        take(dump, 0, count);
        dump.flush();
        EXPECT_EQ(contentOf(m_path), expected(count));
        // What is handed on comes out by itself.
        take(dump, count, count + 10);
        dump.handOn();
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (contentOf(m_path) != expected(count + 10) && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(contentOf(m_path), expected(count + 10));
    }
    EXPECT_EQ(m_stream.getCounts().undecodable, 0U);
}

TEST_P(ParallelDumpTest, HandsOnFailures)
{
    static constexpr uint32_t failing = 30000;
    tqx::tool::Output output(m_path.toStdString());
    tqx::tool::OutputTarget target(output);
    tqx::tool::ParallelDump dump(
        target, [] { return std::make_unique<SlowWriter>(failing); }, GetParam());
    EXPECT_THROW(
        {
            take(dump, 0, 2 * failing);
            dump.flush();
        },
        std::runtime_error);
    const std::string text = contentOf(m_path);
    EXPECT_EQ(text, expected(failing).substr(0, text.size()));

    tqx::tool::Output full("/dev/full");
    tqx::tool::OutputTarget fullTarget(full);
    tqx::tool::ParallelDump lost(
        fullTarget, [] { return std::make_unique<SlowWriter>(none); }, GetParam());
    EXPECT_THROW(
        {
            take(lost, 0, failing);
            lost.flush();
        },
        tqx::tool::ToolError);
}

INSTANTIATE_TEST_SUITE_P(Threads, ParallelDumpTest, testing::Values(1U, 2U, 5U));
