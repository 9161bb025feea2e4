#include "options/StreamOptions.h"

#include "io/Sink.h"
#include "io/Target.h"
#include "io/Words.h"
#include "tqx/log/source/ContentGuess.h"

#include <CLI/Validators.hpp>
#include <fmt/format.h>

#include <cmath>

namespace tqx::tool
{

void StreamOptions::addInputs(CLI::App& command)
{
    command.add_option("FILE", files, "Files to read, one after the other; - is standard input")
        ->required()
        ->type_name("");
    command.add_flag("--strict", strict, "Exit with status 2 when an input is damaged");
    command.add_flag("-q,--quiet", quiet,
                     "Show no progress and do not report damage on standard error");
    CLI::Option* receiver = command.add_flag(
        "--live", live,
        "Input is a receiver while it sends: false headers hold back no intact blocks");
    command
        .add_option("--pause", pause,
                    "With --live, the pause after which to doubt a header: up to an hour")
        ->check(CLI::Range(0.001, 3600.0).description(""))
        ->needs(receiver)
        ->type_name("SECONDS")
        ->capture_default_str();
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
    if (target != "-")
        refuseUnreadable(files);
}

ExitStatus StreamOptions::read(BlockConsumer& consumer, Sink& output)
{
    Selection& chosen = getSelection();
    InputStream stream(files, quiet);
    if (live)
        stream.setLive(std::chrono::milliseconds(std::llround(pause * 1000)));
    stream.setBeforeRead([&output] { output.handOn(); });
    consumer.begin(stream);
    Block block = {};
    while (stream.next(block)) {
        if (chosen.accepts(stream, block))
            consumer.take(stream, block);
        output.commit();
    }
    if (stream.getCounts().bytes == 0 && !stream.hasFailed() && !quiet)
        words::say(fmt::format("{}: empty", fmt::join(stream.getNames(), ", ")));
    consumer.end(stream);
    output.flush();
    const bool damaged = strict && stream.getCounts().isDamaged();
    const ExitStatus status = worse(stream.hasFailed() ? ExitStatus::Failed : ExitStatus::Done,
                                    damaged ? ExitStatus::Damaged : ExitStatus::Done);
    return worse(status, reportNoBlocks(stream));
}

/// Says what inputs without blocks seem to be.
ExitStatus StreamOptions::reportNoBlocks(const InputStream& stream) const
{
    ExitStatus status = ExitStatus::Done;
    if (stream.getCounts().blocks != 0 || stream.isInterrupted())
        return status;
    for (const InputSequence::Head& head : stream.getHeads()) {
        const Content content = guessContent(head.bytes.data(), head.bytes.size());
        const bool isFailure = !isReceiverOutput(content);
        if (isFailure || !quiet)
            words::say(fmt::format("{}: holds no TQX blocks, it seems to be {}", head.name,
                                   describeContent(content)));
        if (isFailure)
            status = ExitStatus::Failed;
    }
    return status;
}

} // namespace tqx::tool
