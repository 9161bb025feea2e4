#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

/// A folder in the folder of temporary files, removed with all that is in it. Its name is its own:
/// a test may run at the same time as itself, as of two builds.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        do {
            m_path = std::filesystem::temp_directory_path() /
                     ("tqx-test-" + std::to_string(std::random_device{}()));
        } while (!std::filesystem::create_directory(m_path));
    }
    ~TemporaryFolder()
    {
        std::error_code ignored; // a test that fails otherwise is to say how
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& getPath() const { return m_path; }
    std::string fileName(const std::string& name) const { return (m_path / name).string(); }

    /// Writes a file and returns its path.
    std::string write(const std::string& name, const std::vector<uint8_t>& bytes) const
    {
        std::ofstream file(m_path / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return fileName(name);
    }

    std::vector<uint8_t> read(const std::string& name) const
    {
        std::ifstream file(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};
