#include "read/Source.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace korcg::generator
{

std::vector<Source> readSources(const std::filesystem::path& directory, Errors& errors)
{
    const Location whole{directory.string(), 0};
    std::error_code failure;
    std::vector<std::filesystem::path> paths;
    std::filesystem::directory_iterator entry(directory, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        if (entry->path().extension() == ".yaml")
            paths.push_back(entry->path());
    }
    if (failure) {
        errors.add(whole, "cannot be read: " + failure.message());
        return {};
    }
    if (paths.empty())
        errors.add(whole, "holds no *.yaml file");
    std::sort(paths.begin(), paths.end());

    std::vector<Source> sources;
    for (const std::filesystem::path& path : paths) {
        std::ifstream stream(path, std::ios::binary);
        Source source{path.string(),
                      {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}};
        if (!stream) {
            errors.add({source.file, 0}, "cannot be read");
        } else {
            sources.push_back(std::move(source));
        }
    }
    return sources;
}

} // namespace korcg::generator
