#pragma once

#include "tqx/log/text/Buffer.h"

#include <string_view>

namespace tqx
{

/// Appends Latin-1 characters in UTF-8.
inline void appendLatin1(Buffer& out, std::string_view text)
{
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= 0x80) {
            out.append(static_cast<char>(0xc0U | code >> 6U));
            out.append(static_cast<char>(0x80U | (code & 0x3fU)));
        } else {
            out.append(character);
        }
    }
}

} // namespace tqx
