#pragma once

namespace korcg::generator
{

// Record-type numbers: types without sub-blocks come first, then those whose sub-blocks have none,
// then those whose sub-blocks have some.
constexpr int lastLeafRecord = 293;
constexpr int lastOwnerRecord = 368;
constexpr int lastRecord = 382;

constexpr int lastBlockNumber = 8191; ///< 13 bits of the ID
constexpr int largestBlock = 65535;   ///< bytes, what Length can tell

// Codes. Those of a complete format never move, so that a code means the same in every build.
constexpr int invalidCrcCode = -1;
constexpr int firstTypeCode = -2;
constexpr int bufferOverflowAfterRecord = 15; ///< the general overflow code stands behind its run
constexpr int bufferOverflowCode = -151;
constexpr int firstDisabledCode = -5829;
constexpr int invalidMessageCode = -6072;
constexpr int endOfInputCode = -6073;
constexpr int codeCount = 6073;

} // namespace korcg::generator
