// Sources of bytes: files, plain and compressed, damaged and cut off, and several of them as one.

#include "Packed.h"
#include "TemporaryFolder.h"
#include "tqx/log/DataError.h"
#include "tqx/log/source/CompressedAccess.h"
#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/FileAccess.h"
#include "tqx/log/source/JoinedSource.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/source/OpenSource.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

/// What a source gives in pieces of a size, and what it throws in the end.
struct Outcome {
    Bytes content;
    std::string error;
};

Outcome readAll(tqx::ByteSource& source, size_t piece)
{
    Outcome outcome;
    Bytes buffer(piece);
    try {
        while (const size_t count = source.read(buffer.data(), buffer.size())) {
            outcome.content.insert(outcome.content.end(), buffer.begin(),
                                   buffer.begin() + static_cast<std::ptrdiff_t>(count));
        }
    } catch (const tqx::SourceError& error) {
        outcome.error = error.what();
    }
    return outcome;
}

Outcome readMemory(const Bytes& bytes, size_t piece)
{
    const auto source =
        tqx::decompressed(std::make_unique<tqx::MemorySource>(bytes.data(), bytes.size(), "log"));
    return readAll(*source, piece);
}

/// Compressible, but not to nothing.
Bytes someContent(size_t size)
{
    std::mt19937 random(7);
    Bytes content(size);
    for (uint8_t& byte : content)
        byte = static_cast<uint8_t>(random() % 11 * (random() % 3));
    return content;
}

TEST(Sources, AreRecognisedByTheirFirstBytes)
{
    const Bytes content = someContent(200000);
    const Bytes first = cut(content, 70000);
    const Bytes second(content.begin() + 70000, content.end());
    const Bytes skippable = {0x53, 0x2a, 0x4d, 0x18, 3, 0, 0, 0, 1, 2, 3};
    const struct {
        const char* name;
        Bytes bytes;
        Bytes expected;
    } rows[] = {
        {"plain", content, content},
        {"empty", {}, {}},
        {"one byte of a signature", {0x1f}, {0x1f}},
        {"three bytes of a signature", {0x28, 0xb5, 0x2f}, {0x28, 0xb5, 0x2f}},
        {"a signature that turns out wrong", {0x1f, 0x8b, 7, 9}, {0x1f, 0x8b, 7, 9}},
        {"gzip", gzipped(content), content},
        {"gzip of nothing", gzipped({}), {}},
        {"gzip members", gzipped(first) + gzipped({}) + gzipped(second), content},
        {"padded gzip", gzipped(content) + Bytes(1000, 0), content},
        {"zstd", zstdFrame(content), content},
        {"zstd frames", zstdFrame(first) + skippable + zstdFrame(second), content},
        {"zstd after a skipped frame", skippable + zstdFrame(content), content},
    };
    for (const auto& row : rows) {
        for (const size_t piece : {size_t{1000}, size_t{1} << 20}) {
            SCOPED_TRACE(row.name);
            const Outcome outcome = readMemory(row.bytes, piece);
            EXPECT_TRUE(outcome.content == row.expected);
            EXPECT_EQ(outcome.error, "");
        }
    }
}

TEST(Sources, DamageIsReportedAfterAllBytesBeforeIt)
{
    const Bytes content = someContent(500000);
    const Bytes gzip = gzipped(content);
    const Bytes zstd = zstdFrame(content);
    const struct {
        const char* name;
        Bytes bytes;
        size_t least; ///< bytes of content that must come out
        std::string error;
    } rows[] = {
        {"gzip cut", cut(gzip, gzip.size() / 2), 200000,
         std::to_string(gzip.size() / 2) + ": the gzip stream ends too early"},
        {"gzip without its last byte", cut(gzip, gzip.size() - 1), 500000,
         std::to_string(gzip.size() - 1) + ": the gzip stream ends too early"},
        {"second member cut", gzip + cut(gzip, 15), 500000,
         std::to_string(gzip.size() + 15) + ": the gzip stream ends too early"},
        {"gzip checksum", flipped(gzip, gzip.size() - 8), 500000, "the gzip stream is damaged"},
        {"gzip middle", flipped(gzip, gzip.size() / 2), 200000, "the gzip stream is damaged"},
        {"after gzip", gzip + text("x"), 500000,
         std::to_string(gzip.size()) + ": its end is followed by bytes that are not a gzip stream"},
        {"after padding", gzip + Bytes{0, 1}, 500000,
         std::to_string(gzip.size() + 1) +
             ": its end is followed by bytes that are not a gzip stream"},
        // zstd gives whole blocks of 128 kB.
        {"zstd cut", cut(zstd, zstd.size() * 3 / 4), 262144,
         std::to_string(zstd.size() * 3 / 4) + ": the zstd stream ends too early"},
        {"after zstd", zstd + text("not a frame"), 500000, "the zstd stream is damaged"},
    };
    for (const auto& row : rows) {
        for (const size_t piece : {size_t{999}, size_t{1} << 20}) {
            SCOPED_TRACE(row.name);
            const Outcome outcome = readMemory(row.bytes, piece);
            EXPECT_GE(outcome.content.size(), row.least);
            if (std::string(row.name) != "gzip middle") {
                // What follows a flipped bit may come out wrong before that shows.
                ASSERT_LE(outcome.content.size(), content.size());
                EXPECT_TRUE(
                    std::equal(outcome.content.begin(), outcome.content.end(), content.begin()));
            }
            EXPECT_EQ(outcome.error.rfind("log: ", 0), 0U) << outcome.error;
            EXPECT_NE(outcome.error.find(row.error), std::string::npos) << outcome.error;
        }
    }
}

TEST(Sources, SeveralFollowEachOtherAndBadOnesAreLeftOut)
{
    const TemporaryFolder folder;
    const Bytes content = someContent(5000);
    const Bytes packed = gzipped(content);
    const std::vector<std::string> paths = {
        folder.write("a", text("first")), folder.fileName("missing"),
        folder.write("cut.gz", cut(packed, packed.size() - 4)), folder.write("empty", {}),
        folder.write("z", zstdFrame(text("last")))};
    std::vector<std::string> failures;
    tqx::JoinedSource source(
        paths, [&](const tqx::SourceError& error) { failures.emplace_back(error.what()); });
    EXPECT_TRUE(readAll(source, 64).content == text("first") + content + text("last"));
    ASSERT_EQ(failures.size(), 2U);
    EXPECT_EQ(failures[0], paths[1] + ": No such file or directory");
    EXPECT_EQ(failures[1], paths[2] + ": " + std::to_string(packed.size() - 4) +
                               ": the gzip stream ends too early");
    EXPECT_TRUE(source.hasFailed());
    const struct {
        uint64_t offset;
        size_t path;
        uint64_t inFile;
    } places[] = {{0, 0, 0}, {4, 0, 4}, {5, 2, 0}, {5004, 2, 4999}, {5005, 4, 0}, {5008, 4, 3}};
    for (const auto& row : places) {
        const tqx::ByteSource::Place place = source.placeOf(row.offset);
        EXPECT_EQ(place.file, paths[row.path]);
        EXPECT_EQ(place.offset, row.inFile);
    }
}

TEST(Sources, SkipAsManyBytesAsThereAre)
{
    const TemporaryFolder folder;
    const Bytes content = someContent(100000);
    for (const std::string& path :
         {folder.write("plain", content), folder.write("packed", gzipped(content))}) {
        const auto source = tqx::openSource(path);
        EXPECT_EQ(source->skip(2), 2U);
        EXPECT_EQ(source->skip(70000), 70000U);
        uint8_t byte = 0;
        ASSERT_EQ(source->read(&byte, 1), 1U);
        EXPECT_EQ(byte, content[70002]);
        EXPECT_EQ(source->skip(50000), 29997U);
        EXPECT_EQ(source->read(&byte, 1), 0U);
    }
}

// Points are met in the middle of bytes, at the start of members and of frames.
TEST(Sources, CompressedContentIsReadAnywhere)
{
    const Bytes part = someContent(1000003);
    Bytes content;
    Bytes zstd;
    Bytes gzip;
    for (int member = 0; member < 3; ++member) {
        Bytes ofMember;
        for (int i = 0; i < 5; ++i)
            ofMember = ofMember + part;
        content = content + ofMember;
        zstd = zstd + zstdFrame(ofMember);
        gzip = gzip + gzipped(ofMember);
    }
    const struct {
        const char* name;
        tqx::Compression compression;
        Bytes packed;
    } rows[] = {{"gzip", tqx::Compression::Gzip, gzip}, {"zstd", tqx::Compression::Zstd, zstd}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<tqx::AccessPoint> points;
        auto memory = std::make_unique<tqx::MemorySource>(row.packed.data(), row.packed.size());
        tqx::CompressedSource source(std::move(memory), row.compression, &points);
        EXPECT_TRUE(readAll(source, 1 << 20).content == content);
        ASSERT_GE(points.size(), 2U);
        const tqx::MemoryAccess packed(row.packed.data(), row.packed.size());
        std::mt19937 random(1);
        // A last one may be where the content ends.
        for (size_t i = 0; i < points.size() && points[i].content < content.size(); ++i) {
            // From a point on without what is before it: the file is damaged there.
            Bytes damaged = row.packed;
            std::fill(damaged.begin(),
                      damaged.begin() + static_cast<std::ptrdiff_t>(points[i].packed - 1), 0xa5);
            const tqx::MemoryAccess onlyRest(damaged.data(), damaged.size());
            const tqx::CompressedAccess access(onlyRest, row.compression, points, content.size());
            Bytes got(100);
            const uint64_t offset = points[i].content + random() % 100000;
            ASSERT_EQ(access.readAt(offset, got.data(), got.size()), got.size());
            EXPECT_TRUE(std::equal(got.begin(), got.end(),
                                   content.begin() + static_cast<std::ptrdiff_t>(offset)));
            EXPECT_THROW(access.readAt(0, got.data(), got.size()), tqx::SourceError);
        }
        const tqx::CompressedAccess access(packed, row.compression, points, content.size());
        for (int i = 0; i < 20; ++i) {
            Bytes got(1 + random() % 200000);
            const uint64_t offset = random() % content.size();
            got.resize(access.readAt(offset, got.data(), got.size()));
            EXPECT_FALSE(got.empty());
            EXPECT_TRUE(std::equal(got.begin(), got.end(),
                                   content.begin() + static_cast<std::ptrdiff_t>(offset)));
        }
    }
}

TEST(Sources, FilesAreReadAnywhere)
{
    const TemporaryFolder folder;
    const Bytes content = someContent(10000);
    const std::string path = folder.write("log", content);
    for (const auto mapping :
         {tqx::FileAccess::Mapping::IfPossible, tqx::FileAccess::Mapping::Never}) {
        const tqx::FileAccess file(path, mapping);
        EXPECT_EQ(file.getSize(), content.size());
        EXPECT_EQ(file.getBytes() == nullptr, mapping == tqx::FileAccess::Mapping::Never);
        Bytes got(300);
        ASSERT_EQ(file.readAt(9000, got.data(), got.size()), got.size());
        EXPECT_TRUE(std::equal(got.begin(), got.end(), content.begin() + 9000));
        EXPECT_EQ(file.readAt(9900, got.data(), got.size()), 100U);
        EXPECT_EQ(file.readAt(10000, got.data(), got.size()), 0U);
    }
    EXPECT_THROW(tqx::FileAccess(folder.fileName("missing")), tqx::SourceError);
    EXPECT_THROW(tqx::FileAccess(folder.fileName(".")), tqx::SourceError);

    const tqx::FileAccess file(path, tqx::FileAccess::Mapping::Never);
    folder.write("log", cut(content, 500));
    uint8_t byte = 0;
    EXPECT_THROW(file.readAt(600, &byte, 1), tqx::SourceError);
}

} // namespace
