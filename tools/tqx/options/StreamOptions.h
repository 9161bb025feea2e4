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

/// Receives the selected blocks of a command's inputs.
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

    /// Whether nothing more is wanted; called after each selected block.
    virtual bool isDone() const { return false; }

    /// Whether neither blocks that are not selected nor counts of everything read matter before the
    /// end.
    virtual bool canSkip() const { return true; }

    /// The stream has ended.
    virtual void end(InputStream&) {}
};

/// The arguments shared by all commands that read streams of blocks.
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

    /// Adds only those that do not choose by type.
    void addConditions(CLI::App& command);

    /// Whether the input is read as a live receiver, by one thread.
    bool isLive() const { return m_live; }

    /// The inputs as they were given.
    const std::vector<std::string>& getFiles() const { return m_files; }

    /// Whether standard input is one of them.
    bool hasStandardInput() const;

    bool isQuiet() const { return m_quiet; }

    /// All types of blocks. Throws ToolError for wrong descriptions.
    const Schema& getSchema() const { return m_descriptions.getSchema(); }

    /// The requested selection. Throws ToolError for bad arguments.
    Selection& getSelection();

    /// Checks to make before `target` is written: throws DataError for bad arguments, when it is
    /// one of the inputs, and, unless `target` is standard output, when an input cannot be opened:
    /// a mistyped name must not empty an existing file.
    void checkBefore(const std::string& target);

    /// The same before a table for each type is written into a folder: throws ToolError when one of
    /// those that may be written is an input.
    void checkBeforeFolder(const std::string& folder);

    /// What --limit says, 0 for none.
    uint64_t getLimit() const { return m_limit; }

    /// Whether the inputs are files that can be read twice.
    bool canLookAhead() const;

    /// Passes the selected blocks to `consumer` before read() does, without limit and without
    /// messages except the progress. Throws DataError for bad arguments.
    void lookAhead(const std::function<void(BlockStream&, const Block&)>& consumer) const;

    /// Passes the selected blocks of the inputs, as one stream, to `consumer`; reading ends after
    /// --limit blocks. In a single input with an index beside it, blocks chosen by type or time are
    /// found by the index, with the same results. An input that cannot be read is reported and
    /// skipped. Returns Failed if there was one, or if there were bytes but no block at all, unless
    /// the receiver sent only other messages; else, under --strict, Damaged if the stream was.
    /// Throws ToolError for bad arguments and when the output cannot be written, ClosedPipe when
    /// nobody reads it.
    ExitStatus read(BlockConsumer& consumer, Sink& output);

    /// Reads the inputs one by one, each as a separate stream with a consumer from `makeConsumer`,
    /// from which blocks are selected as if there were no other. Returns the most severe result of
    /// read().
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
