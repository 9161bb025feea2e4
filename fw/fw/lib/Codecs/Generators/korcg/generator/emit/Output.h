#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace korcg::generator
{

/// Receives the generated files. A file whose content is already on disk is left untouched, so
/// that a new run of the generator rebuilds only what has changed.
class Output
{
public:
    /// Writes below `directory`; with `dryRun` only the names are collected.
    explicit Output(std::filesystem::path directory, bool dryRun = false);

    /// Adds one file. `name` is relative to the output directory, `content` is the text after the
    /// head comment, which names `source` as the description file(s) that it comes from. Long lines
    /// of C++ are broken.
    /// Throws std::runtime_error when the file cannot be written.
    void write(std::string_view name, std::string_view source, std::string_view content);

    const std::vector<std::string>& names() const { return m_names; }

private:
    std::filesystem::path m_directory;
    bool m_dryRun;
    std::vector<std::string> m_names;
};

} // namespace korcg::generator
