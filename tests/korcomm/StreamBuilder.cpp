#include "StreamBuilder.h"

#include <algorithm>

uint16_t slowChecksum(const uint8_t* bytes, size_t size)
{
    unsigned sum = 0;
    for (size_t i = 0; i < size; ++i) {
        sum ^= static_cast<unsigned>(bytes[i]) << 8;
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum << 1) ^ ((sum & 0x8000U) != 0 ? 0x1021U : 0U);
        }
    }
    return static_cast<uint16_t>(sum);
}

Bytes falseHeader(uint16_t length)
{
    return {'$',
            '@',
            0,
            0,
            0xa7,
            0x0f,
            static_cast<uint8_t>(length),
            static_cast<uint8_t>(length >> 8)};
}

Bytes block(const Bytes& body)
{
    Bytes bytes = falseHeader(static_cast<uint16_t>(body.size() + 8)) + body;
    const uint16_t sum = slowChecksum(bytes.data() + 4, bytes.size() - 4);
    bytes[2] = static_cast<uint8_t>(sum);
    bytes[3] = static_cast<uint8_t>(sum >> 8);
    return bytes;
}

Bytes blockOfSize(size_t size)
{
    Bytes body(size - 8);
    uint8_t value = 0;
    std::generate(body.begin(), body.end(), [&] { return ++value; });
    return block(body);
}

Bytes flipped(Bytes bytes, size_t index)
{
    bytes.at(index) ^= 1;
    return bytes;
}

Bytes cut(const Bytes& bytes, size_t size)
{
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes text(const std::string& characters)
{
    return {characters.begin(), characters.end()};
}

Bytes randomStream(std::mt19937& random)
{
    const auto below = [&](size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(random);
    };
    const auto noise = [&](size_t size) {
        // Few distinct characters, so that syncs and small lengths come up by themselves.
        const Bytes alphabet = text("$@$@ab") + Bytes{0, 0, 0, 1, 9, 16};
        Bytes bytes(size);
        for (uint8_t& byte : bytes) {
            byte = below(4) == 0 ? static_cast<uint8_t>(below(256)) : alphabet[below(12)];
        }
        return bytes;
    };
    Bytes stream;
    for (size_t parts = below(12); parts != 0; --parts) {
        const Bytes intact = block(noise(below(8) == 0 ? below(3000) : below(60)));
        switch (below(8)) {
        case 0:
            stream = stream + noise(below(40));
            break;
        case 1:
            stream =
                stream + falseHeader(static_cast<uint16_t>(below(below(2) == 0 ? 200 : 0xffff)));
            break;
        case 2:
            stream = stream + flipped(intact, below(intact.size()));
            break;
        case 3:
            stream = stream + cut(intact, below(intact.size()));
            break;
        case 4:
            stream = stream + block(noise(below(10)) + intact + noise(below(10)));
            break;
        case 5:
            stream = stream + flipped(block(noise(below(10)) + intact), below(8)) + intact;
            break;
        default:
            stream = stream + intact;
        }
    }
    return stream;
}
