#include "GeneratorTesting.h"

#include "emit/Emitters.h"
#include "emit/reference/Html.h"
#include "model/Selection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

using namespace korcg::generator;

namespace
{

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

TEST(Reference, EveryTypeHasItsPageAndEveryLinkItsTarget)
{
    const Format& format = synthetic();
    const std::filesystem::path directory =
        std::filesystem::path(testing::TempDir()) / "korcg-reference";
    std::filesystem::remove_all(directory);
    Output output(directory);
    Errors errors;
    emitReference(format, select(format, {}, errors), output);
    for (const RecordType& type : format.types) {
        const std::string text = contentOf(directory / reference::pageName(type.name));
        for (const Field& field : type.fields) {
            EXPECT_NE(text.find("<td>" + reference::escaped(field.name) + "</td>"),
                      std::string::npos)
                << type.name << "::" << field.name;
        }
    }
    const std::regex link("href=\"([^\"#]*)(#([^\"]*))?\"");
    for (const std::string& name : output.names()) {
        const std::string text = contentOf(directory / name);
        for (std::sregex_iterator match(text.begin(), text.end(), link), end; match != end;
             ++match) {
            const std::string target = contentOf(directory / (*match)[1].str());
            EXPECT_FALSE(target.empty()) << name << ": " << (*match)[1];
            if ((*match)[3].matched) {
                EXPECT_NE(target.find("id=\"" + (*match)[3].str() + "\""), std::string::npos)
                    << name << ": " << (*match)[0];
            }
        }
    }
    std::filesystem::remove_all(directory);
}

TEST(Reference, EscapesWhatMeansSomethingInHtml)
{
    EXPECT_EQ(reference::escaped("a < b & \"c\" > d"), "a &lt; b &amp; &quot;c&quot; &gt; d");
}

} // namespace
