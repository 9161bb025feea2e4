#include "StreamOptions.h"

#include "Sink.h"
#include "ToolError.h"
#include "Words.h"

#include <filesystem>
#include <system_error>

namespace tool
{

void StreamOptions::addInputs(CLI::App& command)
{
    command.add_option("FILE", files, "Files to read, one after the other; - is standard input")
        ->required()
        ->type_name("");
    command.add_flag("--strict", strict, "Exit with status 2 when an input is damaged");
    command.add_flag("-q,--quiet", quiet, "Say nothing about damage");
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
    for (const std::string& path : files) {
        std::error_code unknown;
        if (path != "-" && target != "-" && std::filesystem::equivalent(path, target, unknown))
            throw ToolError(target + " is an input, it cannot be the output as well");
    }
}

ExitStatus StreamOptions::read(BlockConsumer& consumer, Sink& output)
{
    getSelection();
    ExitStatus status = ExitStatus::Done;
    bool damaged = false;
    for (const std::string& path : files) {
        try {
            readOne(path, consumer, output, damaged);
        } catch (const InputError& error) {
            output.flush();
            words::say(error.what());
            status = ExitStatus::Failed;
        }
    }
    output.flush();
    return strict && damaged ? worse(status, ExitStatus::Damaged) : status;
}

void StreamOptions::readOne(const std::string& path, BlockConsumer& consumer, Sink& output,
                            bool& damaged)
{
    BlockStream stream(path, !quiet);
    stream.setBeforeRead([&output] { output.handOn(); });
    consumer.begin(stream);
    Block block = {};
    while (stream.next(block)) {
        if (selection->accepts(stream, block))
            consumer.take(stream, block);
        output.commit();
    }
    consumer.end(stream);
    damaged = damaged || stream.getCounts().isDamaged();
}

} // namespace tool
