#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <fstream>
#include <sstream>

ToolRun runTool(const QStringList& arguments, const std::string& input)
{
    constexpr int patience = 120000; // milliseconds
    QProcess process;
    process.setWorkingDirectory(TQX_TESTS_DIR);
    process.start(TQX_TOOL, arguments);
    process.write(input.data(), static_cast<qint64>(input.size()));
    process.closeWriteChannel();
    const bool ended =
        process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

std::string testData(const std::string& path)
{
    std::ifstream file(TQX_TESTS_DIR "/" + path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> rawLines(const std::string& stream)
{
    return linesOf(runTool({"dump", "--format", "jsonl", "--raw", "-"}, stream).output);
}
