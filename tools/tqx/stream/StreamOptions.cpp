#include "StreamOptions.h"

#include "Output.h"
#include "ToolError.h"
#include "Words.h"

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

void StreamOptions::addTypes(CLI::App& command)
{
    command.add_option("--type", types, "Only blocks of these types: names or block numbers")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("TYPE,TYPE");
    command.add_option("--not-type", notTypes, "No blocks of these types")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("TYPE,TYPE");
}

ExitStatus StreamOptions::read(BlockConsumer& consumer, Output& output) const
{
    const TypeSelection selection(types, notTypes);
    ExitStatus status = ExitStatus::Done;
    bool damaged = false;
    for (const std::string& path : files) {
        try {
            readOne(path, selection, consumer, output, damaged);
        } catch (const InputError& error) {
            output.flush();
            words::say(error.what());
            status = ExitStatus::Failed;
        }
    }
    output.flush();
    return strict && damaged ? worse(status, ExitStatus::Damaged) : status;
}

void StreamOptions::readOne(const std::string& path, const TypeSelection& selection,
                            BlockConsumer& consumer, Output& output, bool& damaged) const
{
    BlockStream stream(path, !quiet);
    stream.setBeforeRead([&output] { output.flush(); });
    consumer.begin(stream);
    Block block = {};
    while (stream.next(block)) {
        if (selection.accepts(block.getNumber()))
            consumer.take(stream, block);
        output.commit();
    }
    consumer.end(stream);
    damaged = damaged || stream.getCounts().isDamaged();
}

} // namespace tool
