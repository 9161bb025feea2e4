// Several streams as one, by time.

#include "TimedBlocks.h"
#include "tqx/log/merge/BlockMerge.h"
#include "tqx/log/source/MemorySource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <set>
#include <sstream>

namespace
{

using namespace tqx;

constexpr uint16_t week = 2400;

/// "10a" is a block of 10 s of a week that is called a, "~b" one without time. A "!" in front of it
/// is damage before it.
Bytes blocksOf(const std::string& words)
{
    Bytes bytes;
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        if (word.front() == '!') {
            bytes = bytes + text("junk");
            word.erase(0, 1);
        }
        if (word.empty())
            continue;
        const bool isTimed = word.front() != '~';
        const auto number = static_cast<uint16_t>(static_cast<unsigned char>(word.back()));
        const uint32_t tow = isTimed ? static_cast<uint32_t>(std::stoul(word)) * 1000 : unsetTow;
        bytes = bytes + timedBlock(number, tow, isTimed ? week : 0xffff);
    }
    return bytes;
}

std::string wordOf(const Block& block)
{
    const std::optional<GnssMillis> time = block.getTime();
    const std::string when =
        time ? std::to_string((*time - week * millisPerWeek) / 1000) : std::string("~");
    return when + static_cast<char>(block.getNumber());
}

struct Log {
    explicit Log(const std::string& words)
        : bytes(blocksOf(words)), source(bytes.data(), bytes.size()), stream(source)
    {
    }

    Bytes bytes;
    MemorySource source;
    BlockStream stream;
};

struct Merged {
    std::string words;
    uint64_t duplicates = 0;
    std::string stepsBack; ///< "input:word:seconds "
};

Merged merge(const std::vector<std::string>& logs)
{
    std::deque<Log> opened;
    std::vector<BlockStream*> inputs;
    for (const std::string& log : logs)
        inputs.push_back(&opened.emplace_back(log).stream);
    Merged merged;
    BlockMerge blocks(inputs);
    blocks.setStepBackListener([&](const BlockMerge::StepBack& step) {
        merged.stepsBack += std::to_string(step.input) + ':' + wordOf(step.block) + ':' +
                            std::to_string(step.millis / 1000) + ' ';
    });
    for (Block block = {}; blocks.next(block);)
        merged.words += (merged.words.empty() ? "" : " ") + wordOf(block);
    merged.duplicates = blocks.getDuplicates();
    return merged;
}

struct Case {
    const char* name;
    std::vector<std::string> logs;
    const char* words;
    uint64_t duplicates;
    const char* stepsBack = "";
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class MergeTest : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(MergeTest, GivesTheBlocksInTheirOrder)
{
    const Merged merged = merge(GetParam().logs);
    EXPECT_EQ(merged.words, GetParam().words);
    EXPECT_EQ(merged.duplicates, GetParam().duplicates);
    EXPECT_EQ(merged.stepsBack, GetParam().stepsBack);
}

INSTANTIATE_TEST_SUITE_P(
    Log, MergeTest,
    testing::Values(
        Case{"nothing", {"", ""}, "", 0}, Case{"one", {"1a ~x 2b"}, "1a ~x 2b", 0},
        Case{"after_each_other", {"3c 4d", "1a 2b"}, "1a 2b 3c 4d", 0},
        Case{"stable", {"1b 1a 2a", "1d 1c 2b"}, "1b 1a 1d 1c 2a 2b", 0},
        Case{"overlap", {"1a 1b 2a 3a", "2a 3a 4a", "3a 4a 4b"}, "1a 1b 2a 3a 4a 4b", 4},
        Case{"same_time_other_bytes", {"1a 2a", "1b 2a"}, "1a 1b 2a", 1},
        Case{"untimed_stay", {"1a ~x ~y 3c", "2b ~x 4d"}, "1a ~x ~y 2b ~x 3c 4d", 0},
        Case{"untimed_repeat", {"1a ~x ~x 2a", "1a ~x ~x ~x 2a"}, "1a ~x ~x ~x 2a", 4},
        Case{"untimed_at_the_start", {"1a 5b", "~x ~y 5c"}, "1a 5b ~x ~y 5c", 0},
        Case{"only_untimed", {"1a", "~x"}, "~x 1a", 0},
        Case{"disorder_of_an_epoch", {"100a 94n 101a", "100b 101b"}, "100a 94n 100b 101a 101b", 0},
        Case{"disorder_twice", {"100a 94n 101a", "94n 100a 94m"}, "94n 100a 94m 101a", 2},
        Case{"jump", {"1a 500b 501c", "300d"}, "1a 300d 500b 501c", 0},
        Case{"wrong_time", {"1a 500000b 2c 4e", "3d"}, "1a 500000b 2c 3d 4e", 0},
        Case{"wrong_time_in_between",
             {"1a 2b 500000c ~x 3d 4e", "3f"},
             "1a 2b 500000c ~x 3d 3f 4e",
             0},
        Case{"wrong_time_at_the_start", {"500000b ~x 2c", "1d"}, "1d 500000b ~x 2c", 0},
        Case{"jump_at_the_end", {"1a 500000b", "3d"}, "1a 3d 500000b", 0},
        Case{"runs_back",
             {"300a 301a 2a 3a 302a", "300a 302a"},
             "300a 301a 2a 3a 302a",
             2,
             "0:2a:299 "},
        Case{"damage", {"1a !2b", "!1c 3d !"}, "1a 1c 2b 3d", 0}),
    [](const auto& instance) { return instance.param.name; });

// Random parts of one log, in any order and overlapping, are the log again.
TEST(MergeRandom, PartsAreTheLog)
{
    std::mt19937 random(5);
    const auto below = [&](unsigned end) { return static_cast<size_t>(random() % end); };
    for (unsigned run = 0; run < 200; ++run) {
        std::vector<std::string> words;
        std::set<std::string> timed;
        for (unsigned time = 100; words.size() < 100; time += static_cast<unsigned>(below(3))) {
            const char name = static_cast<char>('a' + below(20));
            const unsigned own = below(4) == 0 ? time - static_cast<unsigned>(below(30)) : time;
            std::string word = below(5) == 0 ? std::string("~") : std::to_string(own);
            word += name;
            if (word.front() == '~' || timed.insert(word).second)
                words.push_back(word);
        }
        // A part begins at a time that no block before it has passed.
        std::vector<size_t> starts = {0};
        unsigned latest = 0;
        for (size_t i = 0; i < words.size(); ++i) {
            const unsigned time =
                words[i].front() == '~' ? 0 : static_cast<unsigned>(std::stoul(words[i]));
            if (time > latest && i != 0)
                starts.push_back(i);
            latest = std::max(latest, time);
        }
        std::vector<std::pair<size_t, size_t>> ranges = {{0, starts[starts.size() / 3]},
                                                         {starts[starts.size() / 4], words.size()}};
        for (unsigned i = 0; i < 3; ++i) {
            const size_t first = starts[below(static_cast<unsigned>(starts.size()))];
            ranges.emplace_back(first, first + below(static_cast<unsigned>(words.size() - first)));
        }
        std::shuffle(ranges.begin(), ranges.end(), random);
        std::vector<std::string> parts;
        for (const auto& [first, last] : ranges) {
            std::string part;
            for (size_t i = first; i < last; ++i)
                part += words[i] + ' ';
            parts.push_back(part);
        }
        std::string whole;
        for (const std::string& word : words)
            whole += (whole.empty() ? "" : " ") + word;
        const Merged merged = merge(parts);
        EXPECT_EQ(merged.words, whole);
        EXPECT_EQ(merged.stepsBack, "");
    }
}
