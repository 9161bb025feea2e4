#pragma once

#include "tqx/log/source/CompressedSource.h"

#include <memory>

namespace tqx
{

/// The content of a Zstandard file, of all its frames if there are several. Of a frame that is cut
/// off every complete block comes out.
class ZstdSource : public CompressedSource
{
public:
    /// Takes over the compressed bytes, which are read as content is asked for. Throws SourceError
    /// when there is no memory to decompress with.
    explicit ZstdSource(std::unique_ptr<ByteSource> compressed);
    ~ZstdSource() override;

private:
    struct State;

    Outcome decompress(Step& step) override;

    std::unique_ptr<State> state;
};

} // namespace tqx
