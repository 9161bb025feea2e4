#include "output/PartNames.h"

#include "io/ToolError.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace tqx::tool
{

namespace fs = std::filesystem;

namespace
{

/// "20260106T120000", with milliseconds where there are any.
std::string plainTime(GnssMillis time)
{
    std::string plain;
    for (const char character : dateText(time)) {
        if (character != '-' && character != ':')
            plain += character;
    }
    constexpr std::string_view none = ".000";
    const size_t point = plain.size() - none.size();
    return plain.substr(point) == none ? plain.substr(0, point) : plain;
}

std::string filledIn(const std::string& pattern, const std::string& name, unsigned number,
                     const std::string& time)
{
    std::string text;
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '{') {
            text += pattern[i];
            continue;
        }
        const size_t end = pattern.find('}', i);
        const std::string key = pattern.substr(i, end == std::string::npos ? end : end - i + 1);
        if (key == "{name}") {
            text += name;
        } else if (key == "{number}") {
            text += fmt::format("{:04}", number);
        } else if (key == "{time}") {
            text += time;
        } else {
            throw ToolError(pattern + ": " + key + " is none of {number}, {time} and {name}");
        }
        i = end;
    }
    return text;
}

} // namespace

PartNames::PartNames(const std::string& target, std::string pattern, std::string name)
    : m_pattern(std::move(pattern)), m_name(std::move(name))
{
    if (target.find('{') != std::string::npos) {
        m_pattern = target;
        if (filledIn(target, "", 1, "1") == filledIn(target, "", 2, "2")) {
            throw ToolError(target +
                            ": one of {number} and {time} is needed, for names that differ");
        }
    } else {
        m_pattern = (fs::path(target) / m_pattern).string();
    }
    const fs::path folder = fs::path(m_pattern).parent_path();
    std::error_code error;
    if (!folder.empty() && folder.string().find('{') == std::string::npos) {
        fs::create_directories(folder, error);
        if (error || !fs::is_directory(folder, error))
            throw ToolError(folder.string() + ": " + (error ? error.message() : "Not a directory"));
    }
}

std::string PartNames::next(const std::optional<GnssMillis>& time)
{
    ++m_number;
    const fs::path wanted =
        filledIn(m_pattern, m_name, m_number, time ? plainTime(*time) : "notime");
    fs::path path = wanted;
    for (unsigned again = 2; !m_given.insert(path.string()).second; ++again) {
        path = wanted;
        path.replace_filename(
            fmt::format("{}-{}{}", wanted.stem().string(), again, wanted.extension().string()));
    }
    return path.string();
}

std::string stemOf(const std::string& path)
{
    if (path == "-")
        return "log";
    fs::path name = fs::path(path).filename();
    for (const char* extension : {".gz", ".zst", ".tqx"}) {
        if (equalNames(name.extension().string(), extension))
            name = name.stem();
    }
    return name.string();
}

} // namespace tqx::tool
