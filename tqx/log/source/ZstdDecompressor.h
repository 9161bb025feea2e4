#pragma once

#include "tqx/log/source/Decompressor.h"

namespace tqx
{

/// Decompresses the frames of a Zstandard file. A truncated frame gives all its complete blocks.
class ZstdDecompressor : public Decompressor
{
public:
    /// Throws DataError when there is no memory.
    ZstdDecompressor();
    ~ZstdDecompressor() override;

    const char* getFormat() const override { return "zstd"; }
    Outcome decompress(Step& step) override;
    bool getPoint(AccessPoint& point) const override;
    bool restart(const AccessPoint& point, uint8_t byteBefore) override;

private:
    struct State;

    std::unique_ptr<State> m_state;
};

} // namespace tqx
