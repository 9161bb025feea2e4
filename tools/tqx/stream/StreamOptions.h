#pragma once

#include "BlockStream.h"
#include "ExitStatus.h"
#include "TypeSelection.h"

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace tool
{

class Output;

/// What a command does with the blocks of its inputs.
class BlockConsumer
{
public:
    virtual ~BlockConsumer() = default;

    /// A new input begins.
    virtual void begin(BlockStream& stream) = 0;

    /// A block of the selected types. What is appended to the output is written in time.
    virtual void take(BlockStream& stream, const Block& block) = 0;

    /// The input has ended.
    virtual void end(BlockStream& stream) = 0;
};

/// The arguments that all commands share that read streams of blocks.
class StreamOptions
{
public:
    /// Adds FILE..., --strict and --quiet.
    void addInputs(CLI::App& command);

    /// Adds --type and --not-type.
    void addTypes(CLI::App& command);

    /// Hands the blocks of one input after the other to `consumer`. An input that cannot be read
    /// is reported and the next one taken. Returns Failed if there was such a one, else, under
    /// --strict, Damaged if an input was. Throws ToolError for bad arguments and when the output
    /// cannot be written, ClosedPipe when nobody reads it.
    ExitStatus read(BlockConsumer& consumer, Output& output) const;

private:
    void readOne(const std::string& path, const TypeSelection& selection, BlockConsumer& consumer,
                 Output& output, bool& damaged) const;

    std::vector<std::string> files;
    std::vector<std::string> types;
    std::vector<std::string> notTypes;
    bool strict = false;
    bool quiet = false;
};

} // namespace tool
