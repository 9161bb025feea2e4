#pragma once

#include "commands/Command.h"
#include "io/Words.h"

#include <deque>
#include <string>
#include <vector>

namespace tqx::tool
{

class InputStream;
class Output;

/// `tqx merge`: the blocks of several logs as one, in the order of their times.
class MergeCommand : public Command
{
public:
    explicit MergeCommand(CLI::App& program);
    ExitStatus run() override;

private:
    void listen(InputStream& stream, words::Limit& limit) const;
    void merge(std::deque<InputStream>& streams, Output& output, words::Limit& limit) const;
    ExitStatus rate(const std::deque<InputStream>& streams) const;

    std::vector<std::string> m_files;
    std::string m_target = "-";
    bool m_isStrict = false;
    bool m_isQuiet = false;
    bool m_isVerbose = false;
};

} // namespace tqx::tool
