#pragma once

#include <cstring>

namespace tqx::simulation
{

/// Fills a text member, which has room for more; what is left keeps what it was initialised with.
inline void setText(char* member, const char* text)
{
    std::memcpy(member, text, std::strlen(text));
}

} // namespace tqx::simulation
