#include "GeneratorTesting.h"
#include "TemporaryFolder.h"

#include "emit/Emitters.h"
#include "emit/reference/Html.h"
#include "model/Selection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>

using namespace korcg::generator;

namespace
{

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// The reference of the synthetic format, in a folder that is removed at the end.
class Reference : public testing::Test
{
protected:
    Reference() : m_output(m_folder.getPath())
    {
        Errors errors;
        emitReference(synthetic(), select(synthetic(), {}, errors), m_output);
    }

    std::string content(const std::string& name) const
    {
        return contentOf(m_folder.getPath() / name);
    }

    TemporaryFolder m_folder;
    Output m_output;
};

TEST_F(Reference, EveryTypeHasItsPageAndEveryLinkItsTarget)
{
    const std::string data = content("search-data.js");
    for (const RecordType& type : synthetic().types) {
        const std::string text = content(reference::pageName(type.name));
        for (const Field& field : type.fields) {
            EXPECT_NE(text.find("<td>" + reference::escaped(field.name) + "</td>"),
                      std::string::npos)
                << type.name << "::" << field.name;
            const std::string target = "\"type-" + type.name + ".html#f-";
            EXPECT_NE(data.find(target), std::string::npos) << type.name;
        }
    }
    const std::regex link("(?:href|src)=\"([^\"#]*)(#([^\"]*))?\"");
    for (const std::string& name : m_output.names()) {
        const std::string text = content(name);
        for (std::sregex_iterator match(text.begin(), text.end(), link), end; match != end;
             ++match) {
            const std::string page = (*match)[1].str();
            const std::string target = page.empty() ? text : content(page);
            EXPECT_FALSE(target.empty()) << name << ": " << (*match)[1];
            if ((*match)[3].matched) {
                EXPECT_NE(target.find("id=\"" + (*match)[3].str() + "\""), std::string::npos)
                    << name << ": " << (*match)[0];
            }
        }
    }
}

TEST_F(Reference, PlacesOfTheSearchAreInThePages)
{
    const std::string data = content("search-data.js");
    const std::regex entry(R"re(^\["([^"]*)","([^"#]*)(?:#([^"]*))?",([012]),)re");
    int counts[3] = {};
    std::istringstream lines(data);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (!std::regex_search(line, match, entry))
            continue;
        ++counts[std::stoi(match[4])];
        const std::string text = content(match[2]);
        EXPECT_FALSE(text.empty()) << line;
        EXPECT_TRUE(!match[3].matched ||
                    text.find("id=\"" + match[3].str() + "\"") != std::string::npos)
            << line;
    }
    EXPECT_EQ(counts[0], static_cast<int>(synthetic().types.size()));
    EXPECT_GT(counts[1], counts[0]);
    EXPECT_GT(counts[2], 2);
}

TEST_F(Reference, SaysWhatTheDescriptionImplies)
{
    struct Case {
        const char* page;
        const char* text;
    };
    const Case cases[] = {
        {"type-Grid.html", "<dt>Block number</dt><dd>5001</dd>"},
        {"type-Grid.html", "18 bytes + N1&thinsp;&times;&thinsp;SB1Length + "
                           "N2&thinsp;&times;&thinsp;the size of a Note<"},
        {"type-Cell.html", "2 bytes + M&thinsp;&times;&thinsp;SB2Length"},
        {"type-Cell.html", "Part of <a href=\"type-Grid.html#f-Cells\">"},
        {"type-Carrier.html", "16 bytes + the fields that depend on Kind"},
        {"type-Payload.html", "18 bytes + the fields that depend on Mode"},
        {"type-Growing.html", "<dd>22 bytes</dd>"}, // of all revisions, by padding
        {"type-Growing.html", "<td data-label=\"unit\">B <small>byte</small></td>"},
        {"type-Growing.html",
         "<td>18</td><td>Second</td><td>u8</td><td data-label=\"unit\"></td><td "
         "data-label=\"scale\"></td>"
         "<td data-label=\"digits\"></td><td data-label=\"since revision\">1</td>"},
        {"type-Growing.html",
         "<td data-label=\"unit\">s <small>second</small></td><td data-label=\"scale\">0.001</td>"},
        {"type-Note2.html", "not available: -32768"},
        {"index.html", "Holds First, Jumps, Second, Third"},
        {"names.html", "Used by <a href=\"type-Cell.html#f-Row_Number\">"},
    };
    for (const Case& c : cases)
        EXPECT_NE(content(c.page).find(c.text), std::string::npos) << c.page << ": " << c.text;
}

TEST(ReferenceText, EscapesWhatMeansSomethingInHtml)
{
    EXPECT_EQ(reference::escaped("a < b & \"c\" > d"), "a &lt; b &amp; &quot;c&quot; &gt; d");
}

TEST(ReferenceText, EscapesWhatMeansSomethingInScripts)
{
    EXPECT_EQ(reference::scriptText("a\\b \"c\" </script>"),
              "\"a\\\\b \\\"c\\\" \\u003c/script>\"");
}

} // namespace
