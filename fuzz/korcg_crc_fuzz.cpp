// Any bytes after any start value: all methods give the same checksum, and the checksums of two
// parts combine to that of the whole.

#include "korcg_crc.h"
#include "korcg_load.h"

#include <cstdlib>
#include <vector>

namespace
{

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

} // namespace

// Two bytes of start value, two that choose the length of the second part, then the message.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 4) {
        return 0;
    }
    const uint16_t start = korcg_load_u16(data);
    // A copy of its own, so that a sanitizer sees reads beyond either end.
    const std::vector<uint8_t> message(data + 4, data + size);
    const size_t second = korcg_load_u16(data + 2) % (message.size() + 1);
    const size_t first = message.size() - second;

    const korcg_CrcMethod_s* methods;
    const size_t count = korcg_crc16_methods(&methods);
    const uint16_t expected = methods[0].run(message.data(), message.size(), start);
    for (size_t i = 1; i < count; ++i) {
        require(methods[i].run(message.data(), message.size(), start) == expected);
    }
    require(korcg_crc16_bytes(message.data(), message.size(), start) == expected);

    const uint16_t head = korcg_crc16_bytes(message.data(), first, start);
    const uint16_t tail = korcg_crc16_bytes(message.data() + first, second);
    require(korcg_crc16_combine(head, tail, second) == expected);
    require(korcg_crc16_combine(head, expected, second) == tail);
    return 0;
}
