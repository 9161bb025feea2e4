#include "output/RecordDump.h"

namespace tqx::tool
{

void RecordDump::take(BlockStream& stream, const Block& block)
{
    const int32_t result = m_records.decode(block);
    if (result > 0)
        return write(block, m_records);
    if (result != unknownNumber)
        stream.reportUndecodable(block, result);
    writeOther(block);
}

} // namespace tqx::tool
