#include "TQX_codec.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

// The tool knows types through the metadata and the layout table alone, so that a new type needs
// no change in it. Only the simulated receiver fills blocks of its own.

namespace
{

std::set<std::string> typeNames()
{
    std::set<std::string> names;
    for (uint32_t recordType = 1; recordType <= 382; ++recordType)
        if (const Kor::MessageApi::TQX_TypeLayout* layout = TQX_layout(recordType))
            names.insert(layout->name);
    return names;
}

/// The identifiers in a text.
std::set<std::string> wordsOf(const std::string& text)
{
    std::set<std::string> words;
    std::string word;
    for (const char character : text + " ") {
        if (std::isalnum(static_cast<unsigned char>(character)) || character == '_') {
            word += character;
        } else {
            words.insert(word);
            word.clear();
        }
    }
    return words;
}

} // namespace

TEST(ToolSources, NameNoType)
{
    const std::set<std::string> names = typeNames();
    ASSERT_FALSE(names.empty());
    size_t files = 0;
    size_t simulated = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TQX_TOOL_SOURCES)) {
        const std::filesystem::path& path = entry.path();
        if (path.extension() != ".cpp" && path.extension() != ".h")
            continue;
        std::ostringstream content;
        content << std::ifstream(path).rdbuf();
        const bool mayName = path.parent_path().filename() == "simulate";
        for (const std::string& word : wordsOf(content.str())) {
            const bool isName = names.count(word) != 0 ||
                                (word.rfind("TQX_encode_", 0) == 0 && names.count(word.substr(11)));
            simulated += isName && mayName ? 1 : 0;
            EXPECT_TRUE(mayName || !isName) << path << " names " << word;
        }
        ++files;
    }
    EXPECT_GT(files, 20U);
    // The search does find names where there are some.
    EXPECT_GT(simulated, 0U);
}
