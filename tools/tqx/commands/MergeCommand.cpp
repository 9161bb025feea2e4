#include "commands/MergeCommand.h"

#include "io/OpenFiles.h"
#include "io/Output.h"
#include "io/Progress.h"
#include "io/Target.h"
#include "options/InputStream.h"
#include "options/NoBlocks.h"
#include "tqx/log/merge/BlockMerge.h"

#include <fmt/format.h>

namespace tqx::tool
{

MergeCommand::MergeCommand(CLI::App& program)
    : Command(
          program, "merge", "Merge logs by time, dropping duplicates",
          "  tqx merge morning.tqx noon.tqx evening.tqx -o day.tqx\n"
          "  tqx merge receiver/*.tqx.gz | tqx info -\n"
          "\n"
          "Blocks are copied byte for byte, sorted by the GNSS time in their headers; at equal\n"
          "times, in the order of the inputs. A block without a time stays after the one that\n"
          "it follows in its input, and so does one that is up to a minute earlier, because\n"
          "blocks of one epoch may have different times. A block whose time is far from those\n"
          "of both its neighbours stays where it is.\n"
          "\n"
          "Where inputs overlap, duplicates are dropped: blocks with the same bytes and time. A\n"
          "receiver may repeat blocks without a time; these remain as often as in the input\n"
          "that repeats them most. Damage and bytes between blocks are dropped and reported.\n"
          "\n"
          "All inputs are read once, at the same time. Where the time of an input runs back by\n"
          "more than a minute, this is reported, and its next blocks are merged from their own\n"
          "time on: the output then runs back, too, and duplicates of what was written before\n"
          "are not recognised. Split such a log with --every first, and merge its parts.\n")
{
    m_app
        .add_option("FILE", m_files,
                    "Files to merge, also compressed with gzip or zstd; - is standard input")
        ->required()
        ->type_name("");
    m_app.add_flag("--strict", m_isStrict, "Exit with status 2 when an input is damaged");
    m_app.add_flag("-q,--quiet", m_isQuiet,
                   "Show no progress and do not report damage on standard error");
    m_app.add_flag("-v,--verbose", m_isVerbose,
                   "Report every damaged place on standard error, not only the first ten");
    m_app.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

/// Reports damage with its input.
void MergeCommand::listen(InputStream& stream, words::Limit& limit) const
{
    stream.setGapListener([this, &limit](const StreamGap& gap) {
        if (!m_isQuiet && limit.admits())
            words::sayAt(gap.file, gap.offset, gap.describe());
    });
}

void MergeCommand::merge(std::deque<InputStream>& streams, Output& output,
                         words::Limit& limit) const
{
    std::vector<BlockStream*> inputs;
    for (InputStream& stream : streams)
        inputs.push_back(&stream);
    BlockMerge merged(inputs);
    merged.setStepBackListener([&](const BlockMerge::StepBack& step) {
        if (!m_isQuiet && limit.admits()) {
            words::sayAt(streams[step.input].getName(), step.block.offset,
                         fmt::format("time runs back by {:.3f} s; its blocks are merged from {} on",
                                     static_cast<double>(step.millis) * 1e-3,
                                     timeText(*step.block.getTime())));
        }
    });
    Progress progress(m_files, !m_isQuiet);
    std::vector<uint64_t> read(streams.size());
    Block block = {};
    while (merged.next(block)) {
        output.getBuffer().append(reinterpret_cast<const char*>(block.data), block.size);
        output.commit();
        const size_t input = merged.getInput();
        const uint64_t bytes = streams[input].getCounts().bytes;
        if (bytes == read[input])
            continue;
        progress.setName(m_files[input]);
        progress.add(bytes - read[input]);
        read[input] = bytes;
    }
    output.flush();
    if (merged.getDuplicates() != 0 && !m_isQuiet)
        words::say(fmt::format("{} duplicates were dropped", merged.getDuplicates()));
}

ExitStatus MergeCommand::rate(const std::deque<InputStream>& streams) const
{
    ExitStatus status = ExitStatus::Done;
    for (const InputStream& stream : streams) {
        if (stream.hasFailed()) {
            status = ExitStatus::Failed;
        } else if (stream.getCounts().bytes == 0 && !m_isQuiet) {
            words::say(stream.getNames().front() + ": empty");
        }
        if (m_isStrict && stream.getCounts().isDamaged())
            status = worse(status, ExitStatus::Damaged);
        status = worse(status, reportNoBlocks(stream, m_isQuiet));
    }
    return status;
}

ExitStatus MergeCommand::run()
{
    refuseSameFile(m_files, m_target);
    if (m_target != "-")
        refuseUnreadable(m_files);
    refuseTerminal(m_target);
    allowOpenFiles(m_files.size());
    Output output(m_target);
    words::Limit limit(m_isVerbose);
    std::deque<InputStream> streams;
    for (const std::string& file : m_files)
        listen(streams.emplace_back(std::vector<std::string>{file}, true), limit);
    merge(streams, output, limit);
    if (limit.getOthers() != 0 && !m_isQuiet)
        words::say(fmt::format("{} more places like these (-v names them all)", limit.getOthers()));
    uint64_t neighbourBytes = 0;
    for (const InputStream& stream : streams) {
        for (const NeighbourCount& count : stream.getCounts().neighbours)
            neighbourBytes += count.bytes;
    }
    if (neighbourBytes != 0 && !m_isQuiet) {
        words::say(fmt::format("{} bytes of other messages between the blocks were dropped",
                               neighbourBytes));
    }
    return rate(streams);
}

} // namespace tqx::tool
