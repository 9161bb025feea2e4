// Tables of all types against the records of the same blocks.

#include "ExpectedRow.h"
#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordGuard.h"
#include "Tables.h"

#include <gtest/gtest.h>

#include <set>

using namespace Kor::MessageApi;

namespace
{

constexpr size_t batchRows = 100;

/// Blocks of all revisions, several of one at a time, some of which are cut off, and some with more
/// elements or entries than columns look at in one go.
std::vector<Bytes> blocksOf(const TQX_TypeLayout& type, std::mt19937_64& random)
{
    const unsigned many = type.firstSubBlock == type.fieldCount ? 1000 : 30;
    std::vector<Bytes> blocks;
    for (unsigned revision = 0; revision < 8; ++revision) {
        for (unsigned i = 0; i < 30; ++i) {
            const unsigned count = revision % 4 == 0 && i == 5 ? many : 3;
            blocks.push_back(randomBlock(type, {revision, count, i % 5 == 4 ? 2U : 0U}, random));
            if (i % 9 == 8)
                blocks.back().resize(blocks.back().size() * (random() % 100) / 100);
            if (blocks.back().size() < 8)
                blocks.pop_back();
        }
    }
    return blocks;
}

struct Expected {
    std::vector<std::string> rows;
    std::vector<int32_t> refused;
};

Expected messageRows(const std::vector<Bytes>& blocks, Values values)
{
    Expected expected;
    AnyRecord record;
    for (size_t i = 0; i < blocks.size(); ++i) {
        const int32_t result = record.decode(blocks[i]);
        if (result <= 0) {
            expected.refused.push_back(result);
            continue;
        }
        const TQX_TypeLayout& type = *TQX_layout(record.as<KorcgHeader_s>().korcg_type);
        expected.rows.push_back("{time=" + expectedTime(record.get()) +
                                ",offset=" + std::to_string(100 + i) + "," +
                                expectedFields(type, record.get(), values) + "}");
    }
    return expected;
}

class AllTypes : public testing::TestWithParam<Values>
{
};

TEST_P(AllTypes, HaveARowForEveryMessage)
{
    std::mt19937_64 random(17);
    tqx::TableOptions options;
    options.batchRows = batchRows;
    options.isScaled = options.isNamed = options.hidesDoNotUse = GetParam() == Values::Shown;
    size_t rows = 0;
    for (const TQX_TypeLayout* type : mainTypes()) {
        SCOPED_TRACE(type->name);
        const std::vector<Bytes> blocks = blocksOf(*type, random);
        const Expected expected = messageRows(blocks, GetParam());
        const WholeTable table(*type, options, blocks);
        ASSERT_EQ(table.rows(), expected.rows);
        EXPECT_EQ(table.refused, expected.refused);
        rows += expected.rows.size();
    }
    EXPECT_GT(rows, 243 * 2 * batchRows);
}

INSTANTIATE_TEST_SUITE_P(Table, AllTypes, testing::Values(Values::Shown, Values::Stored));

/// The rows of the sub-blocks that a path of fields leads to.
void addSubRows(const std::vector<const TQX_FieldLayout*>& path, size_t depth,
                const TQX_TypeLayout& type, const void* record, const std::string& prefix,
                const std::string& before, std::vector<std::string>& rows)
{
    if (depth == path.size()) {
        rows.push_back(before + "," + expectedFields(type, record, Values::Shown) + "}");
        return;
    }
    const TQX_FieldLayout& field = *path[depth];
    if (!TQX_isPresent(type, field, record))
        return;
    const std::string identity = expectedIdentity(type, record, prefix);
    const std::string next = before + (identity.empty() ? "" : ",") + identity;
    const uint32_t count = TQX_elementCount(type, field, record);
    for (uint32_t i = 0; i < count; ++i) {
        addSubRows(path, depth + 1, *TQX_layout(field.recordType), TQX_element(field, record, i),
                   prefix + field.name + ".", next, rows);
    }
}

void checkSubRows(const TQX_TypeLayout& main, std::vector<const TQX_FieldLayout*>& path,
                  const TQX_TypeLayout& type, const std::vector<Bytes>& blocks, size_t& paths)
{
    for (int row = 0; row < type.fieldCount; ++row) {
        if (type.fields[row].recordType == 0)
            continue;
        path.push_back(&type.fields[row]);
        tqx::TableOptions options;
        options.batchRows = batchRows;
        for (const TQX_FieldLayout* field : path)
            options.rows += (options.rows.empty() ? "" : ".") + std::string(field->name);
        SCOPED_TRACE(options.rows);
        std::vector<std::string> expected;
        AnyRecord record;
        for (size_t i = 0; i < blocks.size(); ++i) {
            if (record.decode(blocks[i]) > 0) {
                addSubRows(path, 0, main, record.get(), "",
                           "{time=" + expectedTime(record.get()) +
                               ",offset=" + std::to_string(100 + i),
                           expected);
            }
        }
        const WholeTable table(main, options, blocks);
        ASSERT_EQ(table.rows(), expected);
        ++paths;
        checkSubRows(main, path, *TQX_layout(type.fields[row].recordType), blocks, paths);
        path.pop_back();
    }
}

TEST(Table, HasARowForEverySubBlock)
{
    std::mt19937_64 random(18);
    size_t paths = 0;
    for (const TQX_TypeLayout* type : mainTypes()) {
        SCOPED_TRACE(type->name);
        std::vector<const TQX_FieldLayout*> path;
        checkSubRows(*type, path, *type, blocksOf(*type, random), paths);
    }
    EXPECT_GT(paths, 130U); // some sub-block types are used in several places
}

TEST(Table, HasNoNameTwice)
{
    for (const TQX_TypeLayout* type : mainTypes()) {
        tqx::TableOptions options;
        options.hasUtc = options.hasFile = true;
        for (int row = -1; row < type->fieldCount; ++row) {
            if (row >= 0 && type->fields[row].recordType == 0)
                continue;
            options.rows = row < 0 ? "" : type->fields[row].name;
            const std::vector<std::string> names = tqx::TableSchema(*type, options).getNames();
            const std::set<std::string> different(names.begin(), names.end());
            EXPECT_EQ(names.size(), different.size()) << type->name << " " << options.rows;
        }
    }
}

} // namespace
