#include "options/StreamOptions.h"

#include "io/Interrupt.h"
#include "io/Sink.h"
#include "io/Target.h"
#include "io/Words.h"
#include "options/NoBlocks.h"
#include "options/Numbers.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <system_error>

namespace tqx::tool
{

using Kor::MessageApi::TQX_TypeLayout;

void StreamOptions::addInputs(CLI::App& command)
{
    command
        .add_option("FILE", m_files,
                    "Files to read, one after the other, also compressed with gzip or zstd; - is "
                    "standard input")
        ->required()
        ->type_name("");
    m_descriptions.add(command);
    command.add_flag("--strict", m_strict, "Exit with status 2 when an input is damaged");
    command.add_flag("-q,--quiet", m_quiet,
                     "Show no progress and do not report damage on standard error");
    CLI::Option* receiver = command.add_flag(
        "--live", m_live,
        "Input is a live receiver: do not let false headers hold back intact blocks");
    addReal(command, "--pause", m_pause, 0.001, 3600, "seconds",
            "Pause after which --live doubts a header")
        ->needs(receiver)
        ->type_name("SECONDS");
    command.add_flag(
        "--no-index", m_noIndex,
        "Read the whole input even if an index beside it could find the selected blocks");
}

void StreamOptions::addDamageReport(CLI::App& command)
{
    command.add_flag("-v,--verbose", m_verbose,
                     "Report every damaged place on standard error, not only the first ten");
}

void StreamOptions::addConditions(CLI::App& command)
{
    m_selections.addConditions(command);
    addWhole(command, "--limit", m_limit, 1, std::numeric_limits<uint64_t>::max(),
             "End after N selected blocks, without reading further")
        ->type_name("N")
        ->default_str("")
        ->group(SelectionOptions::group);
}

bool StreamOptions::hasStandardInput() const
{
    return std::find(m_files.begin(), m_files.end(), "-") != m_files.end();
}

SelectionRequest StreamOptions::getRequest() const
{
    SelectionRequest request = m_selections.getRequest();
    request.schema = getSchema();
    return request;
}

Selection& StreamOptions::getSelection()
{
    if (!m_selection)
        m_selection.emplace(getRequest());
    return *m_selection;
}

void StreamOptions::checkBefore(const std::string& target)
{
    getSelection();
    refuseSameFile(m_files, target);
    if (target != "-")
        refuseUnreadable(m_files);
}

void StreamOptions::checkBeforeFolder(const std::string& folder)
{
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
        const std::string name = entry.path().filename().string();
        const TQX_TypeLayout* type = getSchema().findType(name.substr(0, name.find('.')));
        if (type && entry.path().extension() == ".csv" &&
            getSelection().getTypes().accepts(type->blockNumber))
            refuseSameFile(m_files, entry.path().string());
    }
}

bool StreamOptions::canLookAhead() const
{
    std::error_code error;
    return std::all_of(m_files.begin(), m_files.end(), [&error](const std::string& file) {
        return file != "-" && std::filesystem::is_regular_file(file, error);
    });
}

void StreamOptions::lookAhead(const std::function<void(BlockStream&, const Block&)>& consumer) const
{
    Selection chosen(getRequest());
    InputSequence source(m_files, m_quiet);
    source.leaveOutSilently();
    BlockStream stream(source);
    stream.setSchema(getSchema());
    for (Block block = {}; !interrupt::hasCome() && stream.next(block);) {
        if (chosen.accepts(stream, block))
            consumer(stream, block);
    }
}

/// Reads only what is selected, if the input has an index that locates it.
void StreamOptions::useIndex(InputStream& stream, const BlockConsumer& consumer)
{
    const Selection& chosen = getSelection();
    const bool isPart = !chosen.getTypes().isEverything() || chosen.getFrom().has_value() ||
                        chosen.getTo().has_value();
    if (m_noIndex || m_live || m_files.size() != 1 || m_files.front() == "-" || !isPart ||
        chosen.hasInterval() || !consumer.canSkip())
        return;
    bool isFine = true;
    IndexedLogOptions options;
    options.mapping = FileAccess::Mapping::Never; // somebody may truncate it
    options.schema = getSchema();
    options.onWarning = [&isFine](const std::string&) { isFine = false; };
    std::unique_ptr<IndexedLog> log;
    try {
        log = IndexedLog::openSaved(m_files.front(), options);
    } catch (const DataError&) {
        return; // reading all of it says what is wrong
    }
    if (!log || !isFine || log->getIndex().getCounts().blocks == 0)
        return;
    BlockQuery query;
    query.from = chosen.getFrom();
    query.to = chosen.getTo();
    for (const Index::Type& type : log->getIndex().getTypes()) {
        if (chosen.getTypes().accepts(type.number))
            query.numbers.push_back(type.number);
    }
    if (query.numbers.empty())
        query.endPage = 0; // no numbers would be all of them
    stream.useIndex(std::move(log), query);
}

ExitStatus StreamOptions::read(BlockConsumer& consumer, Sink& output)
{
    Selection& chosen = getSelection();
    InputStream stream(m_files, m_quiet, m_verbose);
    stream.setSchema(getSchema());
    if (m_live)
        stream.setLive(std::chrono::milliseconds(std::llround(m_pause * 1000)));
    stream.setBeforeRead([&output] { output.handOn(); });
    useIndex(stream, consumer);
    consumer.begin(stream);
    Block block = {};
    uint64_t left = m_limit;
    while (stream.next(block)) {
        bool isLast = false;
        const bool isChosen =
            stream.isIndexed() ? chosen.acceptsFound(stream, block) : chosen.accepts(stream, block);
        if (isChosen) {
            consumer.take(stream, block);
            isLast = m_limit != 0 && consumer.counts(block) && --left == 0;
            isLast = isLast || consumer.isDone();
        }
        output.commit();
        if (isLast) {
            stream.close();
            break;
        }
    }
    stream.sumUpDamage();
    if (stream.getCounts().bytes == 0 && !stream.hasFailed() && !m_quiet)
        words::say(fmt::format("{}: empty", fmt::join(stream.getNames(), ", ")));
    consumer.end(stream);
    output.flush();
    const bool damaged = m_strict && stream.getCounts().isDamaged();
    const ExitStatus status = worse(stream.hasFailed() ? ExitStatus::Failed : ExitStatus::Done,
                                    damaged ? ExitStatus::Damaged : ExitStatus::Done);
    return worse(status, reportNoBlocks(stream, m_quiet));
}

ExitStatus
StreamOptions::readEach(const std::function<std::unique_ptr<BlockConsumer>()>& makeConsumer,
                        Sink& output)
{
    const std::vector<std::string> all = m_files;
    ExitStatus status = ExitStatus::Done;
    for (const std::string& file : all) {
        if (interrupt::hasCome())
            break;
        m_files = {file};
        m_selection.reset();
        status = worse(status, read(*makeConsumer(), output));
    }
    m_files = all;
    return status;
}

} // namespace tqx::tool
