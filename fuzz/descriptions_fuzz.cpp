// Arbitrary bytes as several files of one description, separated by a zero: errors name one of them
// and an existing line.

#include "read/Load.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using namespace korcg::generator;

namespace
{

std::vector<Source> sourcesOf(const std::string& input)
{
    constexpr std::size_t most = 16;
    std::vector<Source> sources;
    std::size_t start = 0;
    while (sources.size() < most && start <= input.size()) {
        const std::size_t end = std::min(input.find('\0', start), input.size());
        sources.push_back(
            {"file" + std::to_string(sources.size()) + ".yaml", input.substr(start, end - start)});
        start = end + 1;
    }
    return sources;
}

/// Whether an error names an existing place: "file3.yaml:12: ...".
bool isPlaced(const std::string& error, const std::vector<Source>& sources)
{
    return std::any_of(sources.begin(), sources.end(), [&](const Source& source) {
        if (error.rfind(source.file + ":", 0) != 0)
            return false;
        const auto lines = std::count(source.text.begin(), source.text.end(), '\n') + 1;
        const long line = std::strtol(error.c_str() + source.file.size() + 1, nullptr, 10);
        return line >= 0 && line <= lines + 1;
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::vector<Source> sources =
        sourcesOf(std::string(reinterpret_cast<const char*>(data), size));
    Errors errors;
    const Format format = load(sources, errors);
    const std::vector<std::string> report = errors.report();
    if (report.size() > Errors::limit + 1 || report.empty() != errors.empty())
        std::abort();
    if (!report.empty() && report.size() <= Errors::limit && !isPlaced(report.front(), sources))
        std::abort();
    return 0;
}
