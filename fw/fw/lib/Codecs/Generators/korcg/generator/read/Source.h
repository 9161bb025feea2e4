#pragma once

#include "model/Errors.h"

#include <filesystem>
#include <string>
#include <vector>

namespace korcg::generator
{

/// One file of a description.
struct Source {
    std::string file; ///< name that errors show
    std::string text;
};

/// All *.yaml files directly in `directory`, sorted by name. A directory that cannot be
/// read, or holds none, is an error.
std::vector<Source> readSources(const std::filesystem::path& directory, Errors& errors);

} // namespace korcg::generator
