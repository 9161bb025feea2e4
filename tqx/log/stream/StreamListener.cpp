#include "tqx/log/stream/StreamListener.h"

#include <fmt/format.h>

namespace tqx
{

namespace
{

std::string plural(uint64_t count, const char* one, const char* many)
{
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

} // namespace

std::string StreamGap::describe() const
{
    std::string why = plural(bytes, "byte belongs", "bytes belong") + " to no block";
    if (crcErrors != 0)
        why += ", " + plural(crcErrors, "bad checksum", "bad checksums");
    if (invalidLengths != 0)
        why += ", " + plural(invalidLengths, "invalid length", "invalid lengths");
    if (isCut)
        why += ", the input ends inside a block";
    return why;
}

StreamListener::~StreamListener() = default;

void StreamListener::onNeighbour(const std::string&, const Neighbour&) {}

} // namespace tqx
