#include "tqx/log/stream/Block.h"

#include "TQX_codec.h"
#include "korcg_load.h"

#include <fmt/format.h>

namespace tqx
{

std::string describeBlock(uint16_t number, const Schema& schema)
{
    const Kor::MessageApi::TQX_TypeLayout* type = schema.getBlockType(number);
    return type ? describeBlock(*type) : fmt::format("block {}", number);
}

std::string describeBlock(const Kor::MessageApi::TQX_TypeLayout& type)
{
    return fmt::format("{} ({})", type.name, type.blockNumber);
}

std::optional<GnssMillis> Block::getTime() const
{
    constexpr size_t headerSize = 14;
    if (size < headerSize)
        return std::nullopt;
    return gnssMillis(korcg_load_u32(data + 8), korcg_load_u16(data + 12));
}

} // namespace tqx
