#include "commands/ErrorCommand.h"

#include "TQX_codec.h"
#include "io/Output.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <optional>

namespace tqx::tool
{

namespace
{

constexpr int32_t lowestCode = Kor::MessageApi::TQX_lowestCode;

std::optional<int64_t> numberOf(const std::string& text)
{
    int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || error != std::errc())
        return std::nullopt;
    return number;
}

std::string line(int64_t code, const char* name)
{
    return fmt::format("{} {}\n", code, name);
}

} // namespace

ErrorCommand::ErrorCommand(CLI::App& program)
    : Command(program, "error", "Show the name of a codec result, or the code of a name",
              "  tqx error -1855\n"
              "  tqx error TQX_ERR_EOF\n"
              "  tqx error --all\n")
{
    m_app.add_option("CODE", m_items, "Codes, or their names")->type_name("");
    // Negative numbers look like options; this lets them through.
    m_app.allow_extras();
    m_app.add_flag("--all", m_all, "List every code with its name, from -1 down");
}

void ErrorCommand::explain(Buffer& out, const std::string& item)
{
    if (const std::optional<int64_t> number = numberOf(item)) {
        if (*number < lowestCode)
            throw ToolError(fmt::format("{} is not a code; the last one is {}", item, lowestCode));
        const auto code = static_cast<int32_t>(std::min<int64_t>(*number, 0));
        out.append(line(*number, TQX_errorName(code)));
        return;
    }
    std::vector<std::string_view> names;
    for (int32_t code = 0; code >= lowestCode; --code) {
        const char* name = TQX_errorName(code);
        if (equalNames(item, name)) {
            out.append(line(code, name));
            return;
        }
        names.emplace_back(name);
    }
    throw ToolError(unknownName("code", item, names));
}

ExitStatus ErrorCommand::run()
{
    const std::vector<std::string> codes = m_app.remaining();
    m_items.insert(m_items.end(), codes.begin(), codes.end());
    if (!m_all && m_items.empty())
        throw ToolError("error: give a code, a name or --all");
    Output output;
    ExitStatus status = ExitStatus::Done;
    for (int32_t code = -1; m_all && code >= lowestCode; --code)
        output.getBuffer().append(line(code, TQX_errorName(code)));
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
