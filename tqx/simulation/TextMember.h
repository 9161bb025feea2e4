#pragma once

#include <cstring>

namespace tqx::simulation
{

/// Fills a text member, which has room for more; the rest keeps its initial value.
inline void setText(char* member, const char* text)
{
    std::memcpy(member, text, std::strlen(text));
}

} // namespace tqx::simulation
