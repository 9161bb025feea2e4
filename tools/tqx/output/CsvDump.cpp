#include "output/CsvDump.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "output/CsvBook.h"
#include "output/CsvFolder.h"
#include "output/ParallelDump.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/write/FlatCsv.h"

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

namespace tqx::tool
{

using Kor::MessageApi::TQX_TypeLayout;

namespace
{

/// Tables of all types.
class BookWriter final : public BatchWriter
{
public:
    BookWriter(const FieldFilter& filter, const CsvStyle& style) : m_filter(filter), m_style(style)
    {
    }

    void write(BatchText& out, const BatchEntry& entry) override
    {
        if (!entry.decoded.record)
            return;
        const uint32_t recordType = entry.decoded.getHeader().korcg_type;
        const TQX_TypeLayout& type = *m_filter.getSchema().getType(recordType);
        if (!type.hasMessage)
            return;
        if (m_books.size() <= recordType)
            m_books.resize(recordType + 1);
        std::unique_ptr<CsvBook>& book = m_books[recordType];
        if (!book)
            book = std::make_unique<CsvBook>(type, m_filter, m_style);
        book->write(out, m_key, entry.decoded.record, entry.index);
    }

private:
    const FieldFilter& m_filter;
    CsvStyle m_style;
    CsvKey m_key;
    std::vector<std::unique_ptr<CsvBook>> m_books; ///< by record type
};

/// One table of one type.
class FlatWriter final : public BatchWriter
{
public:
    FlatWriter(const TQX_TypeLayout& type, const FieldFilter& filter, const CsvStyle& style)
        : m_recordType(type.recordType), m_table(type, filter, style)
    {
    }

    void write(BatchText& out, const BatchEntry& entry) override
    {
        const DecodedBlock& decoded = entry.decoded;
        if (decoded.record && decoded.getHeader().korcg_type == m_recordType)
            m_table.write(out.text, decoded.record, entry.index);
    }

private:
    uint32_t m_recordType;
    FlatCsv m_table;
};

bool isOneFile(const std::string& target)
{
    const std::filesystem::path path(target);
    std::error_code unknown;
    constexpr size_t length = 4;
    const bool isNamed =
        target.size() >= length && equalNames(target.substr(target.size() - length), ".csv");
    return target == "-" || (isNamed && !std::filesystem::is_directory(path, unknown));
}

/// The only type that can be written.
const TQX_TypeLayout& theType(const TypeSelection& selected, const FieldFilter& filter)
{
    std::vector<const TQX_TypeLayout*> types;
    filter.getSchema().forEachType([&](const TQX_TypeLayout& type) {
        if (type.blockNumber != 0 && type.hasMessage && selected.accepts(type.blockNumber) &&
            filter.matches(type))
            types.push_back(&type);
    });
    if (types.empty())
        throw ToolError("no selected type has fields to write as csv");
    if (types.size() > 1) {
        throw ToolError(fmt::format("one csv file holds one type, but {} are selected; choose one "
                                    "with --type, or write one file each with -o FOLDER",
                                    types.size()));
    }
    return *types.front();
}

} // namespace

ExitStatus dumpCsv(StreamOptions& streams, const FieldFilter& filter, const CsvStyle& style,
                   const std::string& target)
{
    const unsigned threads = streams.isLive() ? 1 : 0;
    if (!isOneFile(target)) {
        streams.checkBeforeFolder(target);
        CsvFolder folder(target, filter, style);
        ParallelDump dump(
            folder, [&] { return std::make_unique<BookWriter>(filter, style); }, threads,
            streams.getSchema());
        const ExitStatus status = streams.read(dump, dump);
        folder.close();
        return status;
    }
    const TQX_TypeLayout& type = theType(streams.getSelection().getTypes(), filter);
    Output output(target);
    FlatCsv(type, filter, style).writeHeader(output.getBuffer());
    output.flush();
    OutputTarget text(output);
    ParallelDump dump(
        text, [&] { return std::make_unique<FlatWriter>(type, filter, style); }, threads,
        streams.getSchema());
    return streams.read(dump, dump);
}

} // namespace tqx::tool
