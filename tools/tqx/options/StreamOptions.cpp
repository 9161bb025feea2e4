#include "options/StreamOptions.h"

#include "io/Sink.h"
#include "io/Target.h"
#include "io/Words.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

namespace tqx::tool
{

using Kor::MessageApi::TQX_TypeLayout;

void StreamOptions::addInputs(CLI::App& command)
{
    command.add_option("FILE", files, "Files to read, one after the other; - is standard input")
        ->required()
        ->type_name("");
    command.add_flag("--strict", strict, "Exit with status 2 when an input is damaged");
    command.add_flag("-q,--quiet", quiet,
                     "Show no progress and do not report damage on standard error");
}

void StreamOptions::addDamageReport(CLI::App& command)
{
    command.add_flag("-v,--verbose", verbose,
                     "Name every damaged place on standard error, not only the first ten");
}

Selection& StreamOptions::getSelection()
{
    if (!selection)
        selection.emplace(selections.getRequest());
    return *selection;
}

void StreamOptions::checkBefore(const std::string& target)
{
    getSelection();
    refuseSameFile(files, target);
}

void StreamOptions::checkBeforeFolder(const std::string& folder)
{
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
        const std::string name = entry.path().filename().string();
        const TQX_TypeLayout* type = findType(name.substr(0, name.find('.')));
        if (type && entry.path().extension() == ".csv" &&
            getSelection().getTypes().accepts(type->blockNumber))
            refuseSameFile(files, entry.path().string());
    }
}

ExitStatus StreamOptions::read(BlockConsumer& consumer, Sink& output)
{
    Selection& chosen = getSelection();
    InputStream stream(files, quiet, verbose);
    stream.setBeforeRead([&output] { output.handOn(); });
    consumer.begin(stream);
    Block block = {};
    while (stream.next(block)) {
        if (chosen.accepts(stream, block))
            consumer.take(stream, block);
        output.commit();
    }
    stream.sumUpDamage();
    if (stream.getCounts().bytes == 0 && !stream.hasFailed() && !quiet)
        words::say(fmt::format("{}: empty", fmt::join(stream.getNames(), ", ")));
    consumer.end(stream);
    output.flush();
    const bool damaged = strict && stream.getCounts().isDamaged();
    return worse(stream.hasFailed() ? ExitStatus::Failed : ExitStatus::Done,
                 damaged ? ExitStatus::Damaged : ExitStatus::Done);
}

} // namespace tqx::tool
