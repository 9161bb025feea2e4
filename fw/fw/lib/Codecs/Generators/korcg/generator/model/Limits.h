#pragma once

namespace korcg::generator
{

constexpr int lastBlockNumber = 8191; ///< 13 bits of the ID
constexpr int largestBlock = 65535;   ///< bytes, the largest Length
constexpr int latestEdition = 254;    ///< what a row of the layout can say, but for the next
constexpr int addedEdition = 255;     ///< what it says of types that others added to the build
constexpr int addedTypes = 160;       ///< of the following, how many are for these
constexpr int laterTypes = 640; ///< record types of later editions that a context has bits for

} // namespace korcg::generator
