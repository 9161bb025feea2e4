#include "tqx/log/source/ZstdSource.h"

#include "tqx/log/DataError.h"

#include <zstd.h>

#include <utility>

namespace tqx
{

struct ZstdSource::State {
    ZSTD_DStream* stream;
    bool isBetween; ///< a frame has ended and nothing of another one has come
};

ZstdSource::ZstdSource(std::unique_ptr<ByteSource> compressed)
    : CompressedSource(std::move(compressed), "zstd"),
      state(std::make_unique<State>(State{ZSTD_createDStream(), true}))
{
    if (state->stream == nullptr)
        throw SourceError(placeOf(0).file + ": no memory to decompress with");
}

ZstdSource::~ZstdSource()
{
    ZSTD_freeDStream(state->stream);
}

CompressedSource::Outcome ZstdSource::decompress(Step& step)
{
    ZSTD_inBuffer input = {step.input, step.inputSize, 0};
    ZSTD_outBuffer output = {step.output, step.outputSize, 0};
    size_t result = 0;
    size_t before = 0;
    do {
        before = input.pos + output.pos;
        result = ZSTD_decompressStream(state->stream, &output, &input);
    } while (ZSTD_isError(result) == 0 && output.pos < output.size &&
             input.pos + output.pos != before && input.pos < input.size);
    step.input += input.pos;
    step.inputSize -= input.pos;
    step.output += output.pos;
    step.outputSize -= output.pos;
    if (ZSTD_isError(result) != 0)
        return Outcome::Damaged;
    // Asked without input, it waits for another frame.
    if (input.pos + output.pos != 0)
        state->isBetween = result == 0;
    return state->isBetween ? Outcome::Complete : Outcome::Going;
}

} // namespace tqx
