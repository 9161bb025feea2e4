#include "commands/IndexCommand.h"

#include "commands/EachInput.h"
#include "io/Output.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "tqx/log/index/BetweenBlocks.h"
#include "tqx/log/index/IndexedLog.h"
#include "tqx/log/stream/Block.h"

#include <fmt/format.h>

#include <algorithm>
#include <thread>

namespace tqx::tool
{

namespace
{

const char* describe(IndexedLog::Origin origin)
{
    switch (origin) {
    case IndexedLog::Origin::Made:
        return "indexed";
    case IndexedLog::Origin::Extended:
        return "indexed further";
    case IndexedLog::Origin::Saved:
        break;
    }
    return "index is up to date";
}

std::string describe(const IndexedLog& log)
{
    const Index& index = log.getIndex();
    const StreamCounts counts = reportBetweenBlocks(index, log.getContent(), nullptr);
    const auto first = index.getFirstTime();
    const auto last = index.getLastTime();
    const std::string times =
        first && last ? fmt::format(", {} to {} GPS", dateText(*first), dateText(*last)) : "";
    return fmt::format("{} bytes, {} blocks of {} types{}, {} bytes belong to no block",
                       counts.bytes, counts.blocks, index.getTypes().size(), times,
                       counts.droppedBytes);
}

} // namespace

IndexCommand::IndexCommand(CLI::App& program)
    : Command(
          program, "index", "Save an index beside each log",
          "  tqx index day1.tqx day2.tqx.gz\n"
          "  tqx index --show --list day1.tqx\n"
          "\n"
          "The index of FILE is FILE.tqxi. An existing one is used if it belongs to the log,\n"
          "extended if the log has grown, and made anew otherwise. Logs may be compressed with\n"
          "gzip or zstd.\n")
{
    m_app.add_option("FILE", m_files, "Logs")->required()->type_name("");
    m_descriptions.add(m_app);
    m_app.add_flag("--show", m_onlyShow, "Save nothing, only show what the logs hold");
    m_app.add_flag("--list", m_list, "Also list the blocks of each type");
}

/// Whether it could be done.
bool IndexCommand::index(Output& output, const std::string& file) const
{
    IndexedLogOptions options;
    options.framing.threads = std::max(1U, std::thread::hardware_concurrency());
    options.save = !m_onlyShow;
    options.onWarning = [](const std::string& warning) { words::say(warning); };
    const IndexedLog log(file, options);
    Buffer& out = output.getBuffer();
    out.append(fmt::format("{}: {}, {}\n", file, describe(log.getOrigin()), describe(log)));
    if (m_list) {
        for (const Index::Type& type : log.getIndex().getTypes()) {
            out.append(fmt::format("{:>10}  {}\n", type.blocks,
                                   describeBlock(type.number, m_descriptions.getSchema())));
        }
    }
    output.commit();
    if (m_onlyShow || log.isSaved() || log.getOrigin() == IndexedLog::Origin::Saved)
        return true;
    words::say(IndexedLog::indexPath(file) + ": cannot be written");
    return false;
}

ExitStatus IndexCommand::run()
{
    Output output;
    return forEachInput(output, m_files,
                        [&](const std::string& file) { return index(output, file); });
}

} // namespace tqx::tool
