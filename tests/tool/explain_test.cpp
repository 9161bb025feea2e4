#include "FieldRoles.h"
#include "RandomBlock.h"
#include "Tool.h"
#include "tqx/log/inspect/BlockWalk.h"
#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/record/RecordDecoder.h"

#include <nlohmann/json.hpp>

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

bool hasOwnBytes(const tqx::InspectionRow& row)
{
    using RowKind = tqx::InspectionRow::Kind;
    return row.kind == RowKind::Value || row.kind == RowKind::Text || row.kind == RowKind::Bytes ||
           row.kind == RowKind::Unknown;
}

/// What is around a row begins before it, one level further out, and holds its bytes.
void expectNested(const tqx::Inspection& inspection, size_t index)
{
    const tqx::InspectionRow& row = inspection.rows[index];
    ASSERT_LT(row.parent, static_cast<int>(index));
    if (row.parent == tqx::InspectionRow::none) {
        EXPECT_EQ(row.depth, 0U) << row.path;
        return;
    }
    const tqx::InspectionRow& around = inspection.rows[static_cast<size_t>(row.parent)];
    EXPECT_EQ(row.depth, around.depth + 1) << row.path;
    if (row.size != 0) {
        EXPECT_LE(around.offset, row.offset) << row.path;
        EXPECT_GE(around.offset + around.size, row.offset + row.size) << row.path;
    }
    if (row.kind == tqx::InspectionRow::Kind::Bits) {
        EXPECT_EQ(row.size, around.size) << row.path;
        EXPECT_LE(row.lowestBit() + row.bitCount(), 8 * row.size) << row.path;
    } else {
        EXPECT_EQ(row.path, around.path + '.' + row.label);
    }
}

/// Every byte of a block belongs to one row, and is found there.
void expectRows(const tqx::Inspection& inspection)
{
    uint32_t offset = 0;
    for (size_t i = 0; i < inspection.rows.size(); ++i) {
        const tqx::InspectionRow& row = inspection.rows[i];
        expectNested(inspection, i);
        if (!hasOwnBytes(row))
            continue;
        EXPECT_EQ(row.offset, offset) << row.path;
        offset += row.size;
        if (row.size != 0) {
            EXPECT_EQ(inspection.rowAt(row.offset), static_cast<int>(i)) << row.path;
            EXPECT_EQ(inspection.rowAt(offset - 1), static_cast<int>(i)) << row.path;
        }
    }
    EXPECT_EQ(inspection.rowAt(offset), tqx::InspectionRow::none);
    if (inspection.code == 0) {
        EXPECT_EQ(offset, inspection.bytes.size());
    }
}

} // namespace

TEST(Explain, GivesEveryByteToOneRow)
{
    std::mt19937_64 random(21);
    for (const TQX_TypeLayout* type : mainTypes()) {
        const std::vector<uint8_t> block =
            randomBlock(*type, {type->highestRevision, 3, 2}, random);
        const tqx::Inspection whole =
            inspect(tqx::Block{block.data(), static_cast<uint16_t>(block.size()), 0});
        EXPECT_TRUE(whole.isIntact && whole.code == 0 && whole.faults.empty()) << type->name;
        expectRows(whole);
        const size_t half = block.size() / 2;
        expectRows(inspect(tqx::Block{block.data(), static_cast<uint16_t>(half), 0}));
    }
}

TEST(Explain, WritesRowsAsJson)
{
    const std::string stream =
        runTool({"encode", "-"},
                R"({"block":"MeasEpoch2","fields":{"TOW":1000,"Type1":[{},{"SVID":5,"Type2":[)"
                R"({"CN0":120,"CodeOffsetMSB":-1}]}]}})")
            .output;
    const ToolRun run = runTool({"explain", "--json", "-@0"}, stream);
    EXPECT_EQ(run.status, 0) << run.words;
    const auto block = nlohmann::json::parse(run.output);
    EXPECT_EQ(block["block"], "MeasEpoch2");
    EXPECT_EQ(block["intact"], true);
    EXPECT_EQ(block["length"], stream.size());
    const auto rowOf = [&](const std::string& path) {
        for (const auto& row : block["rows"]) {
            if (row["path"] == path)
                return row;
        }
        return nlohmann::json();
    };
    const auto time = rowOf("TOW");
    EXPECT_EQ(time["offset"], 8);
    EXPECT_EQ(time["size"], 4);
    EXPECT_EQ(time["bytes"], "e8030000");
    EXPECT_EQ(time["raw"], 1000);
    EXPECT_EQ(time["value"], 1.0);
    EXPECT_EQ(time["unit"], "second");
    EXPECT_EQ(rowOf("Type1[1].SVID")["name"], "G05");
    const auto strength = rowOf("Type1[1].Type2[0].CN0");
    EXPECT_EQ(strength["depth"], 2);
    EXPECT_EQ(block["rows"][strength["parent"].get<size_t>()]["path"], "Type1[1].Type2[0]");
    const auto bits = rowOf("Type1[1].Type2[0].CodeOffsetMSB");
    EXPECT_EQ(bits["kind"], "bits");
    EXPECT_EQ(bits["raw"], -1);
    EXPECT_EQ(bits["lowestBit"], 0);
    EXPECT_EQ(bits["bits"], 3);
    EXPECT_EQ(block["rows"][bits["parent"].get<size_t>()]["field"], "OffsetsMSB");

    const ToolRun cut = runTool({"explain", "--json", "-@0"}, stream.substr(0, 40));
    const auto missing = nlohmann::json::parse(cut.output);
    EXPECT_EQ(missing["intact"], false);
    EXPECT_EQ(missing["rows"].back()["kind"], "missing");
    EXPECT_FALSE(missing["codeName"].get<std::string>().empty());
    EXPECT_FALSE(missing["faults"].empty());
}

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

TEST(Explain, ExplainsReportsOfDamage)
{
    const char* const file = "data/samples/random-damaged.tqx";
    const auto info = nlohmann::json::parse(runTool({"info", "--json", file}).output);
    size_t headers = 0;
    for (const auto& damage : info["damage"]) {
        const auto offset = damage["offset"].get<uint64_t>();
        const ToolRun run = runTool({"explain", QString("%1@%2").arg(file).arg(offset)});
        EXPECT_EQ(run.status, 0) << run.words;
        EXPECT_EQ(run.words, "");
        EXPECT_NE(run.output.find("valid block "), std::string::npos) << run.output;
        if (damage["crcErrors"] == 0)
            continue;
        ++headers;
        EXPECT_NE(run.output.find("the checksum is 0x"), std::string::npos) << run.output;
    }
    EXPECT_GT(headers, 10U);
}

// A sync that no block can have stands before the header.
TEST(Explain, LooksForTheHeaderInTheDamage)
{
    const std::string sound = runTool({"cut", "--type", "4007", "data/samples/random.tqx"}).output;
    const std::string before =
        runTool({"encode", "tool/data/documented.jsonl"}).output.substr(0, 96);
    const std::string junk = "junk $@ and more of it ";
    std::string damaged = before;
    damaged[90] ^= 1;
    const std::string stream = before + junk + damaged + sound;
    const auto info = nlohmann::json::parse(runTool({"info", "--json", "-"}, stream).output);
    ASSERT_EQ(info["damage"].size(), 1U) << info;
    const auto offset = info["damage"][0]["offset"].get<size_t>();
    const ToolRun run = runTool({"explain", QString("-@%1").arg(offset)}, stream);
    EXPECT_EQ(run.status, 0) << run.words;
    const std::string header = std::to_string(offset + junk.size());
    EXPECT_EQ(run.output.find("standard input, offset " + header + ": PVTGeodetic2 (4007)"), 0U)
        << run.output;
    EXPECT_NE(run.output.find("\n119 bytes belong from " + std::to_string(offset) +
                              " on to no block, this header at " + header +
                              " is among them\nthe checksum is 0x"),
              std::string::npos)
        << run.output;
}

TEST(Explain, DamageWithoutHeader)
{
    const std::string log = testData("data/samples/random.tqx");
    const std::string junk = "no header here";
    const ToolRun run = runTool({"explain", "-@0"}, junk + log);
    EXPECT_EQ(run.status, 0) << run.words;
    EXPECT_EQ(run.output.find("standard input, offset 0: no block\n"), 0U) << run.output;
    EXPECT_NE(run.output.find("\n14 bytes belong from 0 on to no block, no header is among them\n"
                              "the next valid block is "),
              std::string::npos)
        << run.output;
}

// The input has no end, and no block is in it.
TEST(Explain, ReadsOnForAWhileOnly)
{
    const ToolRun run = runTool({"explain", "/dev/zero@5"});
    EXPECT_EQ(run.status, 0) << run.words;
    EXPECT_NE(run.output.find("no valid block follows within 1 MiB\n"), std::string::npos)
        << run.output;
}
