#include "tqx/log/source/GzipSource.h"

#include "tqx/log/DataError.h"

#include <zlib.h>

#include <algorithm>
#include <utility>

namespace tqx
{

struct GzipSource::State {
    z_stream stream = {};
    bool isBetween = false; ///< a member has ended and nothing of another one has come
    bool isPadding = false;
};

GzipSource::GzipSource(std::unique_ptr<ByteSource> compressed)
    : CompressedSource(std::move(compressed), "gzip"), state(std::make_unique<State>())
{
    constexpr int gzipOnly = 16;
    if (inflateInit2(&state->stream, MAX_WBITS + gzipOnly) != Z_OK)
        throw SourceError(placeOf(0).file + ": no memory to decompress with");
}

GzipSource::~GzipSource()
{
    inflateEnd(&state->stream);
}

CompressedSource::Outcome GzipSource::decompress(Step& step)
{
    z_stream& stream = state->stream;
    while (step.inputSize != 0 || !state->isBetween) {
        if (state->isBetween) {
            if (*step.input == 0)
                state->isPadding = true;
            else if (state->isPadding || *step.input != 0x1f)
                return Outcome::Exhausted;
            if (state->isPadding) {
                ++step.input;
                --step.inputSize;
                continue;
            }
            inflateReset(&stream);
            state->isBetween = false;
        }
        constexpr size_t most = 1 << 30; // what zlib counts with has 32 bits
        const auto input = static_cast<uInt>(std::min(step.inputSize, most));
        const auto output = static_cast<uInt>(std::min(step.outputSize, most));
        stream.next_in = const_cast<Bytef*>(step.input);
        stream.avail_in = input;
        stream.next_out = step.output;
        stream.avail_out = output;
        const int result = inflate(&stream, Z_NO_FLUSH);
        step.input += input - stream.avail_in;
        step.inputSize -= input - stream.avail_in;
        step.output += output - stream.avail_out;
        step.outputSize -= output - stream.avail_out;
        if (result == Z_STREAM_END)
            state->isBetween = true;
        else if (result == Z_BUF_ERROR || step.outputSize == 0)
            return Outcome::Going;
        else if (result != Z_OK)
            return Outcome::Damaged;
        if (step.outputSize == 0)
            return state->isBetween ? Outcome::Complete : Outcome::Going;
    }
    return Outcome::Complete;
}

} // namespace tqx
