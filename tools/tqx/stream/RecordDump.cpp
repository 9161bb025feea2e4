#include "RecordDump.h"

namespace tool
{

void RecordDump::take(BlockStream& stream, const Block& block)
{
    constexpr int32_t unknownNumber = -6072;
    const int32_t result = records.decode(block);
    if (result > 0)
        return write(block, records);
    if (result != unknownNumber)
        stream.reportUndecodable(block, result);
    writeOther(block);
}

} // namespace tool
