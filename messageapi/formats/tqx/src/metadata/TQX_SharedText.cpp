#include "TQX_SharedText.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace
{

struct Entry {
    const char* literal = nullptr;
    QString text;
};

constexpr unsigned indexBits = 10;

Entry& entryOf(const char* literal)
{
    static std::vector<Entry> entries(size_t{1} << indexBits);
    const auto key = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(literal));
    return entries[(key * 0x9E3779B1U) >> (32 - indexBits)];
}

std::atomic_flag isBusy = ATOMIC_FLAG_INIT;

} // namespace

QString TQX_sharedText(const char* literal)
{
    // Usually all metadata are built on one thread. Another thread does without sharing rather than
    // wait.
    if (isBusy.test_and_set(std::memory_order_acquire))
        return QString::fromLatin1(literal);
    Entry& entry = entryOf(literal);
    if (entry.literal != literal)
        entry = {literal, QString::fromLatin1(literal)};
    QString text = entry.text;
    isBusy.clear(std::memory_order_release);
    return text;
}
