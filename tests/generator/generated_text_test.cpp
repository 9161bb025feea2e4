// What people see of the generated sources: comments of the getters, and how lines are laid out.

#include "GeneratorTesting.h"
#include "TemporaryFolder.h"

#include "emit/Emitters.h"
#include "emit/LongLines.h"
#include "model/Names.h"
#include "model/Selection.h"
#include "model/Values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <sstream>

using namespace korcg::generator;

namespace
{

/// The sources of the whole format, generated once.
class GeneratedText : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        Errors errors;
        s_format = load(readSources(DESCRIPTION_DIRECTORY, errors), errors);
        ASSERT_EQ(errors.report(), std::vector<std::string>());
        s_folder = std::make_unique<TemporaryFolder>();
        Output output(s_folder->getPath());
        const Selection all = select(s_format, {}, errors);
        emitCodec(s_format, all, output);
        emitMessages(s_format, all, output);
        emitFacts(s_format, all, output);
        emitMetadata(all, output);
        s_names = output.names();
    }

    static void TearDownTestSuite() { s_folder.reset(); }

    static std::vector<std::string> linesOf(const std::string& name)
    {
        std::ifstream stream(s_folder->getPath() / name);
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

    /// The comment above each function that `name` declares, by its declaration; all in one line.
    static std::map<std::string, std::string> commentsOf(const std::string& name)
    {
        static const std::regex function(R"( +[^/:(]*\b((?:get|has)\w+\([^)]*\)( const)?).*)");
        std::map<std::string, std::string> comments;
        std::string comment;
        for (const std::string& line : linesOf(name)) {
            std::smatch match;
            const std::size_t mark = line.find("/// ");
            if (mark != std::string::npos && line.find_first_not_of(' ') == mark) {
                comment += (comment.empty() ? "" : " ") + line.substr(mark + 4);
            } else {
                if (std::regex_match(line, match, function) && line.find("return") == npos)
                    comments.emplace(match[1], comment);
                comment.clear();
            }
        }
        return comments;
    }

    static constexpr std::size_t npos = std::string::npos;
    static Format s_format;
    static std::unique_ptr<TemporaryFolder> s_folder;
    static std::vector<std::string> s_names;
};

Format GeneratedText::s_format;
std::unique_ptr<TemporaryFolder> GeneratedText::s_folder;
std::vector<std::string> GeneratedText::s_names;

TEST_F(GeneratedText, KeepsToHundredColumnsAndOneIndentation)
{
    for (const std::string& name : s_names) {
        std::size_t number = 0;
        for (const std::string& line : linesOf(name)) {
            ++number;
            const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
            const bool isInitialiser = indent == 6; // after "    : "
            EXPECT_LE(line.size(), 100U) << name << ':' << number;
            EXPECT_TRUE(indent % 4 == 0 || isInitialiser || line.find("TQX_layout(") == indent)
                << name << ':' << number << ": " << line;
            EXPECT_EQ(line.find('\t'), npos) << name << ':' << number;
        }
    }
}

TEST_F(GeneratedText, EveryGetterSaysWhatItReturns)
{
    std::size_t getters = 0;
    for (const RecordType& type : s_format.types) {
        if (!type.hasMessage)
            continue;
        const auto comments = commentsOf("TQX_" + type.name + "_Message.h");
        getters += comments.size();
        for (const auto& [getter, comment] : comments) {
            if (getter.rfind("hasRepresentation", 0) != 0) {
                EXPECT_FALSE(comment.empty()) << type.name << "::" << getter;
            }
        }
    }
    EXPECT_GT(getters, 6000U);
}

/// What the comment of the getter of a single value, or of an element, has to contain.
std::vector<std::string> factsOf(const Format& format, const RecordType& type, const Field& field)
{
    std::vector<std::string> facts;
    const bool isPacked =
        std::any_of(type.fields.begin(), type.fields.end(), [&](const Field& part) {
            return part.kind == FieldKind::Bits &&
                   &type.fields[static_cast<std::size_t>(part.parent)] == &field;
        });
    if (field.presence != Presence::Always && !field.isRepeated)
        facts.emplace_back("absent: throws MessageApiEvent");
    if (field.isRepeated)
        facts.emplace_back("throws MessageApiEvent unless `index` is below getNumberOf");
    if (isPacked) {
        facts.emplace_back("acked from ");
        return facts;
    }
    if (field.role == Role::Reserved || field.isPadding || field.type == Scalar::Char)
        return facts;
    facts.emplace_back(field.unit);
    if (field.doNotUse)
        facts.emplace_back(" when not available");
    const auto table = format.symbols.find(field.symbols);
    if (table != format.symbols.end()) {
        const SymbolicValue& first = table->second.values.front();
        facts.emplace_back(std::to_string(first.value) + ' ' + first.name);
    } else if (isInteger(field.type) && !field.bitMask) {
        facts.emplace_back(" to ");
    }
    return facts;
}

TEST_F(GeneratedText, GettersHaveUnitRangeNamesAndAbsence)
{
    for (const RecordType& type : s_format.types) {
        if (!type.hasMessage)
            continue;
        const auto comments = commentsOf("TQX_" + type.name + "_Message.h");
        for (const Field& field : type.fields) {
            if (field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded)
                continue;
            const std::string getter = "get" + identifier(field.name) +
                                       (field.isRepeated ? "(unsigned int index)" : "()") +
                                       " const";
            ASSERT_EQ(comments.count(getter), 1U) << type.name << "::" << getter;
            const std::string& comment = comments.at(getter);
            EXPECT_EQ(comment.find("amed values"), npos) << type.name << "::" << getter;
            for (const std::string& fact : factsOf(s_format, type, field)) {
                EXPECT_NE(comment.find(fact), npos)
                    << type.name << "::" << getter << " lacks '" << fact << "': " << comment;
            }
        }
    }
}

TEST_F(GeneratedText, LengthsSayWhatTheyMeasure)
{
    const std::pair<const char*, const char*> rows[] = {
        {"getSB1Length() const", "Length of a SatInfo sub-block; unit byte; 0 to 255."},
        {"getSB2Length() const",
         "Length of a StateInfo sub-block in ChannelSatInfo; unit byte; 0 to 255."},
    };
    const auto comments = commentsOf("TQX_ChannelStatus_Message.h");
    for (const auto& [getter, comment] : rows)
        EXPECT_EQ(comments.at(getter), comment);
}

TEST(LongLines, AreBrokenWhereItMeansNothing)
{
    const std::string a60(60, 'a');
    const std::string b60(60, 'b');
    const std::pair<std::string, std::string> rows[] = {
        {"short, line\n", "short, line\n"},
        {"    " + a60 + ", " + b60 + ", " + b60 + "\n",
         "    " + a60 + ",\n        " + b60 + ",\n        " + b60 + "\n"},
        {"  /// " + a60 + ' ' + b60 + "\n", "  /// " + a60 + "\n  /// " + b60 + "\n"},
        {"#define A (" + a60 + ", " + b60 + ")\n", "#define A (" + a60 + ", " + b60 + ")\n"},
        {"{\"" + a60 + ", \\\"(" + b60 + "\"},\n",
         "{\"" + a60 + ", \"\n    \"\\\"(" + b60 + "\"},\n"},
        {"T" + a60 + "* " + b60 + "()\n", "T" + a60 + "*\n" + b60 + "()\n"},
    };
    for (const auto& [line, broken] : rows)
        EXPECT_EQ(wrapLongLines(line), broken);
}

} // namespace
