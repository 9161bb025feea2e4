#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <algorithm>

// Every command with every n-th request for memory refused, but for help: CLI11 writes that through
// a stream that keeps such an error to itself.

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
    const auto isEnough = [&](unsigned long period) {
        const ToolRun run = runRefused(GetParam().arguments, period);
        if (run.status == 0) {
            EXPECT_EQ(run.output, whole.output) << period;
            EXPECT_EQ(run.words, whole.words) << period;
            return true;
        }
        EXPECT_EQ(run.status, 1) << period << " refused";
        EXPECT_EQ(run.words, "tqx: out of memory\n") << period;
        EXPECT_EQ(whole.output.substr(0, run.output.size()), run.output) << period;
        return false;
    };
    unsigned long refused = 1;
    unsigned long enough = 1;
    while (!isEnough(enough)) {
        refused = enough;
        enough += 1 + enough / 4;
    }
    EXPECT_GT(refused, 10U);
    while (enough - refused > 1) {
        const unsigned long between = (refused + enough) / 2;
        (isEnough(between) ? enough : refused) = between;
    }
    // The last requests are those for the last blocks. A connection of Qt does not survive that its
    // memory is refused, and extract makes some late.
    const unsigned long last = GetParam().arguments.front() == "extract" ? 0 : 25;
    for (unsigned long period = refused; period > refused - std::min(refused, last); --period)
        isEnough(period);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, RefusedMemory,
    testing::Values(Case{"Info", {"info", log}}, Case{"InfoJson", {"info", "--json", log}},
                    Case{"DumpText", {"dump", log}},
                    Case{"DumpJson", {"dump", "--format", "jsonl", log}},
                    Case{"DumpRaw", {"dump", "--format", "jsonl", "--raw", log}},
                    Case{"DumpCsv", {"dump", "--format", "csv", "--type", "4007", log}},
                    Case{"Explain", {"explain", log}}, Case{"Cut", {"cut", log}},
                    Case{"CutWhere", {"cut", "--where", "NrSV >= 0", log}},
                    Case{"Extract", {"extract", "--mode", "rtcm3", log}},
                    Case{"Types", {"types", "AGCState"}}, Case{"Error", {"error", "-5"}},
                    Case{"Encode", {"encode", "tool/data/documented.jsonl"}},
                    Case{"Simulate", {"simulate", "--duration", "2"}}),
    [](const auto& instance) { return instance.param.name; });
