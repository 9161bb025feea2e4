#pragma once

#include "tqx/log/source/ByteSource.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// The content of a compressed source, in constant memory. Offsets are those of the content. What
/// can be decompressed comes out before damage or a missing end is reported, with its offset in the
/// compressed file; from then on every read reports it again.
class CompressedSource : public ByteSource
{
public:
    size_t read(uint8_t* bytes, size_t capacity) override;
    Place placeOf(uint64_t offset) const override;
    bool isInterrupted() const override { return packed->isInterrupted(); }

protected:
    /// Takes over the compressed bytes. `method` is what messages call the format.
    CompressedSource(std::unique_ptr<ByteSource> compressed, const char* method);

    /// What there is to decompress and room for what comes of it. Each step moves the starts
    /// forward.
    struct Step {
        const uint8_t* input;
        size_t inputSize;
        uint8_t* output;
        size_t outputSize;
    };

    enum class Outcome {
        Going,     ///< more input or more room is needed
        Complete,  ///< all input so far is decompressed and the content may end here
        Damaged,   ///< the input is none of the format
        Exhausted, ///< the content has ended and what follows belongs to nothing
    };

    /// Decompresses as much as there is input and room for.
    virtual Outcome decompress(Step& step) = 0;

private:
    bool fill();

    std::unique_ptr<ByteSource> packed;
    const char* format;
    std::string name; ///< of the compressed file
    std::vector<uint8_t> buffer;
    size_t begin = 0;          ///< of what is still to be decompressed
    size_t end = 0;            ///< of what is in the buffer
    uint64_t packedOffset = 0; ///< in the compressed file of the buffer's end
    Outcome last = Outcome::Complete;
    bool wasFull = false; ///< the last step had no room left, so that more may be at hand
    std::string failure;
};

} // namespace tqx
