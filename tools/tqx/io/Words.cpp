#include "Words.h"

#include <fmt/format.h>

#include <cstdio>

namespace tool::words
{

namespace
{

bool progressShown = false;

void print(const std::string& line)
{
    showProgress("");
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

} // namespace

void say(std::string_view text)
{
    print(fmt::format("tqx: {}\n", text));
}

void sayAt(std::string_view file, uint64_t offset, std::string_view text)
{
    print(fmt::format("tqx: {}: {}: {}\n", file, offset, text));
}

void sayLine(std::string_view file, uint64_t line, std::string_view text)
{
    print(fmt::format("{}:{}: {}\n", file, line, text));
}

void showProgress(const std::string& text)
{
    if (text.empty() && !progressShown)
        return;
    fmt::print(stderr, "\r\x1b[K{}", text);
    std::fflush(stderr);
    progressShown = !text.empty();
}

} // namespace tool::words
