#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QThread>

#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

// What a terminal shows while a long input is read.

namespace
{

enum class Target { Nowhere, Pipe, Terminal };

struct Case {
    const char* name;
    QStringList arguments;
    Target target; ///< of standard output
    bool isShown;
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class Progress : public testing::TestWithParam<Case>
{
};

constexpr unsigned short columns = 30;

/// All that the program writes to a terminal, while the damaged samples reach it with a pause.
std::string writtenToTerminal(const Case& run)
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    EXPECT_TRUE(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const winsize window = {24, columns, 0, 0};
    ::ioctl(terminal, TIOCSWINSZ, &window);
    const std::string input = testData("data/samples/random-damaged.tqx");
    constexpr size_t first = 1000;       // before the damage
    constexpr unsigned long pause = 100; // milliseconds

    QProcess process;
    qputenv("TERM", "xterm");
    process.setStandardErrorFile(::ptsname(terminal));
    if (run.target != Target::Pipe) {
        process.setStandardOutputFile(run.target == Target::Terminal ? ::ptsname(terminal)
                                                                     : QProcess::nullDevice());
    }
    std::string written;
    const auto readOn = [&] {
        char piece[4096];
        for (ssize_t size; (size = ::read(terminal, piece, sizeof piece)) > 0;)
            written.append(piece, static_cast<size_t>(size));
    };
    process.start(TQX_TOOL, run.arguments);
    process.write(input.data(), first);
    size_t sent = first;
    // Byte by byte, for as long as it may take, or as would be enough for what must not come.
    for (const size_t end = first + (run.isShown ? 600 : 12);
         sent < end && written.find("MB") == std::string::npos; readOn()) {
        process.write(input.data() + sent++, 1);
        process.waitForBytesWritten();
        QThread::msleep(pause);
    }
    process.write(input.data() + sent, static_cast<qint64>(input.size() - sent));
    process.closeWriteChannel();
    for (bool ended = false; !ended; readOn())
        ended = process.waitForFinished(10) || process.state() == QProcess::NotRunning;
    ::close(terminal);
    EXPECT_EQ(process.exitCode(), 0);
    return written;
}

} // namespace

TEST_P(Progress, IsAloneOnItsLineAndWiped)
{
    const std::string wiped = "\r\x1b[K";
    bool isShown = false;
    for (std::string line : linesOf(writtenToTerminal(GetParam()))) {
        for (size_t end; (end = line.find(wiped)) != std::string::npos;) {
            EXPECT_EQ(line.find("0.0 MB"), 0U) << line;
            EXPECT_LT(end, columns) << line;
            isShown = true;
            line.erase(0, end + wiped.size());
        }
        EXPECT_EQ(line.find("MB"), std::string::npos) << line;
    }
    EXPECT_EQ(isShown, GetParam().isShown);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, Progress,
    testing::Values(Case{"ToFile", {"dump", "-"}, Target::Nowhere, true},
                    Case{"BetweenData", {"dump", "-"}, Target::Terminal, true},
                    Case{"ReaderMayWriteThere", {"dump", "-"}, Target::Pipe, false},
                    Case{"Quiet", {"dump", "-q", "-"}, Target::Nowhere, false}),
    [](const auto& instance) { return instance.param.name; });
