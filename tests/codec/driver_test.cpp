// The driver and the context.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordGuard.h"
#include "korcg_load.h"

#include <gtest/gtest.h>

namespace
{

using namespace Kor::MessageApi;

TEST(Driver, RefusesDisabledTypesAlone)
{
    std::mt19937_64 random(1);
    for (const TQX_TypeLayout* type : mainTypes()) {
        SCOPED_TRACE(type->name);
        TQX_Context_s context;
        TQX_init_context(&context);
        const unsigned e = type->recordType;
        ASSERT_NE(context.enableMask[(e + 1) / 8] & 0x80U >> e % 8, 0U);
        context.enableMask[(e + 1) / 8] ^= static_cast<uint8_t>(0x80U >> e % 8);
        context.lastTOW = 0xfffffffe;
        const TQX_Context_s before = context;
        const std::vector<uint8_t> block = randomBlock(*type, {}, random);
        AnyRecord record;
        EXPECT_EQ(record.decode(block, &context), type->disabled);
        EXPECT_EQ(std::memcmp(&context, &before, sizeof context), 0);
        // Nothing but ID and BlockNumber is written.
        TQX_MainHeader_s expected = {};
        expected.ID = expected.BlockNumber = type->blockNumber;
        EXPECT_EQ(std::memcmp(record.get(), &expected, offsetof(TQX_MainHeader_s, WNc)), 0);
        EXPECT_GT(record.decode(block), 0);
        context = {};
        std::fill(std::begin(context.enableMask), std::end(context.enableMask), uint8_t{0xff});
        EXPECT_GT(record.decode(block, &context), 0);
    }
}

TEST(Driver, RemembersUnknownNumbers)
{
    std::vector<uint8_t> bytes(7);
    unsigned unknown = 0;
    for (uint16_t number = 0; number < 8192; ++number) {
        TQX_Context_s context;
        TQX_init_context(&context);
        korcg_store_u16(bytes.data() + 4, static_cast<uint16_t>(number | 0x6000U));
        AnyRecord record;
        const int32_t result = record.decode(bytes, &context);
        if (TQX_recordType(number) != 0) {
            EXPECT_STRNE(TQX_errorName(result), "TQX_ERR_INVALID_MESSAGE");
            EXPECT_EQ(record.as<KorcgHeader_s>().korcg_type, TQX_recordType(number));
            continue;
        }
        ++unknown;
        EXPECT_STREQ(TQX_errorName(result), "TQX_ERR_INVALID_MESSAGE");
        EXPECT_EQ(context.lastUnknownBlockNumber, number);
        EXPECT_EQ(record.decode(bytes), result);
    }
    EXPECT_EQ(unknown, 8192U - 243U);
}

TEST(Driver, ReadsNothingOfShortBuffers)
{
    TQX_Context_s context;
    TQX_init_context(&context);
    AnyRecord record;
    const std::vector<uint8_t> bytes(6, 0xff);
    for (uint16_t size = 0; size <= 6; ++size) {
        EXPECT_STREQ(TQX_errorName(record.decode(bytes.data(), size, &context)),
                     "TQX_ERR_INVALID_MESSAGE");
    }
    EXPECT_EQ(context.lastUnknownBlockNumber, 0);
    EXPECT_EQ(context.weekCounter, 0);
    EXPECT_EQ(context.lastTOW, 0U);
}

} // namespace
