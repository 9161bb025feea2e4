#include "options/InputStream.h"

#include "TQX_codec.h"

#include <fmt/format.h>

#include <utility>

namespace tqx::tool
{

InputStream::InputStream(std::vector<std::string> inputs, bool isSilent, bool isVerbose)
    : InputSequence(std::move(inputs), isSilent),
      BlockStream(static_cast<ByteSource&>(*this), static_cast<StreamListener*>(this)),
      quiet(isSilent), limit(isVerbose)
{
}

void InputStream::onGap(const StreamGap& found)
{
    if (gapListener)
        return gapListener(found);
    if (quiet)
        return;
    if (limit.admits())
        return words::sayAt(found.file, found.offset, found.describe());
    others.bytes += found.bytes;
    others.crcErrors += found.crcErrors;
    others.invalidLengths += found.invalidLengths;
    others.isCut = others.isCut || found.isCut;
}

void InputStream::onNeighbour(const std::string&, const Neighbour& neighbour)
{
    if (neighbourListener)
        neighbourListener(neighbour);
}

void InputStream::onUndecodable(const std::string& file, const Block& block, int32_t code)
{
    if (quiet || gapListener)
        return;
    if (limit.admits())
        return words::sayAt(file, block.offset,
                            fmt::format("{}: {} ({})", describeBlock(block.getNumber()),
                                        TQX_errorName(code), code));
    ++otherUndecodable;
}

void InputStream::sumUpDamage()
{
    if (limit.getOthers() == 0)
        return;
    std::string text = fmt::format("{} more damaged {}: ", limit.getOthers(),
                                   limit.getOthers() == 1 ? "place" : "places");
    if (others.bytes != 0)
        text += others.describe();
    if (otherUndecodable != 0)
        text += fmt::format("{}{} {} not decode", others.bytes != 0 ? ", " : "", otherUndecodable,
                            otherUndecodable == 1 ? "block does" : "blocks do");
    words::say(text + " (-v names them all)");
}

} // namespace tqx::tool
