#pragma once

#include "tqx/log/source/Decompressor.h"

namespace tqx
{

/// Decompresses the members of a gzip file. Zeros after the last member are padding.
class GzipDecompressor : public Decompressor
{
public:
    /// Throws DataError when there is no memory.
    GzipDecompressor();
    ~GzipDecompressor() override;

    const char* getFormat() const override { return "gzip"; }
    Outcome decompress(Step& step) override;
    bool getPoint(AccessPoint& point) const override;
    bool restart(const AccessPoint& point, uint8_t byteBefore) override;

private:
    struct State;

    Outcome decompressMember(Step& step);
    bool beginMember(Step& step, Outcome& outcome);

    std::unique_ptr<State> m_state;
};

} // namespace tqx
