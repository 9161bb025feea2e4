#include "options/InputStream.h"

#include "TQX_codec.h"

#include <fmt/format.h>

#include <utility>

namespace tqx::tool
{

InputStream::InputStream(std::vector<std::string> inputs, bool isSilent, bool isVerbose)
    : InputSequence(std::move(inputs), isSilent),
      BlockStream(static_cast<ByteSource&>(*this), static_cast<StreamListener*>(this)),
      m_quiet(isSilent), m_limit(isVerbose)
{
}

void InputStream::useIndex(std::unique_ptr<IndexedLog> log, const BlockQuery& query)
{
    const Index& index = log->getIndex();
    const RandomAccess& content = log->getContent();
    StreamListener* listener = this;
    IndexedBlocks blocks = log->find(query);
    // An aggregate that cannot be moved.
    // NOLINTNEXTLINE(modernize-make-unique)
    m_indexed.reset(new Indexed{std::move(log), std::move(blocks), {index, content, listener}});
    passOver();
    setName(getNames().front());
}

bool InputStream::next(Block& block)
{
    if (!m_indexed)
        return BlockStream::next(block);
    if (isInterrupted())
        return false;
    bool hasBlock = false;
    try {
        hasBlock = m_indexed->blocks.next(block);
        if (hasBlock) {
            setContext(m_indexed->blocks.getContext());
            m_indexed->between.reportBefore(block.offset);
        } else {
            m_indexed->between.reportAll();
        }
    } catch (const SourceError& error) {
        fail(error);
        hasBlock = false;
    }
    setCounts(m_indexed->between.getCounts());
    return hasBlock;
}

void InputStream::onGap(const StreamGap& found)
{
    if (m_gapListener)
        return m_gapListener(found);
    if (m_quiet)
        return;
    if (m_limit.admits())
        return words::sayAt(found.file, found.offset, found.describe());
    m_others.bytes += found.bytes;
    m_others.crcErrors += found.crcErrors;
    m_others.invalidLengths += found.invalidLengths;
    m_others.isCut = m_others.isCut || found.isCut;
}

void InputStream::onNeighbour(const std::string&, const Neighbour& neighbour)
{
    if (m_neighbourListener)
        m_neighbourListener(neighbour);
}

void InputStream::onUndecodable(const std::string& file, const Block& block, int32_t code)
{
    if (m_quiet || m_gapListener)
        return;
    if (m_limit.admits()) {
        return words::sayAt(file, block.offset,
                            fmt::format("{}: {} ({})",
                                        describeBlock(block.getNumber(), getSchema()),
                                        getSchema().getErrorName(code), code));
    }
    ++m_otherUndecodable;
}

void InputStream::sumUpDamage()
{
    if (m_limit.getOthers() == 0)
        return;
    std::string text = fmt::format("{} more damaged {}: ", m_limit.getOthers(),
                                   m_limit.getOthers() == 1 ? "place" : "places");
    if (m_others.bytes != 0)
        text += m_others.describe();
    if (m_otherUndecodable != 0) {
        text +=
            fmt::format("{}{} {} not decode", m_others.bytes != 0 ? ", " : "", m_otherUndecodable,
                        m_otherUndecodable == 1 ? "block does" : "blocks do");
    }
    words::say(text + " (-v names them all)");
}

} // namespace tqx::tool
