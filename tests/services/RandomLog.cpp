#include "RandomLog.h"

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "TQX_Format.h"
#include "korcg_crc.h"
#include "korcg_load.h"

namespace
{

constexpr uint64_t millisPerWeek = Kor::MessageApi::TQX_millisPerWeek;

void setTime(uint8_t* block, uint64_t millis)
{
    korcg_store_u32(block + 8, static_cast<uint32_t>(millis % millisPerWeek));
    korcg_store_u16(block + 12, static_cast<uint16_t>(millis / millisPerWeek));
    korcg_store_u16(block + 2, korcg_crc16_bytes(block + 4, korcg_load_u16(block + 6) - size_t{4}));
}

} // namespace

RandomLog::RandomLog(int size)
{
    std::mt19937_64 random(1);
    BlockOptions options;
    while (m_bytes.size() < size) {
        options.revision = random() % 4;
        options.largestCount = 8;
        for (const auto* type : mainTypes()) {
            const std::vector<uint8_t> block = randomBlock(*type, options, random);
            const QByteArray bytes(reinterpret_cast<const char*>(block.data()),
                                   static_cast<int>(block.size()));
            const uint64_t damage = random() % 512;
            if (damage < 8) {
                m_bytes += "junk $";
            } else if (damage < 16) {
                m_bytes += QByteArray("$@\0\0\0\0\7\0", 8);
            } else if (damage < 24) {
                m_bytes += bytes;
                m_bytes[m_bytes.size() - 1] = static_cast<char>(bytes.back() ^ 1);
            } else if (damage < 25) {
                m_bytes += QByteArray("$@\0\0\0\0\xff\xff", 8);
            }
            m_blocks.push_back(m_bytes.size());
            m_bytes += bytes;
        }
    }
}

uint64_t RandomLog::timeOf(uint64_t start, size_t index) const
{
    return start + index / mainTypes().size() * millisPerRound;
}

void RandomLog::beginAt(uint64_t start)
{
    auto* bytes = reinterpret_cast<uint8_t*>(m_bytes.data());
    for (size_t i = 0; i < m_blocks.size(); ++i) {
        setTime(bytes + m_blocks[i], timeOf(start, i));
    }
}
