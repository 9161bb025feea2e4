#include "commands/ErrorCommand.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace tqx::tool
{

namespace
{

std::optional<int64_t> numberOf(const std::string& text)
{
    int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || error != std::errc())
        return std::nullopt;
    return number;
}

std::string line(int64_t code, std::string_view name)
{
    return fmt::format("{} {}\n", code, name);
}

/// What the end of a code's name, or the whole of it, means.
struct Meaning {
    std::string_view end;
    const char* words;
};

constexpr Meaning meanings[] = {
    {"TQX_ERR_NONE", "success; the number counts bits"},
    {"TQX_ERR_INVALID_CRC", "the checksum of a block does not match its bytes"},
    {"TQX_ERR_BUFFER_OVERFLOW", "reserved; nothing returns it"},
    {"TQX_ERR_INVALID_MESSAGE", "no type has this block number, or there are less than 7 bytes"},
    {"TQX_ERR_EOF", "the input has ended"},
    {"_EXT_BUFFER_OVERFLOW",
     "the bytes end before this field; the block is cut short, or a count or length in it is too "
     "large. In encoding, the buffer is too small"},
    {"_INT_BUFFER_OVERFLOW", "the count is larger than the array of the record"},
    {"_SIZE_UNDERFLOW", "a length in the block is smaller than the fields that it must hold"},
    {"_INTERNAL", "decoding or encoding ended before where it began"},
    {"_CRC_CHECKSUM", "the encoder could not compute the checksum of what it wrote"},
    {"_DISABLED", "the caller has switched off blocks of this type"},
};

/// As a line below that of the code.
std::string meaningOf(std::string_view name)
{
    for (const Meaning& meaning : meanings) {
        if (name.size() >= meaning.end.size() &&
            name.substr(name.size() - meaning.end.size()) == meaning.end)
            return fmt::format("    {}\n", meaning.words);
    }
    return {};
}

/// Where the codes are: "from -1 to -6073", and so on.
std::string rangesOf(const Schema& schema)
{
    std::string ranges;
    int32_t last = 0;
    schema.forEachError([&](int32_t code, const char*) {
        if (ranges.empty()) {
            ranges = fmt::format("from {}", code);
        } else if (code != last - 1) {
            ranges += fmt::format(" to {} and from {}", last, code);
        }
        last = code;
    });
    return fmt::format("{} to {}", ranges, last);
}

std::string nameOf(int64_t code, const Schema& schema)
{
    constexpr std::string_view none = "???";
    if (code >= std::numeric_limits<int32_t>::min()) {
        const char* name = schema.getErrorName(static_cast<int32_t>(std::min<int64_t>(code, 0)));
        if (name != none)
            return name;
    }
    throw ToolError(fmt::format("{} is not a code; they go {}", code, rangesOf(schema)));
}

} // namespace

ErrorCommand::ErrorCommand(CLI::App& program)
    : Command(program, "error",
              "Show the name and meaning of a codec result, or the code of a name",
              "  tqx error -1855\n"
              "  tqx error TQX_ERR_EOF\n"
              "  tqx error --all\n")
{
    m_app.add_option("CODE", m_items, "Codes, or their names")->type_name("");
    // Negative numbers look like options; this lets them through.
    m_app.allow_extras();
    m_app.add_flag("--all", m_all, "List every code with its name, from -1 down");
    m_descriptions.add(m_app);
}

void ErrorCommand::explain(Buffer& out, const std::string& item) const
{
    const Schema& schema = m_descriptions.getSchema();
    if (const std::optional<int64_t> number = numberOf(item)) {
        const std::string name = nameOf(*number, schema);
        out.append(line(*number, name) + meaningOf(name));
        return;
    }
    std::vector<std::string_view> names = {schema.getErrorName(0)};
    std::optional<int32_t> found;
    if (equalNames(item, names.front()))
        found = 0;
    schema.forEachError([&](int32_t code, const char* name) {
        names.emplace_back(name);
        if (!found && equalNames(item, name))
            found = code;
    });
    if (!found)
        throw ToolError(unknownName("code", item, names));
    const std::string_view name = schema.getErrorName(*found);
    out.append(line(*found, name) + meaningOf(name));
}

ExitStatus ErrorCommand::run()
{
    const std::vector<std::string> codes = m_app.remaining();
    m_items.insert(m_items.end(), codes.begin(), codes.end());
    if (!m_all && m_items.empty())
        throw ToolError("error: give a code, a name or --all");
    Output output;
    ExitStatus status = ExitStatus::Done;
    if (m_all) {
        m_descriptions.getSchema().forEachError(
            [&](int32_t code, const char* name) { output.getBuffer().append(line(code, name)); });
    }
    for (const std::string& item : m_items) {
        try {
            explain(output.getBuffer(), item);
        } catch (const ToolError& error) {
            words::say(error.what());
            status = ExitStatus::Failed;
        }
    }
    output.flush();
    return status;
}

} // namespace tqx::tool
