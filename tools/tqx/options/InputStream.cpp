#include "options/InputStream.h"

#include "io/Words.h"

#include "TQX_codec.h"

#include <fmt/format.h>

#include <utility>

namespace tqx::tool
{

InputStream::InputStream(std::vector<std::string> inputs, bool isSilent)
    : InputSequence(std::move(inputs), isSilent),
      BlockStream(static_cast<ByteSource&>(*this), static_cast<StreamListener*>(this)),
      quiet(isSilent)
{
}

void InputStream::onGap(const StreamGap& found)
{
    if (gapListener)
        gapListener(found);
    else if (!quiet)
        words::sayAt(found.file, found.offset, found.describe());
}

void InputStream::onNeighbour(const std::string&, const Neighbour& neighbour)
{
    if (neighbourListener)
        neighbourListener(neighbour);
}

void InputStream::onUndecodable(const std::string& file, const Block& block, int32_t code)
{
    if (!quiet && !gapListener)
        words::sayAt(file, block.offset,
                     fmt::format("{}: {} ({})", describeBlock(block.getNumber()),
                                 TQX_errorName(code), code));
}

} // namespace tqx::tool
