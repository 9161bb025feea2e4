#pragma once

#include "io/ExitStatus.h"
#include "options/DescriptionOption.h"
#include "options/InputStream.h"
#include "options/SelectionOptions.h"

#include <CLI/App.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx::tool
{

class Sink;

/// What a command does with the blocks of its inputs.
class BlockConsumer
{
public:
    virtual ~BlockConsumer() = default;

    /// The stream begins.
    virtual void begin(InputStream&) {}

    /// A selected block. What is appended to the output is written in time.
    virtual void take(BlockStream& stream, const Block& block) = 0;

    /// Whether a selected block is one that the consumer is for, so that it counts for --limit.
    virtual bool counts(const Block&) const { return true; }

    /// Whether nothing more is wanted, asked after each selected block.
    virtual bool isDone() const { return false; }

    /// Whether blocks that are not selected need not come by, and counts of all that is read have
    /// no say before the end.
    virtual bool canSkip() const { return true; }

    /// The stream has ended.
    virtual void end(InputStream&) {}
};

/// The arguments that all commands share that read streams of blocks.
class StreamOptions
{
public:
    /// Adds FILE..., --description, --strict, --quiet, --live, --pause and --no-index.
    void addInputs(CLI::App& command);

    /// Adds --verbose, for commands that report damage on standard error. After addInputs().
    void addDamageReport(CLI::App& command);

    /// Adds the arguments that choose blocks.
    void addSelection(CLI::App& command)
    {
        m_selections.addTypes(command);
        addConditions(command);
    }

    /// Adds only those of them that do not choose by type.
    void addConditions(CLI::App& command);

    /// Whether the input is read as a receiver that sends: by one thread.
    bool isLive() const { return m_live; }

    /// The inputs as they were given.
    const std::vector<std::string>& getFiles() const { return m_files; }

    /// Whether standard input is one of them.
    bool hasStandardInput() const;

    bool isQuiet() const { return m_quiet; }

    /// The types of blocks that there are. Throws ToolError for descriptions that are wrong.
    const Schema& getSchema() const { return m_descriptions.getSchema(); }

    /// The selection that they ask for. Throws ToolError for bad arguments.
    Selection& getSelection();

    /// What must be known before `target` is written: throws DataError for bad arguments, when it
    /// is one of the inputs, and when an input cannot be opened while `target` is no standard
    /// output: a file that exists must not be emptied for a name that is mistyped.
    void checkBefore(const std::string& target);

    /// The same before a table for each type is written into a folder: throws ToolError when one of
    /// those that may be written is an input.
    void checkBeforeFolder(const std::string& folder);

    /// What --limit says, 0 for none.
    uint64_t getLimit() const { return m_limit; }

    /// Whether the inputs are files that can be read twice.
    bool canLookAhead() const;

    /// Hands the selected blocks to `consumer` before read() does, without limit and without a
    /// word but the progress. Throws DataError for bad arguments.
    void lookAhead(const std::function<void(BlockStream&, const Block&)>& consumer) const;

    /// Hands the selected blocks of the inputs, as one stream, to `consumer`; after as many as
    /// --limit says, nothing more is read. Of one input with an index beside it, blocks that are
    /// chosen by type or time are found by that, with the same results. An input that cannot
    /// be read is reported and left out. Returns Failed if there was such a one or bytes but no
    /// block at all, unless the receiver sent other messages only; else, under --strict, Damaged if
    /// the stream was. Throws ToolError for bad arguments and when the output
    /// cannot be written, ClosedPipe when nobody reads it.
    ExitStatus read(BlockConsumer& consumer, Sink& output);

    /// Hands the inputs to `makeConsumer` one by one, each as a stream of its own, from which
    /// blocks are selected as if there were no other. Returns the gravest of what read() does.
    ExitStatus readEach(const std::function<std::unique_ptr<BlockConsumer>()>& makeConsumer,
                        Sink& output);

private:
    SelectionRequest getRequest() const;
    void useIndex(InputStream& stream, const BlockConsumer& consumer);

    std::vector<std::string> m_files;
    DescriptionOption m_descriptions;
    SelectionOptions m_selections;
    std::optional<Selection> m_selection;
    uint64_t m_limit = 0; ///< 0 for none
    bool m_strict = false;
    bool m_quiet = false;
    bool m_live = false;
    bool m_noIndex = false;
    double m_pause = 1; ///< seconds
    bool m_verbose = false;
};

} // namespace tqx::tool
