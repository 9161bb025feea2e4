#pragma once

#include "StreamBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A folder of the running test, removed with all that is in it.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        m_path = std::filesystem::temp_directory_path() /
                 (std::string("tqx-log-") + test->test_suite_name() + "-" + test->name());
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string fileName(const std::string& name) const { return (m_path / name).string(); }

    /// Writes a file and returns its path.
    std::string write(const std::string& name, const Bytes& bytes) const
    {
        std::ofstream file(m_path / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return fileName(name);
    }

    Bytes read(const std::string& name) const
    {
        std::ifstream file(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};
