// Tables as streams: out of a log, through the C stream interface, and how they end.

#include "MadeBlocks.h"
#include "Tables.h"
#include "korcg_crc.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/table/IndexInput.h"
#include "tqx/log/table/TableStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <random>
#include <thread>

using namespace Kor::MessageApi;

namespace
{

Bytes position(uint32_t tow, double height)
{
    return madeBlock<TQX_PVTGeodetic2_s>([&](TQX_PVTGeodetic2_s& record) {
        record.TOW = tow;
        record.WNc = 2300;
        record.Height = height;
    });
}

struct Refusals : tqx::StreamListener {
    void onGap(const tqx::StreamGap&) override {}
    void onUndecodable(const std::string& file, const tqx::Block& block, int32_t code) override
    {
        texts.push_back(file + "@" + std::to_string(block.offset) + " " + std::to_string(code));
    }
    std::vector<std::string> texts;
};

/// A valid block of the type that ends in the middle of its fields.
Bytes cutPosition()
{
    Bytes block = position(0, 0);
    block.resize(40);
    block[6] = 40;
    const auto bits = static_cast<uint32_t>(block.size() * 8);
    uint16_t crc = 0;
    korcg_crc16(block.data(), 40, 32, bits, 16, &crc);
    block[2] = static_cast<uint8_t>(crc & 0xffU);
    block[3] = static_cast<uint8_t>(crc >> 8U);
    return block;
}

std::shared_ptr<const tqx::TableSchema> schemaOf(const tqx::TableOptions& options)
{
    return std::make_shared<const tqx::TableSchema>(*tqx::findType("PVTGeodetic2"), options);
}

TEST(StreamInput, FollowsTheWeekThroughAllBlocks)
{
    Bytes log;
    const auto add = [&log](const Bytes& block) {
        log.insert(log.end(), block.begin(), block.end());
    };
    add(position(604799000, 1));
    add(madeBlock<TQX_MeasEpoch2_s>([](TQX_MeasEpoch2_s& record) { record.TOW = 1000; }));
    add(cutPosition());
    add(position(604799000, 2)); // of the week after
    tqx::MemorySource source(log.data(), log.size(), "day.tqx");
    Refusals refusals;
    tqx::BlockStream blocks(source, &refusals);
    tqx::TableOptions options;
    options.fields = tqx::FieldFilter({"TOWc", "Height"});
    const auto schema = schemaOf(options);
    tqx::TableStream table(schema, std::make_unique<tqx::StreamInput>(blocks, schema->getType()));
    ArrowSchema columns;
    schema->exportTo(columns);
    ArrowArray batch;
    ASSERT_TRUE(table.next(batch));
    ASSERT_EQ(batch.length, 2);
    const int towc = findColumn(columns, "TOWc");
    EXPECT_EQ(arrowText(*columns.children[towc], *batch.children[towc], 0), "604799000");
    EXPECT_EQ(arrowText(*columns.children[towc], *batch.children[towc], 1), "1209599000");
    EXPECT_EQ(refusals.texts.size(), 1U);
    EXPECT_EQ(blocks.getCounts().undecodable, 1U);
    ArrowArray none;
    EXPECT_FALSE(table.next(none));
    batch.release(&batch);
    columns.release(&columns);
}

/// Everything that a table has of a log.
std::vector<std::string> rowsOf(const tqx::TableSchema& schema, tqx::TableStream& table)
{
    std::vector<std::string> rows;
    ArrowSchema columns;
    schema.exportTo(columns);
    for (ArrowArray batch; table.next(batch); batch.release(&batch)) {
        for (int64_t row = 0; row < batch.length; ++row)
            rows.push_back(arrowText(columns, batch, static_cast<size_t>(row)));
    }
    columns.release(&columns);
    return rows;
}

/// Memory that has to be read.
class DistantAccess : public tqx::MemoryAccess
{
public:
    using MemoryAccess::MemoryAccess;
    const uint8_t* getBytes() const override { return nullptr; }
};

TEST(IndexInput, GivesTheRowsOfOnePass)
{
    Bytes log;
    std::mt19937 random(3);
    for (unsigned i = 0; i < 300; ++i) {
        const Bytes next = i % 7 == 6
                               ? cutPosition()
                               : position(static_cast<uint32_t>(random() % 3) * 250000000, 1.0 * i);
        log.insert(log.end(), next.begin(), next.end());
        log.insert(log.end(), random() % 5, 'x');
    }
    tqx::TableOptions options;
    options.fields = tqx::FieldFilter({"TOWc", "Height"});
    options.batchRows = 100;
    options.hasFile = true;
    const auto schema = schemaOf(options);
    Refusals before;
    tqx::MemorySource source(log.data(), log.size(), "day.tqx");
    tqx::BlockStream blocks(source, &before);
    tqx::TableStream onePass(schema, std::make_unique<tqx::StreamInput>(blocks, schema->getType()));
    const std::vector<std::string> expected = rowsOf(*schema, onePass);
    EXPECT_GT(expected.size(), 200U);

    const tqx::MemoryAccess inMemory(log.data(), log.size(), "day.tqx");
    const DistantAccess distant(log.data(), log.size(), "day.tqx");
    const tqx::Index index = tqx::Index::build(inMemory, {}, 256);
    for (const tqx::RandomAccess* access : {static_cast<const tqx::RandomAccess*>(&inMemory),
                                            static_cast<const tqx::RandomAccess*>(&distant)}) {
        Refusals refusals;
        tqx::TableStream byIndex(
            schema, std::make_unique<tqx::IndexInput>(index, *access, schema->getType(),
                                                      tqx::BlockQuery(), &refusals));
        EXPECT_EQ(rowsOf(*schema, byIndex), expected);
        EXPECT_EQ(refusals.texts, before.texts);
    }
}

/// Blocks one after the other, then an error if there is one.
class GivenInput : public tqx::TableInput
{
public:
    GivenInput(size_t blocks, std::string failure)
        : m_count(blocks), m_error(std::move(failure)), m_block(position(1000, 0.5))
    {
    }

    size_t read(tqx::TableBlock* blocks, size_t capacity) override
    {
        if (m_given == m_count && !m_error.empty())
            throw tqx::SourceError(m_error);
        const size_t now = std::min({capacity, m_count - m_given, size_t{2}});
        for (size_t i = 0; i < now; ++i)
            blocks[i] = {m_block.data(), static_cast<uint16_t>(m_block.size()), 0, m_given + i, {}};
        m_given += now;
        return now;
    }

private:
    size_t m_count;
    std::string m_error;
    Bytes m_block;
    size_t m_given = 0;
};

ArrowArrayStream streamOf(size_t blocks, const std::string& failure)
{
    tqx::TableOptions options;
    options.batchRows = 3;
    ArrowArrayStream stream;
    tqx::exportStream(std::make_unique<tqx::TableStream>(
                          schemaOf(options), std::make_unique<GivenInput>(blocks, failure)),
                      stream);
    return stream;
}

TEST(ArrowStream, GivesBatchesUntilTheEnd)
{
    ArrowArrayStream stream = streamOf(7, "");
    ArrowSchema columns;
    ASSERT_EQ(stream.get_schema(&stream, &columns), 0);
    std::vector<int64_t> lengths;
    ArrowArray batch;
    while (stream.get_next(&stream, &batch) == 0 && batch.release) {
        lengths.push_back(batch.length);
        batch.release(&batch);
        EXPECT_EQ(batch.release, nullptr);
    }
    EXPECT_EQ(lengths, (std::vector<int64_t>{3, 3, 1}));
    EXPECT_EQ(stream.get_next(&stream, &batch), 0);
    EXPECT_EQ(batch.release, nullptr);
    EXPECT_EQ(stream.get_last_error(&stream), nullptr);
    stream.release(&stream);
    EXPECT_EQ(stream.release, nullptr);
    EXPECT_STREQ(columns.children[0]->name, "time"); // lives on
    columns.release(&columns);
}

TEST(ArrowStream, EndsWithItsError)
{
    ArrowArrayStream stream = streamOf(4, "day.tqx: 96: cannot be read");
    ArrowArray batch;
    ASSERT_EQ(stream.get_next(&stream, &batch), 0);
    EXPECT_EQ(batch.length, 3);
    batch.release(&batch);
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(stream.get_next(&stream, &batch), EIO);
        EXPECT_STREQ(stream.get_last_error(&stream), "day.tqx: 96: cannot be read");
    }
    stream.release(&stream);
}

TEST(ArrowStream, IsReleasedInAnyOrderByAnyThread)
{
    ArrowArrayStream stream = streamOf(6, "");
    ArrowSchema columns;
    ASSERT_EQ(stream.get_schema(&stream, &columns), 0);
    ArrowArray first;
    ArrowArray second;
    ASSERT_EQ(stream.get_next(&stream, &first), 0);
    ASSERT_EQ(stream.get_next(&stream, &second), 0);
    stream.release(&stream);
    // A column that is moved out outlives its batch, and a dictionary both.
    const int height = findColumn(columns, "Height");
    const int mode = findColumn(columns, "PVTMode");
    ArrowArray heights = *first.children[height];
    first.children[height]->release = nullptr;
    ArrowArray modes = *first.children[mode];
    first.children[mode]->release = nullptr;
    std::thread elsewhere([&] {
        first.release(&first);
        second.release(&second);
    });
    elsewhere.join();
    EXPECT_EQ(arrowText(*columns.children[height], heights, 2), realText(0.5));
    EXPECT_EQ(arrowText(*columns.children[mode], modes, 2), quoted("No solution"));
    heights.release(&heights);
    columns.release(&columns);
    modes.release(&modes);
}

} // namespace
