#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

/// The counts of one name. The name's characters follow the object.
struct NameCounter {
    uint64_t hash;
    uint32_t nameSize;
    std::atomic<int64_t> allocations;
    std::atomic<int64_t> deallocations;

    std::string_view name() const { return {reinterpret_cast<const char*>(this + 1), nameSize}; }
    int64_t balance() const
    {
        return allocations.load(std::memory_order_relaxed) -
               deallocations.load(std::memory_order_relaxed);
    }
};

/// The process-wide table of counters: open addressing over atomic pointers, read without a lock.
/// Counters are only ever added and never move. Nothing is freed at exit, because static objects of
/// other libraries report their destruction in any order.
namespace NameCounters
{

/// The counter of a name, added if necessary; only adding takes a lock.
NameCounter& get(std::string_view name);

/// The counter of a name, or null.
NameCounter* find(std::string_view name);

/// Calls `visit` with every counter, in no particular order.
void forEach(const std::function<void(NameCounter&)>& visit);

} // namespace NameCounters
