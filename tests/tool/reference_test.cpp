#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <regex>
#include <set>

// What help says about the program is what its arguments are parsed by; manual page and completion
// must not lack any of it.

namespace
{

using Words = std::set<std::string>;

Words matchesOf(const std::string& text, const char* pattern)
{
    const std::regex expression(pattern);
    Words words;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match)
        words.insert((*match)[1]);
    return words;
}

Words commands()
{
    const std::string help = runTool({"--help"}).output;
    return matchesOf(help.substr(help.find("Commands:")), "\n  ([a-z]+) ");
}

/// The options that the help of a command lists, short and long ones.
Words optionsOf(const std::string& command)
{
    const std::string help = runTool({"help", command.c_str()}).output;
    Words words;
    for (const std::string& names : matchesOf(help, "\n  (-[-a-z,]*)")) {
        for (const std::string& name : matchesOf(names + ",", "(-[-a-z]+),"))
            words.insert(name);
    }
    return words;
}

/// What bash offers in place of the last word of a line.
Words completions(const std::string& line)
{
    QProcess bash;
    bash.start("bash", {"--norc", "-c",
                        R"(tqx() { "$TQX" "$@"; }; source <(tqx help --completion)
                        read -ra COMP_WORDS; COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tqx
                        printf '%s\n' "${COMPREPLY[@]}")"});
    bash.write((line + "\n").c_str());
    bash.closeWriteChannel();
    EXPECT_TRUE(bash.waitForFinished());
    EXPECT_EQ(bash.readAllStandardError().toStdString(), "");
    const std::vector<std::string> lines = linesOf(bash.readAllStandardOutput().toStdString());
    return {lines.begin(), lines.end()};
}

class Reference : public testing::Test
{
protected:
    void SetUp() override { qputenv("TQX", TQX_TOOL); }
};

} // namespace

TEST_F(Reference, CompletionOffersWhatHelpLists)
{
    const Words all = commands();
    EXPECT_GT(all.size(), 5U);
    for (const std::string& command : all) {
        EXPECT_EQ(completions("tqx " + command.substr(0, command.size() - 1)).count(command), 1U);
        const Words options = optionsOf(command);
        EXPECT_EQ(options.count("--help"), 1U) << command;
        for (const std::string& option : options) {
            EXPECT_EQ(completions("tqx " + command + " " + option).count(option), 1U)
                << command << " " << option;
        }
    }
}

TEST_F(Reference, CompletionKnowsValues)
{
    EXPECT_EQ(completions("tqx dump --format js"), Words{"jsonl"});
    EXPECT_EQ(completions("tqx dump --type MeasEpoch2,GPSNa"), Words{"MeasEpoch2,GPSNav"});
    EXPECT_EQ(completions("tqx dump --type AGC"), Words{""});
    EXPECT_EQ(completions("tqx types AGCSt"), Words{"AGCState"});
    EXPECT_EQ(completions("tqx cut --type ReceiverStatus2 --where AGCState.Front"),
              (Words{"AGCState.FrontEndID", "AGCState.FrontEnd_Code"}));
    EXPECT_EQ(completions("tqx dump --type = MeasEpoch2 --field TOW,Type1.SV"),
              Words{"TOW,Type1.SVID"});
    EXPECT_EQ(completions("tqx error TQX_ERR_EO"), Words{"TQX_ERR_EOF"});
    EXPECT_EQ(completions("tqx help enc"), Words{"encode"});
    const std::string golden = TQX_TESTS_DIR "/tool/golden/";
    EXPECT_EQ(completions("tqx info " + golden + "help.tx"), Words{golden + "help.txt"});
}

TEST_F(Reference, ManualPageDescribesWhatHelpLists)
{
    std::string page = runTool({"help", "--man"}).output;
    for (size_t at = page.find('\\'); at != std::string::npos; at = page.find('\\', at + 1)) {
        if (page.compare(at, 2, "\\-") == 0)
            page.erase(at, 1);
    }
    for (const std::string& command : commands()) {
        const size_t start = page.find(".SS " + command + "\n");
        ASSERT_NE(start, std::string::npos) << command;
        const std::string section = page.substr(start, page.find(".SS ", start + 1) - start);
        for (const std::string& option : optionsOf(command)) {
            EXPECT_NE(section.find("fB" + option + "\\fR"), std::string::npos)
                << command << " " << option;
        }
    }
}
