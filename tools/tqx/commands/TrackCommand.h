#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

#include <string>

namespace tqx
{
struct PositionSource;
}

namespace tqx::tool
{

class TrackOutput;

/// `tqx track`: the positions in logs, in formats that maps and tables take.
class TrackCommand : public Command
{
public:
    explicit TrackCommand(CLI::App& program);
    ExitStatus run() override;

private:
    const PositionSource* findSource() const;
    std::string trackName() const;
    ExitStatus write(TrackOutput& track, Sink& output);

    StreamOptions m_streams;
    std::string m_format = "csv";
    std::string m_source; ///< empty for the best one
    std::string m_target = "-";
};

} // namespace tqx::tool
