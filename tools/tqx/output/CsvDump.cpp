#include "output/CsvDump.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "output/CsvFolder.h"
#include "output/RecordDump.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/write/FlatCsv.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>
#include <vector>

namespace tqx::tool
{

using Kor::MessageApi::TQX_TypeLayout;

namespace
{

class FolderDump : public RecordDump
{
public:
    FolderDump(CsvFiles& files, const FieldFilter& filter, const CsvStyle& style)
        : m_folder(files, filter, style)
    {
    }

private:
    void write(const Block&, const RecordDecoder& decoder) override
    {
        m_folder.write(decoder.getRecord());
    }

    CsvFolder m_folder;
};

class FlatDump : public RecordDump
{
public:
    FlatDump(const TQX_TypeLayout& type, const FieldFilter& filter, const CsvStyle& style,
             Buffer& buffer)
        : m_recordType(type.recordType), m_table(type, filter, style), m_out(buffer)
    {
        m_table.writeHeader(m_out);
    }

private:
    void write(const Block&, const RecordDecoder& decoder) override
    {
        if (decoder.getDecoded().getHeader().korcg_type == m_recordType)
            m_table.write(m_out, decoder.getRecord());
    }

    uint32_t m_recordType;
    FlatCsv m_table;
    Buffer& m_out;
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
    forEachType([&](const TQX_TypeLayout& type) {
        if (type.blockNumber != 0 && type.hasMessage && selected.accepts(type.blockNumber) &&
            filter.matches(type))
            types.push_back(&type);
    });
    if (types.empty())
        throw ToolError("no selected type has fields to write as csv");
    if (types.size() > 1) {
        throw ToolError(fmt::format(
            "one csv file holds one type, but {} are selected; choose one with --type, or have a "
            "file for each with -o FOLDER",
            types.size()));
    }
    return *types.front();
}

} // namespace

ExitStatus dumpCsv(StreamOptions& streams, const FieldFilter& filter, const CsvStyle& style,
                   const std::string& target)
{
    if (!isOneFile(target)) {
        streams.checkBeforeFolder(target);
        CsvFiles files(target);
        FolderDump dump(files, filter, style);
        return streams.read(dump, files);
    }
    const TQX_TypeLayout& type = theType(streams.getSelection().getTypes(), filter);
    Output output(target);
    FlatDump dump(type, filter, style, output.getBuffer());
    return streams.read(dump, output);
}

} // namespace tqx::tool
