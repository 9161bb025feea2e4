#include "tqx/log/source/GzipDecompressor.h"

#include "tqx/log/DataError.h"

#include <zlib.h>

#include <algorithm>
#include <vector>

namespace tqx
{

namespace
{

constexpr int gzipOnly = MAX_WBITS + 16;
constexpr int withoutHeader = -MAX_WBITS;
constexpr size_t trailerSize = 8;
constexpr size_t longestWindow = size_t{1} << MAX_WBITS;

} // namespace

struct GzipDecompressor::State {
    z_stream stream = {};
    bool isBetween = false; ///< a member has ended and nothing of another one has come
    bool isPadding = false; ///< zeros follow the last member
    bool isPartial = false; ///< only the end of the current member is seen, without its header
    size_t trailerLeft = 0; ///< bytes of such a member's trailer that are still to come
    bool isAtBlock = false; ///< a block of a member has ended and another one follows
};

GzipDecompressor::GzipDecompressor() : m_state(std::make_unique<State>())
{
    if (inflateInit2(&m_state->stream, gzipOnly) != Z_OK)
        throw DataError("no memory to decompress with");
}

GzipDecompressor::~GzipDecompressor()
{
    inflateEnd(&m_state->stream);
}

Decompressor::Outcome GzipDecompressor::decompress(Step& step)
{
    while (step.inputSize != 0 || !m_state->isBetween) {
        Outcome outcome = Outcome::Going;
        if (m_state->isBetween) {
            if (beginMember(step, outcome))
                continue;
            if (outcome == Outcome::Exhausted)
                return outcome;
        }
        outcome = decompressMember(step);
        if (outcome != Outcome::Complete)
            return outcome;
        if (step.outputSize == 0 || m_stopsAtPoints)
            break;
    }
    return Outcome::Complete;
}

/// True when a byte between members was skipped, false when a member begins or none can.
bool GzipDecompressor::beginMember(Step& step, Outcome& outcome)
{
    const bool isPassed = m_state->trailerLeft != 0 || *step.input == 0;
    if (isPassed) {
        if (m_state->trailerLeft != 0) {
            --m_state->trailerLeft;
        } else {
            m_state->isPadding = true;
        }
        ++step.input;
        --step.inputSize;
        return true;
    }
    if (m_state->isPadding || *step.input != 0x1f) {
        outcome = Outcome::Exhausted;
        return false;
    }
    inflateReset2(&m_state->stream, gzipOnly);
    m_state->isBetween = false;
    m_state->isPartial = false;
    return false;
}

/// Complete at the end of a member.
Decompressor::Outcome GzipDecompressor::decompressMember(Step& step)
{
    constexpr size_t most = 1 << 30; // zlib counts with 32 bits
    z_stream& stream = m_state->stream;
    for (;;) {
        const auto input = static_cast<uInt>(std::min(step.inputSize, most));
        const auto output = static_cast<uInt>(std::min(step.outputSize, most));
        stream.next_in = const_cast<Bytef*>(step.input);
        stream.avail_in = input;
        stream.next_out = step.output;
        stream.avail_out = output;
        const int result = inflate(&stream, m_stopsAtPoints ? Z_BLOCK : Z_NO_FLUSH);
        step.input += input - stream.avail_in;
        step.inputSize -= input - stream.avail_in;
        step.output += output - stream.avail_out;
        step.outputSize -= output - stream.avail_out;
        constexpr int endOfBlock = 128;
        constexpr int inLastBlock = 64;
        m_state->isAtBlock =
            result == Z_OK && (stream.data_type & (endOfBlock | inLastBlock)) == endOfBlock;
        if (result == Z_STREAM_END) {
            m_state->isBetween = true;
            m_state->trailerLeft = m_state->isPartial ? trailerSize : 0;
            return Outcome::Complete;
        }
        if (result == Z_BUF_ERROR || step.outputSize == 0 ||
            (m_state->isAtBlock && m_stopsAtPoints))
            return Outcome::Going;
        if (result != Z_OK)
            return Outcome::Damaged;
    }
}

bool GzipDecompressor::getPoint(AccessPoint& point) const
{
    if (!m_state->isAtBlock)
        return false;
    uInt size = longestWindow;
    std::vector<uint8_t> window(longestWindow);
    if (inflateGetDictionary(&m_state->stream, window.data(), &size) != Z_OK)
        return false;
    uLongf packedSize = compressBound(size);
    point.window.resize(packedSize);
    if (compress2(point.window.data(), &packedSize, window.data(), size, Z_BEST_SPEED) != Z_OK)
        return false;
    point.window.resize(packedSize);
    point.bits = static_cast<uint8_t>(m_state->stream.data_type & 7);
    return true;
}

bool GzipDecompressor::restart(const AccessPoint& point, uint8_t byteBefore)
{
    z_stream& stream = m_state->stream;
    m_state->isBetween = false;
    m_state->isPadding = false;
    m_state->isAtBlock = false;
    m_state->trailerLeft = 0;
    m_state->isPartial = point.packed != 0;
    if (!m_state->isPartial)
        return inflateReset2(&stream, gzipOnly) == Z_OK;
    uLongf size = longestWindow;
    std::vector<uint8_t> window(longestWindow);
    if (point.bits > 7 || uncompress(window.data(), &size, point.window.data(),
                                     static_cast<uLong>(point.window.size())) != Z_OK)
        return false;
    if (inflateReset2(&stream, withoutHeader) != Z_OK)
        return false;
    if (point.bits != 0 &&
        inflatePrime(&stream, point.bits, byteBefore >> (8 - point.bits)) != Z_OK)
        return false;
    return size == 0 ||
           inflateSetDictionary(&stream, window.data(), static_cast<uInt>(size)) == Z_OK;
}

} // namespace tqx
