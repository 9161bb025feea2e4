#include "RandomBlock.h"
#include "TQX_OwnedRecord.h"
#include "TQX_codec.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/write/Paragraph.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/log/write/ValueJson.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

// Nothing of an earlier use of a record's memory shows in what is written of the record.

using namespace Kor::MessageApi;

namespace
{

/// All that is written of a block that is decoded into memory full of `filling`.
std::string writtenOver(uint8_t filling, const std::vector<uint8_t>& bytes)
{
    std::vector<uint64_t> memory(sizeof(TQX_AnyRecord_u) / 8 + 1,
                                 0x0101010101010101U * uint64_t{filling});
    TQX_markEmpty(memory.data());
    const tqx::Block block = {bytes.data(), static_cast<uint16_t>(bytes.size()), 0};
    const int32_t bits = TQX_decode(nullptr, block.data, block.size, memory.data());
    tqx::Buffer out;
    if (bits > 0) {
        const tqx::FieldFilter everything;
        const tqx::DecodedBlock decoded = {block, memory.data(), bits};
        tqx::RawJson(everything).write(out, decoded);
        tqx::ValueJson(everything).write(out, decoded);
        tqx::Paragraph(everything).write(out, block, memory.data());
    }
    TQX_release(memory.data());
    return std::string(out.view());
}

} // namespace

TEST(OldMemory, ShowsInNoText)
{
    std::mt19937_64 random(20);
    size_t written = 0;
    for (uint32_t type = 1; type <= TQX_lastRecordType; ++type) {
        const TQX_TypeLayout* layout = TQX_layout(type);
        if (layout->blockNumber == 0)
            continue;
        for (unsigned revision = 0; revision <= layout->highestRevision; ++revision) {
            for (int i = 0; i < 4; ++i) {
                const std::vector<uint8_t> bytes = randomBlock(*layout, {revision}, random);
                const std::string text = writtenOver(0xa5, bytes);
                EXPECT_EQ(text, writtenOver(0x5a, bytes)) << layout->name;
                written += text.size();
            }
        }
    }
    EXPECT_GT(written, 1000000U);
}
