#include "tqx/log/inspect/Explanation.h"

#include "tqx/log/inspect/InspectionRows.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Kind = InspectionRow::Kind;

/// How many bytes a line shows.
constexpr uint32_t bytesPerLine = 8;

/// A line of the table, a text for each column.
struct Line {
    uint32_t offset;
    std::string bytes; ///< in hexadecimal, or which bits they are of the value above
    std::string label; ///< indented
    std::string raw;
    std::string value; ///< what the raw value means, where that differs
};

std::string hex(const uint8_t* bytes, uint32_t count)
{
    return fmt::format("{:02x}", fmt::join(bytes, bytes + count, " "));
}

std::string bitsOf(const InspectionRow& row)
{
    if (row.bitCount() == 0)
        return "computed";
    return row.bitCount() == 1
               ? fmt::format("bit {}", row.lowestBit())
               : fmt::format("bits {}-{}", row.lowestBit(), row.lowestBit() + row.bitCount() - 1);
}

std::string valueOf(const InspectionRow& row, const ValueStyle& style)
{
    if (!row.error.empty())
        return row.error;
    if (row.kind == Kind::SubBlock) {
        std::string text = row.field->sub->name;
        return row.stated == 0 ? text : text + fmt::format(", {} bytes", row.stated);
    }
    if (!row.isAvailable)
        return "not available";
    if (!row.name.empty() || row.unit.empty())
        return row.name.empty() ? row.scaled : row.name;
    return fmt::format("{} {}", row.scaled, shownUnit(row.unit, style));
}

/// Lines for a long run of bytes.
void addRun(std::vector<Line>& lines, const InspectionRow& row, const std::string& label,
            const uint8_t* bytes)
{
    for (uint32_t at = 0; at < row.size || at == 0; at += bytesPerLine) {
        const uint32_t count = std::min(bytesPerLine, row.size - at);
        Line line = {row.offset + at, hex(bytes + at, count), label, "", ""};
        if (row.kind == Kind::Bytes && row.size > bytesPerLine) {
            line.label += fmt::format("[{}]", at);
        } else if (at != 0) {
            line.label.clear();
        }
        if (row.kind == Kind::Text) {
            line.raw = quotedText(bytes + at, count);
        } else if (row.size == 0) {
            line.value = "empty";
        }
        lines.push_back(std::move(line));
    }
}

std::vector<Line> linesOf(const Inspection& inspection, const ValueStyle& style)
{
    std::vector<Line> lines;
    for (const InspectionRow& row : inspection.rows) {
        const uint8_t* bytes = inspection.bytes.data() + row.offset;
        const std::string label = std::string(size_t{2} * row.depth, ' ') + row.label;
        if (row.kind == Kind::Text || row.kind == Kind::Bytes || row.kind == Kind::Unknown) {
            addRun(lines, row, label, bytes);
            continue;
        }
        Line line = {row.offset, "", label, row.raw, valueOf(row, style)};
        if (row.kind == Kind::Value) {
            line.bytes = hex(bytes, row.size);
        } else if (row.kind == Kind::Bits) {
            line.bytes = bitsOf(row);
        } else if (row.kind == Kind::Derived) {
            line.bytes = "derived";
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

void appendHead(Buffer& out, const Inspection& inspection)
{
    out.append(fmt::format("{}, offset {}", printable(inspection.file), inspection.offset));
    if (!inspection.hasHeader) {
        out.append(": no block");
    } else if (inspection.number) {
        out.append(fmt::format(": {}, revision {}",
                               describeBlock(*inspection.number, inspection.schema),
                               inspection.revision));
        if (inspection.length != 0)
            out.append(fmt::format(", {} bytes", inspection.length));
        if (inspection.time)
            out.append("\n" + timeText(*inspection.time));
        if (!inspection.type) {
            out.append("\nno type has this number");
        } else if (inspection.revision > inspection.type->highestRevision) {
            out.append(fmt::format("\nnewer than revision {}, the last known one",
                                   inspection.type->highestRevision));
        }
    }
    out.append("\n\n");
}

void appendTable(Buffer& out, const Inspection& inspection, const ValueStyle& style)
{
    const std::vector<Line> lines = linesOf(inspection, style);
    const uint64_t end = inspection.offset + inspection.bytes.size();
    const size_t places = std::max(fmt::formatted_size("{}", end), size_t{4});
    size_t bytes = std::string_view("bytes").size();
    size_t label = std::string_view("field").size();
    size_t raw = std::string_view("stored").size();
    for (const Line& line : lines) {
        bytes = std::max(bytes, line.bytes.size());
        label = std::max(label, line.label.size());
        raw = std::max(raw, line.raw.size());
    }
    const auto append = [&](std::string_view place, std::string_view offset, const Line& line) {
        std::string whole =
            fmt::format("{:>{}}  {:>6}  {:<{}}  {:<{}}  {:<{}}  {}", place, places, offset,
                        line.bytes, bytes, line.label, label, line.raw, raw, line.value);
        whole.erase(whole.find_last_not_of(' ') + 1);
        out.append(whole);
        out.append('\n');
    };
    append("file", "offset", {0, "bytes", "field", "stored", "value"});
    for (const Line& line : lines)
        append(std::to_string(inspection.offset + line.offset), std::to_string(line.offset), line);
}

} // namespace

void appendExplanation(Buffer& out, const Inspection& inspection, const ValueStyle& style)
{
    appendHead(out, inspection);
    appendTable(out, inspection, style);
    const char* separator = "\n";
    for (const std::string& fault : inspection.faults) {
        out.append(separator + fault + "\n");
        separator = "";
    }
}

} // namespace tqx
