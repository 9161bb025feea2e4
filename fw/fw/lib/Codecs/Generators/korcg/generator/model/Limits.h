#pragma once

namespace korcg::generator
{

constexpr int lastBlockNumber = 8191; ///< 13 bits of the ID
constexpr int largestBlock = 65535;   ///< bytes, the largest Length
constexpr int latestEdition = 255;    ///< what a row of the layout can say
constexpr int laterTypes = 640; ///< record types of later editions that a context has bits for

} // namespace korcg::generator
