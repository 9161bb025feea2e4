#pragma once

#include "tqx/log/text/Buffer.h"

#include <string>
#include <string_view>

namespace tqx
{

/// A text that is appended often, stored in whole chunks.
class PaddedText
{
public:
    PaddedText() = default;
    explicit PaddedText(std::string_view text) : m_padded(text), m_length(text.size())
    {
        m_padded.resize(m_length + Buffer::chunk);
    }

    void appendTo(Buffer& out) const { out.appendPadded(m_padded.data(), m_length); }

private:
    std::string m_padded;
    size_t m_length = 0;
};

} // namespace tqx
