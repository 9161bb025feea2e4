#include "commands/SplitCommand.h"

#include "io/Target.h"
#include "io/ToolError.h"
#include "options/Duration.h"
#include "options/Numbers.h"

namespace tqx::tool
{

SplitCommand::SplitCommand(CLI::App& program)
    : Command(
          program, "split", "Split a log into files, by time or size",
          "  tqx split --every 1h day.tqx -o hours\n"
          "  tqx split --every 1d week.tqx.gz -o 'archive/{time}.tqx'\n"
          "  tqx split --size 100MB log.tqx -o 'part-{number}.tqx'\n"
          "\n"
          "Blocks are copied byte for byte, without damage and bytes between them: all files\n"
          "concatenated have the blocks of the log. The files are listed on standard output.\n"
          "\n"
          "--every 1h begins a file with each hour of GNSS time; durations count from the start\n"
          "of GNSS time, and so from the start of each week if they divide it. A block whose\n"
          "header has no time stays with the block before it, and so does one that is up to a\n"
          "minute earlier than others before it, because blocks of one epoch may have different\n"
          "times. Where time runs back by more, a new file begins, with -2 appended to a\n"
          "repeated name. --size begins a new file before one would exceed that size.\n"
          "\n"
          "In file names, {number} is the number of the part, {time} the GNSS time at which its\n"
          "interval begins, as in 20260106T120000 (with --size the time of its first block),\n"
          "and {name} the name of the first input without extension. Files in a folder are\n"
          "{name}-{time}.tqx, or with --size {name}-{number}.tqx. Existing files are\n"
          "overwritten.\n")
{
    m_streams.addInputs(m_app);
    m_streams.addDamageReport(m_app);
    CLI::Option* every =
        addDuration(m_app, "--every", m_limits.every,
                    "Begin a file with each interval of GNSS time: 30s, 15min, 1h, 1d");
    addBytes(m_app, "--size", m_limits.size, "Largest size of a file, such as 100MB")
        ->type_name("BYTES")
        ->default_str("")
        ->excludes(every);
    m_app
        .add_option("-o,--output", m_target,
                    "Folder, or a pattern for file names with {number} or {time}; the current "
                    "folder by default")
        ->type_name("FOLDER|PATTERN");
}

ExitStatus SplitCommand::run()
{
    if (m_limits.every == 0 && m_limits.size == 0)
        throw ToolError("split: --every or --size is required (see tqx help split)");
    const std::vector<std::string>& inputs = m_streams.getFiles();
    refuseUnreadable(inputs);
    PartNames names(m_target, m_limits.every != 0 ? "{name}-{time}.tqx" : "{name}-{number}.tqx",
                    stemOf(inputs.front()));
    Output list;
    PartFiles parts(m_limits, names, inputs, list);
    return m_streams.read(parts, parts);
}

} // namespace tqx::tool
