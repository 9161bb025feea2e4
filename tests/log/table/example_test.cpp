// The examples of the public headers.

#include "MadeBlocks.h"
#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/record/RecordPlan.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/table/TableBuilder.h"
#include "tqx/log/table/TableStream.h"

#include <gtest/gtest.h>

using namespace Kor::MessageApi;
using namespace tqx;

namespace
{

std::vector<TableBlock> blocksOver(const std::vector<uint8_t>& bytes)
{
    return std::vector<TableBlock>(3,
                                   {bytes.data(), static_cast<uint16_t>(bytes.size()), 0, 0, {}});
}

const char* const name = "EndOfMeas";

TEST(Example, ThePlanOfARecord)
{
    TQX_OwnedRecord owned(*findType(name));
    const void* record = owned.get();
    const uint32_t type = owned.layout()->recordType;
    size_t values = 0;
    const auto show = [&values](uint64_t, const std::vector<RecordPlan::Part>& parts) {
        values += parts.size();
    };

    const RecordPlan plan = planRecord(*TQX_layout(type), FieldFilter(), ShownFields::All);
    for (const RecordPlan::Member& member : plan.members) {
        if (member.kind == RecordPlan::Kind::Number)
            show(loadWord(TQX_element(*member.field, record), member.size), member.parts);
    }

    EXPECT_GE(values, 10U); // the header alone has as many
    EXPECT_TRUE(plan.isWhole);
    const RecordPlan part =
        planRecord(*findType("MeasEpoch2"), FieldFilter({"Type1.CN0"}), ShownFields::All);
    ASSERT_EQ(part.members.size(), 1U);
    EXPECT_STREQ(part.members[0].plan->members.at(0).parts.at(0).field->name, "CN0");
    EXPECT_FALSE(part.isWhole);
    const RecordPlan wire = planRecord(*findType(name), FieldFilter(), ShownFields::OnWire);
    for (const RecordPlan::Member& member : wire.members)
        EXPECT_EQ(member.parts.size(), 1U);
}

TEST(Example, ATableInOneBatch)
{
    const std::vector<uint8_t> bytes = madeBlock<TQX_EndOfMeas_s>([](TQX_EndOfMeas_s&) {});
    const std::vector<TableBlock> blocks = blocksOver(bytes);

    auto schema = std::make_shared<TableSchema>(*findType(name), TableOptions());
    TableBuilder builder(schema);
    builder.append(blocks.data(), blocks.size());
    ArrowArray batch;
    builder.finish(batch);

    EXPECT_EQ(batch.length, 3);
    batch.release(&batch);
}

class GivenInput : public TableInput
{
public:
    size_t read(TableBlock* blocks, size_t) override
    {
        if (m_given == 3)
            return 0;
        ++m_given;
        *blocks = blocksOver(m_bytes)[0];
        return 1;
    }

private:
    std::vector<uint8_t> m_bytes = madeBlock<TQX_EndOfMeas_s>([](TQX_EndOfMeas_s&) {});
    int m_given = 0;
};

TEST(Example, ATableBatchByBatch)
{
    int64_t rows = 0;
    const auto use = [&rows](const ArrowArray& batch) { rows += batch.length; };

    auto schema = std::make_shared<TableSchema>(*findType(name), TableOptions());
    auto input = std::make_unique<GivenInput>();
    TableStream table(schema, std::move(input));
    for (ArrowArray batch; table.next(batch); batch.release(&batch))
        use(batch);

    EXPECT_EQ(rows, 3);
}

} // namespace
