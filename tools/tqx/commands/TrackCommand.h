#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

#include "tqx/gnss/position/SourceChoice.h"

#include <string>

namespace tqx::tool
{

class TrackOutput;

/// `tqx track`: the positions in logs, in formats for maps and tables.
class TrackCommand : public Command
{
public:
    explicit TrackCommand(CLI::App& program);
    ExitStatus run() override;

private:
    const PositionSource* findSource();
    std::string trackName() const;
    ExitStatus write(TrackOutput& track, Sink& output);
    void say(const TrackOutput& track) const;

    StreamOptions m_streams;
    std::string m_format = "csv";
    std::string m_source; ///< empty for the best one
    std::string m_target = "-";
    SourceChoice m_choice; ///< of files that were looked at before
};

} // namespace tqx::tool
