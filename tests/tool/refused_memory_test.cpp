#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>

// Every command, with every n-th request for memory refused.

namespace
{

const QString log = QStringLiteral("data/samples/random.tqx");

struct Case {
    const char* name;
    QStringList arguments;
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class RefusedMemory : public testing::TestWithParam<Case>
{
};

ToolRun runRefused(const QStringList& arguments, unsigned long period)
{
    constexpr int patience = 60000; // milliseconds
    QProcess process;
    process.setWorkingDirectory(TQX_TESTS_DIR);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TQX_REFUSE_EVERY", QString::number(period));
    process.setProcessEnvironment(environment);
    process.start(TQX_REFUSED, arguments);
    process.closeWriteChannel();
    const bool ended =
        process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

} // namespace

// What was written before is the beginning of what would have been; nothing is left out.
TEST_P(RefusedMemory, EndsWithACleanMessage)
{
    const ToolRun whole = runRefused(GetParam().arguments, 0);
    ASSERT_EQ(whole.status, 0) << whole.words;
    unsigned failed = 0;
    bool isDone = false;
    for (unsigned long period = 1; !isDone && period < 100000000; period += 1 + period / 4) {
        const ToolRun run = runRefused(GetParam().arguments, period);
        isDone = run.status == 0;
        if (isDone) {
            EXPECT_EQ(run.output, whole.output) << period;
            EXPECT_EQ(run.words, whole.words) << period;
            continue;
        }
        ++failed;
        ASSERT_EQ(run.status, 1) << period << ": " << run.words;
        EXPECT_EQ(run.words, "tqx: out of memory\n") << period;
        EXPECT_EQ(whole.output.substr(0, run.output.size()), run.output) << period;
    }
    EXPECT_TRUE(isDone);
    EXPECT_GT(failed, 10U);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, RefusedMemory,
    testing::Values(
        Case{"Info", {"info", log}}, Case{"InfoJson", {"info", "--json", log}},
        Case{"DumpText", {"dump", log}}, Case{"DumpJson", {"dump", "--format", "jsonl", log}},
        Case{"DumpRaw", {"dump", "--format", "jsonl", "--raw", log}},
        Case{"DumpCsv", {"dump", "--format", "csv", "--type", "4007", log}},
        Case{"Explain", {"explain", log}}, Case{"Cut", {"cut", log}},
        Case{"CutWhere", {"cut", "--where", "NrSV >= 0", log}},
        Case{"Extract", {"extract", "--mode", "rtcm3", log}}, Case{"Types", {"types", "AGCState"}},
        Case{"Error", {"error", "-5"}}, Case{"Encode", {"encode", "tool/data/told.jsonl"}},
        Case{"Simulate", {"simulate", "--duration", "2"}}, Case{"Help", {"help", "dump"}}),
    [](const auto& instance) { return instance.param.name; });
