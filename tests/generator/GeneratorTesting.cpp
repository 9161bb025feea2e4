#include "GeneratorTesting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

using namespace korcg::generator;

std::string readTestFile(const std::string& name)
{
    const std::filesystem::path path = std::filesystem::path(GENERATOR_TEST_DIRECTORY) / name;
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        ADD_FAILURE() << "cannot read " << path;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> testFiles(const std::string& folder)
{
    std::vector<std::string> names;
    const std::filesystem::path path = std::filesystem::path(GENERATOR_TEST_DIRECTORY) / folder;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

const Field* findField(const RecordType& type, const std::string& name)
{
    for (const Field& field : type.fields) {
        if (field.name == name)
            return &field;
    }
    ADD_FAILURE() << type.name << " has no field " << name;
    return nullptr;
}

Format loadGood(const std::vector<Source>& sources)
{
    Errors errors;
    Format format = load(sources, errors);
    for (const std::string& line : errors.report())
        ADD_FAILURE() << line;
    return format;
}

std::string codeName(const Format& format, int code)
{
    return format.codeNames.at(static_cast<std::size_t>(-code - 1));
}

const Format& synthetic()
{
    static const Format format = loadGood({{"base.yaml", readTestFile("base.yaml")},
                                           {"synthetic.yaml", readTestFile("synthetic.yaml")}});
    return format;
}
