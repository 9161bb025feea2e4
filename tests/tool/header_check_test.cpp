#include "FieldRoles.h"
#include "RandomBlock.h"
#include "tqx/log/stream/HeaderCheck.h"

#include <gtest/gtest.h>

using namespace Kor::MessageApi;

// A block of any type and revision must not be doubted.
TEST(HeaderCheck, FitsBlocksOfEveryType)
{
    std::mt19937_64 random(30);
    size_t fixed = 0;
    for (const TQX_TypeLayout* type : mainTypes()) {
        for (unsigned revision = 0; revision <= type->highestRevision + 1U; ++revision) {
            const auto id = static_cast<uint16_t>(type->blockNumber | revision << 13U);
            for (unsigned i = 0; i < 4; ++i) {
                const bool isNewer = revision > type->highestRevision;
                const std::vector<uint8_t> block =
                    randomBlock(*type, {revision, 3, isNewer ? 8U : 0U}, random);
                EXPECT_TRUE(tqx::isPlausibleHeader(id, block.size()))
                    << type->name << " " << revision << ": " << block.size();
                EXPECT_TRUE(tqx::isPlausibleHeader(id, (block.size() + 3) / 4 * 4)) << type->name;
            }
            EXPECT_FALSE(tqx::isPlausibleHeader(id, 13)) << type->name;
            fixed += tqx::isPlausibleHeader(id, 0xffff) ? 0 : 1;
        }
    }
    EXPECT_GT(fixed, 100U) << "revisions whose blocks have one length";
}

TEST(HeaderCheck, DoubtsUnknownNumbers)
{
    EXPECT_FALSE(tqx::isPlausibleHeader(8191, 16));
}
