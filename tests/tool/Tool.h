#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

/// What a run of the program wrote and returned.
struct ToolRun {
    int status; ///< exit status, -1 when it did not end by itself
    std::string output;
    std::string words; ///< standard error
};

/// Runs the program with what `input` holds as its standard input. Paths among the arguments are
/// relative to tests/.
ToolRun runTool(const QStringList& arguments, const std::string& input = std::string());

/// Content of a file below tests/; fails the test when it cannot be read.
std::string testData(const std::string& path);

/// The lines of a text, without their ends.
std::vector<std::string> linesOf(const std::string& text);

/// The stored values of the blocks in a stream, as lines of JSON.
std::vector<std::string> rawLines(const std::string& stream);
