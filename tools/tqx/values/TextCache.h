#pragma once

#include "Buffer.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tool
{

/// Texts of values that were written before. Most fields of a stream have few different values, and
/// copying a text costs a fraction of making it. Memory is bounded; a cache that turns out not to
/// help gives itself up.
class TextCache
{
public:
    /// For values of so many bytes. Every value of one byte has a place of its own.
    explicit TextCache(unsigned valueBytes) : isSmall(valueBytes == 1) {}

    /// Appends the text of a value, which `make(out)` appends when it is not known.
    template<typename Make>
    void append(Buffer& out, uint64_t value, Make make)
    {
        if (isOff)
            return make(out);
        if (entries.empty())
            entries.resize(isSmall ? smallEntries : wideEntries);
        Entry& entry = entries[isSmall ? value : placeOf(value)];
        if (entry.chunks != 0 && entry.value == value) {
            copy(out.reserve(size_t{entry.chunks} * chunk), entry.text.get(), entry.chunks);
            out.advance(entry.length);
            ++found;
            return;
        }
        const size_t start = out.size();
        make(out);
        keep(entry, value, out.view().substr(start));
    }

private:
    static constexpr size_t chunk = 32;
    static constexpr size_t smallEntries = 256;
    static constexpr size_t wideEntries = 64;

    struct Entry {
        uint64_t value = 0;
        uint32_t length = 0;
        uint32_t chunks = 0; ///< 0 when there is no text
        uint32_t room = 0;   ///< in chunks
        std::unique_ptr<char[]> text;
    };

    static size_t placeOf(uint64_t value) { return value * 0x9e3779b97f4a7c15U >> 58U; }

    /// Whole chunks, so that the compiler needs no call for it.
    static void copy(char* to, const char* from, uint32_t chunks)
    {
        for (uint32_t i = 0; i < chunks; ++i, to += chunk, from += chunk)
            std::memcpy(to, from, chunk);
    }

    void keep(Entry& entry, uint64_t value, std::string_view text);

    std::vector<Entry> entries;
    uint32_t found = 0;    ///< texts, since replaced was 0
    uint32_t replaced = 0; ///< texts that had to make room for others
    bool isSmall;
    bool isOff = false;
};

} // namespace tool
