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
          "Blocks are copied byte for byte, damage and bytes between them are left out: the files\n"
          "one after the other are the blocks of the log. They are listed on standard output.\n"
          "\n"
          "--every 1h begins a file with each hour of GNSS time; durations count from the "
          "beginning\n"
          "of GNSS time, which is to say from that of each week where they divide it. A block "
          "whose\n"
          "header has no time stays with the block before it, and so does one that is up to a "
          "minute\n"
          "earlier than others before it, for the blocks of one epoch may have different times. "
          "Where\n"
          "time runs back by more, a new file begins, with -2 after a name that was used before. "
          "--size\n"
          "begins a file before it would have more bytes than that.\n"
          "\n"
          "In the name of a file {number} is that of the part, {time} the GNSS time at which its\n"
          "interval begins, as in 20260106T120000, or with --size that of its blocks, and {name} "
          "the\n"
          "name of the first input without extension. Files in a folder are {name}-{time}.tqx, or\n"
          "with --size {name}-{number}.tqx. Existing files are overwritten.\n")
{
    m_streams.addInputs(m_app);
    m_streams.addDamageReport(m_app);
    CLI::Option* every = addDuration(m_app, "--every", m_limits.every,
                                     "A file for each interval of GNSS time: 30s, 15min, 1h, 1d");
    addBytes(m_app, "--size", m_limits.size, "Files of up to so many bytes, such as 100MB")
        ->type_name("BYTES")
        ->default_str("")
        ->excludes(every);
    m_app
        .add_option("-o,--output", m_target,
                    "Folder, or a pattern for names of files with {number} or {time} in it; the "
                    "current folder by default")
        ->type_name("FOLDER|PATTERN");
}

ExitStatus SplitCommand::run()
{
    if (m_limits.every == 0 && m_limits.size == 0)
        throw ToolError("split: --every or --size says where to split (see tqx help split)");
    const std::vector<std::string>& inputs = m_streams.getFiles();
    refuseUnreadable(inputs);
    PartNames names(m_target, m_limits.every != 0 ? "{name}-{time}.tqx" : "{name}-{number}.tqx",
                    stemOf(inputs.front()));
    Output list;
    PartFiles parts(m_limits, names, inputs, list);
    return m_streams.read(parts, parts);
}

} // namespace tqx::tool
