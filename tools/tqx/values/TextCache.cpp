#include "TextCache.h"

namespace tool
{

void TextCache::keep(Entry& entry, uint64_t value, std::string_view text)
{
    constexpr uint32_t period = 1024;
    constexpr size_t longest = 4096;
    if (entry.chunks != 0 && ++replaced == period) {
        isOff = found < replaced;
        if (isOff)
            return entries.clear();
        found = 0;
        replaced = 0;
    }
    if (text.size() > longest)
        return;
    entry.value = value;
    entry.length = static_cast<uint32_t>(text.size());
    entry.chunks = static_cast<uint32_t>(text.size() / chunk + 1);
    if (entry.chunks > entry.room) {
        entry.room = entry.chunks;
        entry.text = std::make_unique<char[]>(entry.room * chunk);
    }
    std::memcpy(entry.text.get(), text.data(), text.size());
}

} // namespace tool
