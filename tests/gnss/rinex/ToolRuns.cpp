#include "ToolRuns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

int ToolRuns::run(const std::string& arguments) const
{
    const std::string command =
        "cd '" + m_folder.getPath().string() + "' && '" TQX_TOOL "' " + arguments + " >out 2>err";
    const int result = std::system(command.c_str());
    return result < 0 || result > 255 ? result >> 8 & 255 : result;
}

std::string ToolRuns::expectRun(const std::string& arguments) const
{
    EXPECT_EQ(run(arguments), 0) << arguments << "\n" << read("err");
    return read("out");
}

std::string ToolRuns::read(const std::string& name) const
{
    std::ifstream file(m_folder.getPath() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void ToolRuns::write(const std::string& name, const std::string& content) const
{
    std::ofstream(m_folder.getPath() / name, std::ios::binary) << content;
}

std::vector<std::string> ToolRuns::list(const std::string& folder) const
{
    std::vector<std::string> names;
    if (fs::exists(m_folder.getPath() / folder)) {
        for (const auto& entry : fs::directory_iterator(m_folder.getPath() / folder))
            names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ToolRuns::readOnly(const std::string& folder, const std::string& ending) const
{
    std::vector<std::string> found;
    for (const std::string& name : list(folder)) {
        if (name.size() >= ending.size() &&
            name.compare(name.size() - ending.size(), ending.size(), ending) == 0)
            found.push_back(name);
    }
    EXPECT_EQ(found.size(), 1U) << folder << " " << ending;
    return found.size() == 1 ? read(folder + "/" + found[0]) : "";
}
