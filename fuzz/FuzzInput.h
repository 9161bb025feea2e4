#pragma once

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "korcg_crc.h"
#include "korcg_load.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// The bytes of a fuzzer's input, from the front; zeros once they are used up.
class FuzzInput
{
public:
    FuzzInput(const uint8_t* bytes, size_t count) : m_data(bytes), m_size(count) {}

    bool isEmpty() const { return m_size == 0; }

    uint64_t next(unsigned bytes)
    {
        uint64_t value = 0;
        for (unsigned i = 0; i < bytes && m_size != 0; ++i, ++m_data, --m_size)
            value |= uint64_t{*m_data} << (8 * i);
        return value;
    }

    /// A number below `end`, which is not 0.
    size_t below(size_t end) { return static_cast<size_t>(next(2) % end); }

    std::string rest()
    {
        const std::string text(reinterpret_cast<const char*>(m_data), m_size);
        m_data += m_size;
        m_size = 0;
        return text;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
};

/// A random block of a type that the input chooses, with up to `mostChanges` changed bytes and a
/// correct checksum.
inline std::vector<uint8_t> fuzzBlock(FuzzInput& input, unsigned mostChanges = 8)
{
    const auto& types = mainTypes();
    const Kor::MessageApi::TQX_TypeLayout& type = *types[input.below(types.size())];
    std::mt19937_64 random(input.next(2));
    const auto shape = static_cast<unsigned>(input.next(1));
    BlockOptions options;
    options.revision = shape % (type.highestRevision + 1U);
    options.largestCount = shape / 8 % 6;
    options.extraBytes = shape >= 0xf0 ? 4 : 0;
    std::vector<uint8_t> block = randomBlock(type, options, random);
    // The header up to its length stays.
    constexpr size_t header = 8;
    const auto changes = static_cast<unsigned>(input.next(1) % (mostChanges + 1));
    for (unsigned i = 0; i < changes && block.size() > header; ++i) {
        const size_t at = header + input.below(block.size() - header);
        block[at] = static_cast<uint8_t>(input.next(1));
    }
    korcg_store_u16(block.data() + 2, korcg_crc16_bytes(block.data() + 4, block.size() - 4));
    return block;
}

/// Whether a text that goes to a terminal holds control characters, ends of lines aside.
inline bool hasControls(std::string_view text)
{
    for (size_t i = 0; i < text.size(); ++i) {
        const auto code = static_cast<uint8_t>(text[i]);
        const auto after = static_cast<uint8_t>(i + 1 < text.size() ? text[i + 1] : 0);
        if ((code < 0x20 && code != '\n') || code == 0x7f ||
            (code == 0xc2 && after >= 0x80 && after < 0xa0))
            return true;
    }
    return false;
}
