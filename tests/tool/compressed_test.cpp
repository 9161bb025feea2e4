#include "Packed.h"
#include "Tool.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <functional>

// Inputs that are compressed.

namespace
{

const char* const sample = "data/samples/random.tqx";

using Pack = std::function<Bytes(const Bytes&)>;

Bytes bytesOf(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

std::string textOf(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

std::string packed(const Pack& pack, const std::string& content)
{
    return textOf(pack(bytesOf(content)));
}

Bytes twoMembers(const Bytes& content)
{
    const auto middle = content.begin() + static_cast<std::ptrdiff_t>(content.size() / 2);
    Bytes all = gzipped(Bytes(content.begin(), middle));
    const Bytes second = gzipped(Bytes(middle, content.end()));
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

struct Case {
    const char* name;
    Pack pack;
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class Compressed : public testing::TestWithParam<Case>
{
};

/// A file, and its name as the program says it.
class File
{
public:
    explicit File(const std::string& content) : path(folder.filePath("log"))
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content.data(), static_cast<qint64>(content.size()));
    }

    const QTemporaryDir folder;
    const QString path;
};

} // namespace

TEST_P(Compressed, IsReadAsWhatItHolds)
{
    const std::string content = testData(sample);
    const std::string compressed = packed(GetParam().pack, content);
    const File file(compressed);
    const std::vector<QStringList> commands = {
        {"cut"}, {"info", "--json"}, {"dump", "--format", "jsonl"}, {"extract", "--mode", "rtcm3"}};
    for (const QStringList& command : commands) {
        const ToolRun plain = runTool(command + QStringList{"-"}, content);
        const ToolRun piped = runTool(command + QStringList{"-"}, compressed);
        EXPECT_EQ(piped.output, plain.output) << command.front().toStdString();
        EXPECT_EQ(piped.words, plain.words);
        EXPECT_EQ(piped.status, plain.status);
        if (command.front() != "info") {
            EXPECT_EQ(runTool(command + QStringList{file.path}).output, plain.output);
        }
    }
    const ToolRun run = runTool({"explain", "-@1460"}, content);
    EXPECT_EQ(runTool({"explain", "-@1460"}, compressed).output, run.output);
    EXPECT_NE(run.output.find("offset 1460"), std::string::npos) << run.output;

    const std::string lines = runTool({"dump", "--format", "jsonl", "--raw", sample}).output;
    EXPECT_EQ(runTool({"encode", "-"}, packed(GetParam().pack, lines)).output,
              runTool({"encode", "-"}, lines).output);
}

INSTANTIATE_TEST_SUITE_P(Tool, Compressed,
                         testing::Values(Case{"Gzip", gzipped}, Case{"Members", twoMembers},
                                         Case{"Zstandard", zstdFrame}),
                         [](const auto& instance) { return instance.param.name; });

namespace
{

struct DamageCase {
    const char* name;
    Pack pack;
    size_t kept;          ///< bytes of the log once more, compressed apart, that follow the log
    const char* junk;     ///< after these
    const char* expected; ///< what is said
};

void PrintTo(const DamageCase& value, std::ostream* stream)
{
    *stream << value.name;
}

class CompressedDamage : public testing::TestWithParam<DamageCase>
{
};

} // namespace

// All blocks before the damage come out, and those of the next file.
TEST_P(CompressedDamage, IsReportedWithItsPlace)
{
    const DamageCase& expected = GetParam();
    const std::string content = testData(sample);
    const std::string one = packed(expected.pack, content);
    const std::string intact = one + one.substr(0, expected.kept);
    const File file(intact + expected.junk);
    const std::string words = "tqx: " + file.path.toStdString() + ": " +
                              std::to_string(intact.size()) + ": " + expected.expected + "\n";

    const ToolRun run = runTool({"cut", "-q", file.path, sample});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, words);
    ASSERT_GE(run.output.size(), 2 * content.size());
    const size_t more = run.output.size() - 2 * content.size();
    EXPECT_EQ(more != 0, expected.kept > one.size() / 2);
    EXPECT_EQ(run.output, content + content.substr(0, more) + content);

    const ToolRun block = runTool({"explain", file.path + "@1460"});
    EXPECT_EQ(block.output.find(file.path.toStdString() + ", offset 1460: "), 0U) << block.output;
    EXPECT_EQ(block.words, words);
    EXPECT_EQ(block.status, 1);
    const ToolRun beyond = runTool({"explain", file.path + "@10000000"});
    EXPECT_EQ(beyond.status, 1);
    EXPECT_EQ(beyond.words, words);
    EXPECT_EQ(beyond.output, "");
}

INSTANTIATE_TEST_SUITE_P(
    Tool, CompressedDamage,
    testing::Values(DamageCase{"GzipCutOff", gzipped, 20000, "", "the gzip stream ends too early"},
                    DamageCase{"ZstandardCutOff", zstdFrame, 100, "",
                               "the zstd stream ends too early"},
                    DamageCase{"GzipAndOther", gzipped, 0, "more",
                               "its end is followed by bytes that are not a gzip stream"}),
    [](const auto& instance) { return instance.param.name; });
