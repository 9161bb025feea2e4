// Any bytes explained at any offset: it ends, and what it shows is clean.

#include "FixedChecksums.h"
#include "FuzzInput.h"
#include "tqx/log/DataError.h"
#include "tqx/log/inspect/BlockLocator.h"
#include "tqx/log/inspect/Explanation.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace
{

/// Memory that is allocated in small pieces.
class Bytes : public tqx::ByteSource
{
public:
    Bytes(std::vector<uint8_t> content, size_t largestPiece)
        : m_bytes(std::move(content)), m_piece(largestPiece)
    {
    }

    size_t read(uint8_t* to, size_t capacity) override
    {
        const size_t count = std::min({capacity, m_piece, m_bytes.size() - m_position});
        if (count != 0)
            std::memcpy(to, m_bytes.data() + m_position, count);
        m_position += count;
        return count;
    }

    Place placeOf(uint64_t offset) const override { return {m_name, offset}; }

private:
    std::vector<uint8_t> m_bytes;
    size_t m_piece;
    size_t m_position = 0;
    std::string m_name = "\x1b[2J\xff";
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput input(data, size);
    const uint64_t offset = input.next(2);
    const size_t piece = 1 + input.below(300);
    std::vector<uint8_t> bytes;
    for (auto blocks = static_cast<unsigned>(input.next(1) % 4); blocks != 0; --blocks) {
        const std::vector<uint8_t> block = fuzzBlock(input);
        bytes.insert(bytes.end(), block.begin(), block.end());
    }
    const std::string rest = input.rest();
    const std::vector<uint8_t> others =
        withChecksums(reinterpret_cast<const uint8_t*>(rest.data()), rest.size());
    bytes.insert(bytes.end(), others.begin(), others.end());
    Bytes source(bytes, piece);
    tqx::Buffer out;
    try {
        const tqx::BlockLocation location = tqx::locateBlock(source, offset);
        if (location.hasSync()) {
            tqx::appendExplanation(out, tqx::inspect(location));
        } else if (tqx::describeNoBlock(location).empty()) {
            std::abort();
        }
    } catch (const tqx::SourceError&) {
        if (offset < bytes.size())
            std::abort();
    }
    if (hasControls(out.view()))
        std::abort();
    return 0;
}
