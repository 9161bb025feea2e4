#pragma once

#include "tqx/log/mixed/Neighbour.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <map>
#include <string>

namespace tqx
{

/// A summary of what is between the blocks of a stream, gathered one by one. Used by one thread at
/// a time.
class TQX_LOG_API NeighbourSummary
{
public:
    /// Counts a neighbour, whose bytes are not needed afterwards. Throws std::bad_alloc; the
    /// neighbour may then not have been counted.
    void add(const Neighbour& neighbour);

    bool isEmpty() const { return m_sentences.empty() && m_frames.empty() && m_text.count == 0; }

    /// NMEA sentences by address. Memory is bounded: all addresses after the first thousand count
    /// under "".
    const std::map<std::string, NeighbourCount, std::less<>>& getSentences() const
    {
        return m_sentences;
    }

    /// RTCM 3 frames by message number.
    const std::map<uint16_t, NeighbourCount>& getFrames() const { return m_frames; }

    /// Lines of text and prompts.
    const NeighbourCount& getText() const { return m_text; }

private:
    std::map<std::string, NeighbourCount, std::less<>> m_sentences;
    std::map<uint16_t, NeighbourCount> m_frames;
    NeighbourCount m_text;
};

} // namespace tqx
