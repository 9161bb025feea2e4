#pragma once

#include "tqx/log/text/Buffer.h"

#include <string>
#include <string_view>

namespace tqx
{

/// A text that is appended often, kept in whole chunks.
class PaddedText
{
public:
    PaddedText() = default;
    explicit PaddedText(std::string_view text) : padded(text), length(text.size())
    {
        padded.resize(length + Buffer::chunk);
    }

    void appendTo(Buffer& out) const { out.appendPadded(padded.data(), length); }

private:
    std::string padded;
    size_t length = 0;
};

} // namespace tqx
