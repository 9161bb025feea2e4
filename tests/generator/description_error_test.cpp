#include "GeneratorTesting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

using namespace korcg::generator;

namespace
{

/// A bad description carries its errors as comments: "#! message" at the end of the line that the
/// message names. Those whose name starts with "alone_" do without base.yaml.
std::vector<std::string> expectedErrors(const Source& source)
{
    constexpr std::string_view mark = "#! ";
    std::vector<std::string> expected;
    std::istringstream lines(source.text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        for (std::size_t at = line.find(mark); at != std::string::npos;) {
            const std::size_t next = line.find(mark, at + mark.size());
            std::string message = line.substr(at + mark.size(), next - at - mark.size());
            message.erase(message.find_last_not_of(' ') + 1);
            expected.push_back(source.file + ':' + std::to_string(number) + ": " + message);
            at = next;
        }
    }
    return expected;
}

class BadDescription : public testing::TestWithParam<std::string>
{
};

TEST_P(BadDescription, ReportsEachErrorWhereItIs)
{
    const Source bad{GetParam(), readTestFile("bad/" + GetParam())};
    std::vector<std::string> expected = expectedErrors(bad);
    ASSERT_FALSE(expected.empty());

    std::vector<Source> sources = {bad};
    if (bad.file.rfind("alone_", 0) != 0)
        sources.insert(sources.begin(), {"base.yaml", readTestFile("base.yaml")});
    Errors errors;
    loadWithHistory(sources, errors, {});

    std::vector<std::string> reported = errors.report();
    std::sort(expected.begin(), expected.end());
    std::sort(reported.begin(), reported.end());
    EXPECT_EQ(expected, reported);
}

INSTANTIATE_TEST_SUITE_P(All, BadDescription, testing::ValuesIn(testFiles("bad")),
                         [](const auto& description) {
                             return std::filesystem::path(description.param).stem().string();
                         });

TEST(Sources, UnreadableDirectoriesAndMissingFormatsAreErrors)
{
    Errors errors;
    EXPECT_TRUE(readSources("no/such/directory", errors).empty());
    load({}, errors);
    const std::vector<std::string> report = errors.report();
    ASSERT_EQ(2u, report.size());
    EXPECT_EQ("no file names the format ('format')", report[0]);
    EXPECT_EQ(0u, report[1].find("no/such/directory: cannot be read: "));
}

} // namespace
