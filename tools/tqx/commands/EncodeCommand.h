#pragma once

#include "commands/Command.h"
#include "io/Words.h"
#include "options/DescriptionOption.h"

namespace tqx
{
class LineEncoder;
}

namespace tqx::tool
{

class Output;
class Progress;

/// `tqx encode`: encodes JSON Lines of stored values as blocks.
class EncodeCommand : public Command
{
public:
    explicit EncodeCommand(CLI::App& program);
    ExitStatus run() override;

private:
    /// What has been reported about lines so far.
    struct Reports {
        words::Limit errors;
        words::Limit differences; ///< from the bytes beside the fields
        bool hasSaidScaled;
    };

    bool encodeFile(const std::string& path, LineEncoder& encoder, Progress& progress,
                    Output& output, Reports& reports);

    DescriptionOption m_descriptions;
    std::vector<std::string> m_files;
    std::string m_target = "-";
    uint64_t m_longestLine = uint64_t{64} << 20U;
    bool m_verbose = false;
};

} // namespace tqx::tool
