// Random blocks of all types in all formats of dumps: JSON is read back by another reader, rows of
// tables have as many cells as their header, paragraphs keep their form.

#include "FuzzInput.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/write/FlatCsv.h"
#include "tqx/log/write/Paragraph.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/log/write/ValueJson.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

namespace
{

[[noreturn]] void fail(const char* what, std::string_view text)
{
    std::fprintf(stderr, "%s:\n%.*s\n", what, static_cast<int>(text.size()), text.data());
    std::abort();
}

/// A line for one block, or none for one whose fields are not shown.
void checkJson(std::string_view text)
{
    if (text.empty())
        return;
    if (text.back() != '\n' || hasControls(text) || text.find('\n') != text.size() - 1)
        fail("no line", text);
    const nlohmann::json line = nlohmann::json::parse(text, nullptr, false);
    if (!line.is_object() || line.contains("fields") == line.contains("number"))
        fail("no JSON of a block", text);
}

void checkParagraph(std::string_view text)
{
    if (hasControls(text) || text.find(" \n") != std::string_view::npos)
        fail("no clean text", text);
    const size_t end = text.find('\n');
    // After the title all lines are indented, up to the empty one at the end.
    for (size_t at = end; at + 2 < text.size(); at = text.find('\n', at + 1)) {
        if (text.substr(at + 1, 4) != "    ")
            fail("no paragraph", text);
    }
    if (!text.empty() && text.substr(text.size() - 2) != "\n\n")
        fail("no end", text);
}

/// The number of cells of each row, by RFC 4180.
std::vector<size_t> cellsOf(std::string_view table)
{
    std::vector<size_t> rows;
    size_t cells = 1;
    bool isQuoted = false;
    for (const char character : table) {
        if (character == '"')
            isQuoted = !isQuoted;
        if (isQuoted)
            continue;
        cells += character == ',' ? 1 : 0;
        if (character != '\n')
            continue;
        rows.push_back(cells);
        cells = 1;
    }
    if (isQuoted || cells != 1)
        fail("no table", table);
    return rows;
}

void checkTable(std::string_view table)
{
    const std::vector<size_t> rows = cellsOf(table);
    for (const size_t cells : rows) {
        if (cells != rows.front())
            fail("a row of another length", table);
    }
}

/// The writers of one filter, which cache what they know about types.
class Writers
{
public:
    explicit Writers(const std::vector<std::string>& fields)
        : m_filter(fields), m_text(m_filter), m_storedText(m_filter, tqx::ValueStyle{true}),
          m_values(m_filter), m_stored(m_filter)
    {
    }

    void check(const tqx::Block& block)
    {
        tqx::RecordDecoder decoder;
        const int32_t result = decoder.decode(block);
        if (result <= 0) {
            check(
                [&](tqx::Buffer& out) {
                    m_values.writeBytes(out, {block, nullptr, result});
                },
                checkJson);
            check([&](tqx::Buffer& out) { m_stored.writeBytes(out, block); }, checkJson);
            check([&](tqx::Buffer& out) { m_text.writeTitle(out, block); }, checkParagraph);
            return;
        }
        const tqx::DecodedBlock& decoded = decoder.getDecoded();
        const void* record = decoder.getRecord();
        check([&](tqx::Buffer& out) { m_values.write(out, decoded); }, checkJson);
        check([&](tqx::Buffer& out) { m_stored.write(out, decoded); }, checkJson);
        check([&](tqx::Buffer& out) { m_text.write(out, block, record); }, checkParagraph);
        check([&](tqx::Buffer& out) { m_storedText.write(out, block, record); }, checkParagraph);
        const uint32_t type = decoded.getHeader().korcg_type;
        if (TQX_layout(type)->hasMessage) {
            for (unsigned style = 0; style < 4; ++style)
                checkTables(type, style, record);
        }
    }

private:
    template<typename Write>
    void check(Write write, void (*checkText)(std::string_view))
    {
        m_buffer.clear();
        write(m_buffer);
        checkText(m_buffer.view());
    }

    void checkTables(uint32_t type, unsigned style, const void* record)
    {
        std::unique_ptr<tqx::FlatCsv>& table = m_tables[type * 4 + style];
        if (!table) {
            table = std::make_unique<tqx::FlatCsv>(
                *TQX_layout(type), m_filter, tqx::CsvStyle{{(style & 1U) != 0}, (style & 2U) != 0});
        }
        check(
            [&](tqx::Buffer& to) {
                table->writeHeader(to);
                table->write(to, record, 0);
            },
            checkTable);
    }

    tqx::FieldFilter m_filter;
    tqx::Paragraph m_text;
    tqx::Paragraph m_storedText;
    tqx::ValueJson m_values;
    tqx::RawJson m_stored;
    std::map<uint32_t, std::unique_ptr<tqx::FlatCsv>> m_tables;
    tqx::Buffer m_buffer;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Writers writers[] = {Writers({}), Writers({"WNc", "svid", "TOWc", "Type1.CN0",
                                                      "Revision", "ASCIIString", "Type", "TOW"})};
    FuzzInput input(data, size);
    std::vector<uint8_t> bytes = fuzzBlock(input);
    // Cut off, it does not decode.
    if (input.next(1) == 1)
        bytes.resize(8 + input.below(bytes.size() - 7));
    for (Writers& some : writers)
        some.check({bytes.data(), static_cast<uint16_t>(bytes.size()), input.next(4)});
    return 0;
}
