// Tables of blocks with arbitrary content against the records that the same blocks decode to, row
// by row and for every list of sub-blocks that the type has.

#include "ExpectedRow.h"
#include "FieldRoles.h"
#include "RecordGuard.h"
#include "Tables.h"
#include "korcg_load.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace Kor::MessageApi;

constexpr size_t headerBytes = 8;

void check(bool holds, const TQX_TypeLayout& type, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s: %s\n", type.name, what);
    std::abort();
}

/// The bytes as blocks of one type: before each is a byte for its revision and one for its length.
std::vector<Bytes> blocksOf(const TQX_TypeLayout& type, const uint8_t* data, size_t size)
{
    constexpr size_t unit = 4;
    std::vector<Bytes> blocks;
    while (size > 2) {
        const unsigned id = type.blockNumber | (data[0] & 7U) << 13U;
        const size_t content = std::min(size - 2, data[1] * unit);
        const size_t length = headerBytes + content;
        Bytes block = {'$',
                       '@',
                       0,
                       0,
                       static_cast<uint8_t>(id & 0xffU),
                       static_cast<uint8_t>(id >> 8U),
                       static_cast<uint8_t>(length & 0xffU),
                       static_cast<uint8_t>(length >> 8U)};
        block.insert(block.end(), data + 2, data + 2 + content);
        blocks.push_back(std::move(block));
        data += 2 + content;
        size -= 2 + content;
    }
    return blocks;
}

/// Sub-blocks of the field in row `row` in all blocks that decode.
size_t countEntries(const TQX_TypeLayout& type, int row, const std::vector<Bytes>& blocks)
{
    const TQX_FieldLayout& field = type.fields[row];
    size_t count = 0;
    AnyRecord record;
    for (const Bytes& block : blocks) {
        if (record.decode(block) > 0 && TQX_isPresent(type, field, record.get()))
            count += TQX_elementCount(type, field, record.get());
    }
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 3)
        return 0;
    const TQX_TypeLayout& type = *mainTypes()[korcg_load_u16(data) % mainTypes().size()];
    const Values values = data[2] % 2 == 0 ? Values::Shown : Values::Stored;
    const std::vector<Bytes> blocks = blocksOf(type, data + 3, size - 3);

    std::vector<std::string> expected;
    std::vector<int32_t> refused;
    AnyRecord record;
    for (size_t i = 0; i < blocks.size(); ++i) {
        const int32_t result = record.decode(blocks[i]);
        if (result > 0) {
            expected.push_back("{time=" + expectedTime(record.get()) +
                               ",offset=" + std::to_string(100 + i) + "," +
                               expectedFields(type, record.get(), values) + "}");
        } else {
            refused.push_back(result);
        }
    }
    tqx::TableOptions options;
    options.batchRows = 3;
    options.isScaled = options.isNamed = options.hidesDoNotUse = values == Values::Shown;
    const WholeTable table(type, options, blocks);
    check(table.rows() == expected, type, "other rows");
    check(table.refused == refused, type, "other codes");

    for (int row = 0; row < type.fieldCount; ++row) {
        if (type.fields[row].recordType == 0)
            continue;
        options.rows = type.fields[row].name;
        const WholeTable subBlocks(type, options, blocks);
        check(subBlocks.refused == refused, type, "other codes with rows of sub-blocks");
        check(subBlocks.rows().size() == countEntries(type, row, blocks), type,
              "another number of rows of sub-blocks");
    }
    return 0;
}
