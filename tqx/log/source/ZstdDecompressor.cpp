#include "tqx/log/source/ZstdDecompressor.h"

#include "tqx/log/DataError.h"

#include <zstd.h>

namespace tqx
{

struct ZstdDecompressor::State {
    ZSTD_DStream* stream;
    bool isBetween; ///< a frame has ended and nothing of another one has come
};

ZstdDecompressor::ZstdDecompressor()
    : m_state(std::make_unique<State>(State{ZSTD_createDStream(), true}))
{
    if (m_state->stream == nullptr)
        throw DataError("no memory to decompress with");
}

ZstdDecompressor::~ZstdDecompressor()
{
    ZSTD_freeDStream(m_state->stream);
}

Decompressor::Outcome ZstdDecompressor::decompress(Step& step)
{
    ZSTD_inBuffer input = {step.input, step.inputSize, 0};
    ZSTD_outBuffer output = {step.output, step.outputSize, 0};
    bool isGoing = true;
    bool isBad = false;
    while (isGoing) {
        const size_t before = input.pos + output.pos;
        const size_t result = ZSTD_decompressStream(m_state->stream, &output, &input);
        const bool hasMoved = input.pos + output.pos != before;
        isBad = ZSTD_isError(result) != 0;
        // Asked without input, it waits for another frame.
        if (hasMoved)
            m_state->isBetween = result == 0;
        isGoing = !isBad && hasMoved && output.pos < output.size && input.pos < input.size &&
                  !(m_stopsAtPoints && m_state->isBetween);
    }
    step.input += input.pos;
    step.inputSize -= input.pos;
    step.output += output.pos;
    step.outputSize -= output.pos;
    if (isBad)
        return Outcome::Damaged;
    return m_state->isBetween ? Outcome::Complete : Outcome::Going;
}

bool ZstdDecompressor::getPoint(AccessPoint& point) const
{
    point.bits = 0;
    point.window.clear();
    return m_state->isBetween;
}

bool ZstdDecompressor::restart(const AccessPoint& point, uint8_t)
{
    m_state->isBetween = true;
    return point.bits == 0 && point.window.empty() &&
           ZSTD_isError(ZSTD_initDStream(m_state->stream)) == 0;
}

} // namespace tqx
