#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <algorithm>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

// Help texts and the width of their lines.

namespace
{

std::string helpIn(const QStringList& arguments, const QString& columns)
{
    constexpr int patience = 30000;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("COLUMNS", columns);
    process.setProcessEnvironment(environment);
    process.start(TQX_TOOL, arguments);
    EXPECT_TRUE(process.waitForFinished(patience));
    return process.readAllStandardOutput().toStdString();
}

/// Length of the longest line that is no example, whose lines are not broken.
size_t widthOf(const std::string& help)
{
    size_t width = 0;
    for (const std::string& line : linesOf(help)) {
        const bool isExample =
            line.rfind("  --where", 0) == 0 || (line.rfind("  ", 0) == 0 && line.find("tqx ") < 50);
        if (!isExample)
            width = std::max(width, line.size());
    }
    return width;
}

} // namespace

TEST(Help, WithoutACommandIsThatOfTheProgram)
{
    const std::string help = runTool({"help"}).output;
    EXPECT_EQ(help, runTool({"--help"}).output);
    EXPECT_NE(help.find("\n  simulate "), std::string::npos) << help;
}

TEST(Help, LinesAreAsLongAsTheTerminalIsWide)
{
    struct Case {
        QString columns;
        size_t least;
        size_t most;
    };
    const Case cases[] = {{"50", 45, 50},  {"80", 70, 80}, {"132", 100, 132},
                          {"nan", 70, 80}, {"", 70, 80},   {"5", 30, 40}};
    for (const Case& one : cases) {
        for (const char* command : {"info", "dump", "cut", "extract", "simulate", "types"}) {
            const size_t width = widthOf(helpIn({"help", command}, one.columns));
            EXPECT_LE(width, one.most) << command << " " << one.columns.toStdString();
            EXPECT_GE(width, one.least) << command << " " << one.columns.toStdString();
        }
    }
}

TEST(Help, WidthIsThatOfTheTerminal)
{
    constexpr int patience = 30000;
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_TRUE(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const winsize window = {24, 60, 0, 0};
    ::ioctl(terminal, TIOCSWINSZ, &window);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("COLUMNS");
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(::ptsname(terminal));
    process.start(TQX_TOOL, {"help", "info"});
    std::string written;
    for (bool ended = false; !ended;) {
        ended = process.waitForFinished(10) || process.state() == QProcess::NotRunning;
        char piece[4096];
        for (ssize_t size; (size = ::read(terminal, piece, sizeof piece)) > 0;)
            written.append(piece, static_cast<size_t>(size));
    }
    EXPECT_TRUE(process.waitForFinished(patience) || process.state() == QProcess::NotRunning);
    ::close(terminal);
    std::string text;
    for (const char character : written) {
        if (character != '\r')
            text += character;
    }
    EXPECT_LE(widthOf(text), 60U) << text;
    EXPECT_GE(widthOf(text), 55U) << text;
}
