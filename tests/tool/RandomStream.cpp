#include "RandomStream.h"

#include "FieldRoles.h"
#include "RandomBlock.h"

#include <algorithm>
#include <random>

std::string randomStream()
{
    std::mt19937_64 random(20);
    std::string stream;
    constexpr unsigned fewest = 3;
    for (const Kor::MessageApi::TQX_TypeLayout* type : mainTypes()) {
        const unsigned highest = type->highestRevision;
        for (unsigned i = 0; i < std::max(fewest, highest + 1); ++i) {
            const std::vector<uint8_t> block = randomBlock(*type, {std::min(i, highest)}, random);
            stream.append(block.begin(), block.end());
        }
    }
    return stream;
}
