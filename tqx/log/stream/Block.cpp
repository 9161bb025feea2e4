#include "tqx/log/stream/Block.h"

#include "TQX_codec.h"
#include "korcg_load.h"

#include <fmt/format.h>

namespace tqx
{

std::string describeBlock(uint16_t number)
{
    using namespace Kor::MessageApi;
    const TQX_TypeLayout* layout = TQX_layout(TQX_recordType(number));
    return layout ? fmt::format("{} ({})", layout->name, number) : fmt::format("block {}", number);
}

std::optional<GnssMillis> Block::getTime() const
{
    constexpr size_t headerSize = 14;
    if (size < headerSize)
        return std::nullopt;
    return gnssMillis(korcg_load_u32(data + 8), korcg_load_u16(data + 12));
}

} // namespace tqx
