// Decoding and encoding return every code that they can, and no other.

#include "Ancestors.h"
#include "FieldRoles.h"
#include "PossibleCodes.h"
#include "RandomBlock.h"
#include "RecordFiller.h"
#include "RecordGuard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace
{

using namespace Kor::MessageApi;

using Codes = std::set<int32_t>;

constexpr int mostRounds = 1000;

std::string names(const Codes& codes, const Codes& without)
{
    std::string text;
    for (const int32_t code : codes) {
        if (without.count(code) == 0)
            text += std::string(" ") + TQX_errorName(code);
    }
    return text;
}

bool holdsAll(const Codes& codes, const Codes& wanted)
{
    return std::includes(codes.begin(), codes.end(), wanted.begin(), wanted.end());
}

void decodeOnce(const TQX_TypeLayout& type, const std::vector<uint8_t>& bytes, size_t size,
                unsigned revision, uint32_t offset, uint32_t length, Codes& codes)
{
    Ancestors ancestors(type, revision, 0);
    AnyRecord record;
    const int32_t result = decodeAlone(type, nullptr, bytes.data(), static_cast<uint16_t>(size),
                                       &offset, ancestors.father(), length, record.get());
    if (result < 0)
        codes.insert(result);
}

void decodeInAllWays(const TQX_TypeLayout& type, int round, std::mt19937_64& random, Codes& codes)
{
    BlockOptions options;
    options.revision = static_cast<unsigned>(round) % 4;
    options.overrun = round % 4 == 3;
    const std::vector<uint8_t> bytes = type.linksToMain == 0 ? randomBlock(type, options, random)
                                                             : randomEntry(type, options, random);
    const size_t step = bytes.size() / 1000 + 1;
    for (size_t size = 0; size <= bytes.size(); size += step)
        decodeOnce(type, bytes, size, options.revision, 0, 0, codes);
    // The end, where nothing may be left out.
    for (size_t size = bytes.size() - std::min<size_t>(bytes.size(), 16); size <= bytes.size();
         ++size)
        decodeOnce(type, bytes, size, options.revision, 0, 0, codes);
    decodeOnce(type, bytes, bytes.size(), options.revision, 0, 1, codes);
    std::vector<uint8_t> shifted(1);
    shifted.insert(shifted.end(), bytes.begin(), bytes.end());
    decodeOnce(type, shifted, shifted.size(), options.revision, 8, 0xffffffffU, codes);
}

// Tries each type until every possible code has occurred, and compares all that occurred. Returns
// them.
template<typename Wanted, typename Try>
Codes codesOf(const std::vector<const TQX_TypeLayout*>& types, Direction direction, Wanted wantedOf,
              Try tryInAllWays)
{
    std::mt19937_64 random(1);
    Codes found;
    for (const TQX_TypeLayout* type : types) {
        const Codes wanted = wantedOf(*type, direction);
        for (int round = 0; round < mostRounds && (round < 5 || !holdsAll(found, wanted)); ++round)
            tryInAllWays(*type, round, random, found);
    }
    Codes possible;
    for (const TQX_TypeLayout* type : allTypes())
        possible.merge(possibleCodes(*type, direction));
    EXPECT_EQ(names(found, possible), "");
    EXPECT_EQ(names(possible, found), "");
    return found;
}

TEST(Codes, OfDecoding)
{
    const Codes found = codesOf(allTypes(), Direction::Decoding, possibleCodes, decodeInAllWays);
    for (const int32_t code : found) {
        const std::string name = TQX_errorName(code);
        EXPECT_EQ(name.find("_DISABLED"), std::string::npos);
        EXPECT_EQ(name.find("_CRC_CHECKSUM"), std::string::npos);
    }
}

// The codes of a block and of all that it holds.
Codes possibleCodesBelow(const TQX_TypeLayout& type, Direction direction)
{
    Codes codes = possibleCodes(type, direction);
    for (int row = 0; row < type.fieldCount; ++row) {
        if (holdsEntries(type.fields[row]))
            codes.merge(possibleCodesBelow(*TQX_layout(type.fields[row].recordType), direction));
    }
    return codes;
}

void encodeInAllWays(const TQX_TypeLayout& type, int round, std::mt19937_64& random, Codes& codes)
{
    AnyRecord record;
    type.init(record.get());
    FillOptions options;
    // Random counts mostly exceed the room for what is counted.
    options.trustSource = round % 5 == 4;
    fillRecord(type, record.get(), static_cast<unsigned>(round) % 4, options,
               [&random](unsigned) { return random(); });
    std::vector<uint8_t> buffer(65535);
    int32_t result = -1;
    for (size_t size = options.trustSource ? 65535 : 0; result < 0 && size <= 65535; ++size) {
        result = type.encode(buffer.data(), static_cast<uint16_t>(size), record.get());
        if (result < 0)
            codes.insert(result);
    }
    EXPECT_TRUE(result >= 0 || options.trustSource) << type.name;
}

TEST(Codes, OfEncoding)
{
    codesOf(mainTypes(), Direction::Encoding, possibleCodesBelow, encodeInAllWays);
}

} // namespace
