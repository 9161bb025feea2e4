#pragma once

#include "tqx/log/source/CompressedSource.h"

#include <memory>

namespace tqx
{

/// The content of a gzip file, of all its members if there are several. Zeros after the last member
/// are padding.
class GzipSource : public CompressedSource
{
public:
    /// Takes over the compressed bytes, which are read as content is asked for. Throws SourceError
    /// when there is no memory to decompress with.
    explicit GzipSource(std::unique_ptr<ByteSource> compressed);
    ~GzipSource() override;

private:
    struct State;

    Outcome decompress(Step& step) override;

    std::unique_ptr<State> state;
};

} // namespace tqx
