#include "output/TrackOutput.h"

#include "tqx/gnss/position/Attitude.h"
#include "tqx/gnss/position/Dilution.h"

#include <cmath>
#include <utility>

namespace tqx::tool
{

TrackOutput::TrackOutput(Add add, const PositionSource* source, uint64_t limit, bool showsMissing)
    : m_add(std::move(add)), m_source(source), m_limit(limit), m_showsMissing(showsMissing)
{
}

/// After an epoch without its complement, the next one does not wait for it.
void TrackOutput::handOn(const Position& position)
{
    if (m_waiting) {
        addWaiting();
        m_waits = false;
    }
    if (m_waits && std::isnan(m_showsMissing ? position.hdop : position.heading)) {
        m_waiting = position;
    } else {
        add(position);
    }
}

void TrackOutput::addWaiting()
{
    if (const auto position = std::exchange(m_waiting, std::nullopt))
        add(*position);
}

bool TrackOutput::isComplement(uint16_t blockNumber) const
{
    return m_showsMissing ? hasDilution(blockNumber) : hasAttitude(blockNumber);
}

/// It follows the position, or all positions held back.
void TrackOutput::takeComplement(const void* record)
{
    const auto complete = m_showsMissing ? addDilution : addAttitude;
    m_waits = true;
    if (m_waiting && complete(record, *m_waiting))
        addWaiting();
    for (auto position = m_kept.rbegin(); position != m_kept.rend(); ++position) {
        if (!complete(record, *position))
            break;
    }
}

void TrackOutput::end(InputStream&)
{
    decide();
    addWaiting();
}

void TrackOutput::add(const Position& position)
{
    if (isDone())
        return;
    if (position.fix == Fix::None)
        ++m_missing;
    if (position.fix == Fix::None && !m_showsMissing) {
        m_add(position); // ends a line
        return;
    }
    ++m_count;
    m_add(position);
}

void TrackOutput::decide()
{
    if (!m_source)
        m_source = m_choice.best();
    for (const Position& position : std::exchange(m_kept, {})) {
        if (position.source == m_source)
            handOn(position);
    }
}

void TrackOutput::take(BlockStream& stream, const Block& block)
{
    constexpr GnssMillis wait = 10000;
    if (isComplement(block.getNumber())) {
        if (m_decoder.decode(block) > 0)
            takeComplement(m_decoder.getRecord());
        return;
    }
    const PositionSource* const source = positionSource(block.getNumber());
    if (!source || (m_source && source != m_source))
        return;
    if (const int32_t result = m_decoder.decode(block); result < 0)
        return stream.reportUndecodable(block, result);
    Position position;
    if (!readPosition(m_decoder.getRecord(), position))
        return;
    if (m_source)
        return handOn(position);
    m_choice.take(position);
    m_kept.push_back(position);
    if (position.time - m_kept.front().time >= wait && m_choice.best())
        decide();
}

} // namespace tqx::tool
