#include "TemporaryFolder.h"

#include "korcg_dbg.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>

namespace
{

struct Outcome {
    std::string output;
    int status;
};

/// Runs the probe with nothing but `environment` ("NAME='value' ...") set.
Outcome probe(const std::string& environment, const std::string& arguments)
{
    const std::string command = "env -i " + environment + " '" KORCG_PROBE "' " + arguments;
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        output += static_cast<char>(c);
    }
    const int status = pclose(pipe);
    return {output, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

const char* const unset = "18446744073709551615";

TEST(Settings, FollowTheEnvironment)
{
    struct Row {
        const char* environment;
        std::string settings; ///< part of what the probe prints
    };
    const Row rows[] = {
        {"", "levels=1 fields=106 start=0 stop=" + std::string(unset) +
                 " modules=(null) subModules=(null) stream=stdout"},
        {"KOR_TRACELEVEL=''", "levels=1 "},
        {"KOR_TRACELEVEL=12", "levels=25 "},
        {"KOR_TRACELEVEL=012", "levels=29 "},
        {"KOR_TRACELEVEL='FUNC,0'", "levels=7 "},
        {"KOR_TRACELEVEL=none", "levels=0 "},
        {"KOR_TRACELEVEL='none,1'", "levels=0 "},
        {"KOR_TRACELEVEL=all", "levels=255 "},
        {"KOR_TRACELEVEL='all none'", "levels=255 "},
        {"KOR_TRACEINFO=TIME", "fields=128 "},
        {"KOR_TRACEINFO=''", "fields=0 "},
        {"KOR_TRACEINFO='MODULE SUBMOD FUNC FILE LINE LEVEL TIME THREAD'", "fields=507 "},
        {"KOR_TRACEINFO=all", "fields=511 "},
        {"KOR_STARTTIME=5 KOR_STOPTIME=7", "start=5000 stop=7000 "},
        {"KOR_STARTTIME=-5 KOR_STOPTIME=0", "start=0 stop=0 "},
        {"KOR_STARTTIME='' KOR_STOPTIME=''", std::string("start=0 stop=") + unset},
        {"KOR_STARTTIME=4000000000 KOR_STOPTIME=9223372036854775807",
         std::string("start=4000000000000 stop=") + unset},
        {"KOR_MODULES='A,B' KOR_SUBMODULES=C", "modules=A,B subModules=C "},
        {"KOR_LOGFILE=/nonexistent/log", "stream=stdout"},
        {"OTHER_LOG=/dev/null", "stream=stdout"},
    };
    for (const Row& row : rows) {
        const Outcome outcome = probe(row.environment, "settings");
        EXPECT_NE(outcome.output.find(row.settings), std::string::npos)
            << row.environment << " gives " << outcome.output;
        EXPECT_EQ(outcome.status, 0) << row.environment;
    }
    EXPECT_NE(probe("OTHER_LOG=/dev/null", "settings OTHER_LOG").output.find("stream=file"),
              std::string::npos);
    EXPECT_NE(probe("KOR_LOGFILE=/dev/null", "settings OTHER_LOG").output.find("stream=stdout"),
              std::string::npos);
}

TEST(Settings, TimeThatIsNoIntegerEndsTheProcess)
{
    for (const char* environment : {"KOR_STARTTIME=soon", "KOR_STOPTIME='5 s'"}) {
        const Outcome outcome = probe(environment, "settings");
        EXPECT_EQ(outcome.output, "dbg_Init failed : unknown type.") << environment;
        EXPECT_EQ(outcome.status, 1) << environment;
    }
}

TEST(CheckModule, AsksBothFilters)
{
    struct Row {
        const char* environment;
        const char* names; ///< module and class
        const char* answers;
    };
    const Row rows[] = {
        {"", "Mod Class", "-1 1\n"},
        {"KOR_MODULES=all", "Mod Class", "-1 1\n"},
        {"KOR_MODULES=none", "Mod Class", "-1 0\n"},
        {"KOR_MODULES=none", "no Class", "-1 0\n"},
        {"KOR_MODULES='Mod,Other'", "Mod Class", "-1 1\n"},
        {"KOR_MODULES='Mod,Other'", "Another Class", "-1 0\n"},
        {"KOR_MODULES=Mo", "Mod Class", "-1 0\n"},
        {"KOR_MODULES=Mod KOR_SUBMODULES=none", "Mod Class", "-1 0\n"},
        {"KOR_MODULES=Mod KOR_SUBMODULES='Klass,Class'", "Mod Class", "-1 1\n"},
        {"KOR_SUBMODULES=Klass", "Mod Class", "-1 0\n"},
        {"KOR_SUBMODULES=''", "Mod Class", "-1 0\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(probe(row.environment, std::string("check ") + row.names).output, row.answers)
            << row.environment << " " << row.names;
    }
}

TEST(Trace, WritesTheFieldsAskedFor)
{
    struct Row {
        const char* environment;
        const char* output;
    };
    const Row rows[] = {
        {"KOR_TRACEINFO=-", "[level 1]\nlines=1\n"},
        {"KOR_TRACEINFO=- KOR_TRACELEVEL=none", "lines=0\n"},
        {"KOR_TRACEINFO=- KOR_TRACELEVEL=2", "[level 1]\n[level 16]\nlines=2\n"},
        {"KOR_TRACEINFO=LEVEL KOR_TRACELEVEL=all",
         " Lv:    [level 1]\n Lv:FUNC[level 2]\n Lv:   0[level 4]\n Lv:   1[level 8]\n"
         " Lv:   2[level 16]\n Lv:    [level 64]\nlines=6\n"},
        {"", " Lv:          Class Ln:  42                 func[level 1]\nlines=1\n"},
        {"KOR_TRACEINFO='FILE LINE MODULE'",
         "        Mod Ln:  42             file.cpp[level 1]\nlines=1\n"},
        {"KOR_TRACEINFO=- KOR_STARTTIME=9000000000", "lines=0\n"},
        {"KOR_TRACEINFO=- KOR_STARTTIME=1000000000 KOR_STOPTIME=9000000000",
         "[level 1]\nlines=1\n"},
        {"KOR_TRACEINFO=- KOR_STOPTIME=1000000000", "lines=0\n"},
    };
    for (const Row& row : rows) {
        const Outcome outcome = probe(row.environment, "trace");
        EXPECT_EQ(outcome.output, row.output) << row.environment;
        EXPECT_EQ(outcome.status, 0) << row.environment;
    }
}

TEST(Trace, TimeCountsMillisecondsSinceTheEpoch)
{
    using namespace std::chrono;
    const auto now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    const std::string output = probe("KOR_TRACEINFO='TIME THREAD'", "trace").output;
    EXPECT_NEAR(static_cast<double>(std::stoll(output)), static_cast<double>(now), 60000.0);
    EXPECT_EQ(output.find(" Thd:"), std::to_string(now).size());
    EXPECT_EQ(output.find("[level 1]"), std::to_string(now).size() + 5 + 16);
}

TEST(Trace, AppendsToTheLogFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.fileName("log");
    std::ofstream(path) << "before\n";
    EXPECT_EQ(probe("KOR_TRACEINFO=- KOR_LOGFILE='" + path + "'", "trace").output, "lines=1\n");
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    EXPECT_EQ(content.str(), "before\n[level 1]\n");
}

TEST(Assertion, ReportsThenEndsTheProcessOrReturns)
{
    struct Row {
        const char* environment;
        const char* command;
        const char* output;
        int status;
    };
    const Row rows[] = {
        {"KOR_TRACEINFO=LEVEL", "assert", " ASRT:[broken]\nAbnormal program termination...\n", 1},
        {"KOR_TRACEINFO=- KOR_TRACELEVEL=none KOR_STOPTIME=0", "assert",
         "[broken]\nAbnormal program termination...\n", 1},
        {"KOR_TRACEINFO=LEVEL", "assert-returns", " ASRT:[broken]\nwent on, initialised 2 times\n",
         0},
        {"", "assert-first", "", 1},
    };
    for (const Row& row : rows) {
        const Outcome outcome = probe(row.environment, row.command);
        EXPECT_EQ(outcome.output, row.output) << row.environment << " " << row.command;
        EXPECT_EQ(outcome.status, row.status) << row.environment << " " << row.command;
    }
}

TEST(CallBacks, TakeOverLookUpLockAndReport)
{
    const Outcome outcome = probe("KOR_TRACEINFO=all", "callbacks");
    EXPECT_EQ(outcome.output, "<stdout><lock> Ln:  42[level 1]\n<unlock>"
                              "<lock> Ln:  42[level 8]\n<unlock>"
                              "<lock> Ln:  42[broken]\n<unlock>< Ln:  42[broken]>"
                              "<lock>Abnormal program termination...\n<unlock>");
    EXPECT_EQ(outcome.status, 1);
}

} // namespace
