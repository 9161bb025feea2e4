#include "FieldRoles.h"
#include "RandomBlock.h"
#include "Tool.h"
#include "tqx/log/inspect/BlockWalk.h"
#include "tqx/log/record/RecordDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Kor::MessageApi;
using Kind = tqx::BlockPiece::Kind;

namespace
{

/// Every byte of a block that decodes stands in one piece, and the pieces follow each other.
void expectAllBytes(const tqx::BlockWalk& walk, size_t size)
{
    uint32_t offset = 0;
    for (const tqx::BlockPiece& piece : walk.pieces) {
        EXPECT_EQ(piece.kind == Kind::Bits ? offset : piece.offset, offset);
        if (piece.kind == Kind::Number || piece.kind == Kind::Run || piece.kind == Kind::Unknown)
            offset += piece.size;
    }
    EXPECT_EQ(offset, size);
}

void expectDecodersResult(const TQX_TypeLayout& type, const std::vector<uint8_t>& block,
                          size_t size)
{
    tqx::RecordDecoder decoder;
    const int32_t result = decoder.decode({block.data(), static_cast<uint16_t>(size), 0});
    const tqx::BlockWalk walk = tqx::walkBlock(type, block.data(), static_cast<uint32_t>(size),
                                               result > 0 ? decoder.getRecord() : nullptr);
    EXPECT_EQ(walk.code, std::min(result, 0)) << type.name << ", " << size << " bytes";
    if (result > 0)
        expectAllBytes(walk, size);
}

} // namespace

TEST(Explain, ComesToTheResultOfTheDecoder)
{
    constexpr size_t headerSize = 8;
    std::mt19937_64 random(20);
    for (const TQX_TypeLayout* type : mainTypes()) {
        for (unsigned revision = 0; revision <= type->highestRevision + 1U; ++revision) {
            const std::vector<uint8_t> block =
                randomBlock(*type, {revision, 3, revision % 2 * 3}, random);
            expectDecodersResult(*type, block, block.size());
            const size_t step = 1 + block.size() / 64;
            for (size_t size = headerSize; size < block.size(); size += step)
                expectDecodersResult(*type, block, size);
            // Counts and lengths that fit nothing.
            std::vector<uint8_t> wild = block;
            for (size_t i = headerSize; i < wild.size(); i += 1 + random() % 8)
                wild[i] = static_cast<uint8_t>(random());
            expectDecodersResult(*type, wild, wild.size());
        }
    }
}

TEST(Explain, TellsWhereToLookInstead)
{
    const ToolRun run = runTool({"explain", "data/samples/random.tqx@0x4"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.words.find("tqx: data/samples/random.tqx: 4: no block begins here; it is inside"),
              0U)
        << run.words;
    EXPECT_NE(run.words.find("; the next block is "), std::string::npos) << run.words;
}
