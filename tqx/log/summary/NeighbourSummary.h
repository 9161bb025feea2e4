#pragma once

#include "tqx/log/mixed/Neighbour.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <map>
#include <string>

namespace tqx
{

/// What came between the blocks of a stream, gathered one by one.
class TQX_LOG_API NeighbourSummary
{
public:
    void add(const Neighbour& neighbour);

    bool isEmpty() const { return sentences.empty() && frames.empty() && text.count == 0; }

    /// NMEA sentences by address. Memory is bounded: those of further addresses than the first
    /// thousand count under "".
    const std::map<std::string, NeighbourCount, std::less<>>& getSentences() const
    {
        return sentences;
    }

    /// RTCM 3 frames by message number.
    const std::map<uint16_t, NeighbourCount>& getFrames() const { return frames; }

    /// Lines of text and prompts.
    const NeighbourCount& getText() const { return text; }

private:
    std::map<std::string, NeighbourCount, std::less<>> sentences;
    std::map<uint16_t, NeighbourCount> frames;
    NeighbourCount text;
};

} // namespace tqx
