#include "NameCounters.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

namespace
{

struct Table {
    size_t mask;
    std::atomic<NameCounter*>* slots;
    const Table* previous; ///< kept: other threads may be reading it
};

/// Holds the plug-in's 6,600 names at less than half its capacity.
constexpr size_t firstCapacity = 16384;
std::atomic<NameCounter*> firstSlots[firstCapacity];
Table firstTable{firstCapacity - 1, firstSlots, nullptr};

std::atomic<Table*> currentTable{&firstTable};

/// What only the holder of the lock touches.
std::mutex addMutex;
size_t nameCount = 0;
char* chunk = nullptr;
size_t chunkLeft = 0;

uint64_t mix(uint64_t value)
{
    value *= 0x9E3779B97F4A7C15u;
    return value ^ (value >> 32);
}

uint64_t load(const char* bytes, size_t size)
{
    uint64_t word = 0;
    std::memcpy(&word, bytes, size);
    return word;
}

uint64_t hashOf(std::string_view name)
{
    const char* bytes = name.data();
    const size_t size = name.size();
    uint64_t hash = size;
    if (size < 8) {
        return mix(hash ^ mix(load(bytes, size)));
    }
    for (size_t at = 0; at + 8 < size; at += 8) {
        hash = mix(hash ^ load(bytes + at, 8));
    }
    // The last eight bytes may overlap those before: no loop over a rest.
    return mix(hash ^ mix(load(bytes + size - 8, 8)));
}

NameCounter* findIn(const Table& table, std::string_view name, uint64_t hash)
{
    for (size_t at = static_cast<size_t>(hash) & table.mask;; at = (at + 1) & table.mask) {
        NameCounter* counter = table.slots[at].load(std::memory_order_acquire);
        if (!counter || (counter->hash == hash && counter->name() == name)) {
            return counter;
        }
    }
}

void insert(Table& table, NameCounter* counter)
{
    size_t at = static_cast<size_t>(counter->hash) & table.mask;
    while (table.slots[at].load(std::memory_order_relaxed)) {
        at = (at + 1) & table.mask;
    }
    table.slots[at].store(counter, std::memory_order_release);
}

Table* grown(const Table& table)
{
    const size_t capacity = 2 * (table.mask + 1);
    auto* larger = new Table{capacity - 1, new std::atomic<NameCounter*>[capacity], &table};
    for (size_t i = 0; i < capacity; ++i) {
        larger->slots[i].store(nullptr, std::memory_order_relaxed);
    }
    for (size_t i = 0; i <= table.mask; ++i) {
        if (NameCounter* counter = table.slots[i].load(std::memory_order_relaxed)) {
            insert(*larger, counter);
        }
    }
    return larger;
}

/// Takes memory from large chunks, which are never given back.
void* takeMemory(size_t size)
{
    constexpr size_t chunkSize = 65536;
    const size_t rounded = (size + alignof(std::max_align_t) - 1) / alignof(std::max_align_t) *
                           alignof(std::max_align_t);
    if (rounded > chunkSize) {
        return ::operator new(rounded);
    }
    if (rounded > chunkLeft) {
        chunk = static_cast<char*>(::operator new(chunkSize));
        chunkLeft = chunkSize;
    }
    void* memory = chunk;
    chunk += rounded;
    chunkLeft -= rounded;
    return memory;
}

NameCounter& add(std::string_view name, uint64_t hash)
{
    const std::lock_guard<std::mutex> guard(addMutex);
    Table* table = currentTable.load(std::memory_order_relaxed);
    if (NameCounter* known = findIn(*table, name, hash)) {
        return *known;
    }
    if (2 * (nameCount + 1) > table->mask + 1) {
        table = grown(*table);
        currentTable.store(table, std::memory_order_release);
    }
    auto* counter = new (takeMemory(sizeof(NameCounter) + name.size()))
        NameCounter{hash, static_cast<uint32_t>(name.size()), {0}, {0}};
    std::memcpy(static_cast<void*>(counter + 1), name.data(), name.size());
    insert(*table, counter);
    ++nameCount;
    return *counter;
}

} // namespace

NameCounter& NameCounters::get(std::string_view name)
{
    const uint64_t hash = hashOf(name);
    const Table* table = currentTable.load(std::memory_order_acquire);
    NameCounter* counter = findIn(*table, name, hash);
    return counter ? *counter : add(name, hash);
}

NameCounter* NameCounters::find(std::string_view name)
{
    return findIn(*currentTable.load(std::memory_order_acquire), name, hashOf(name));
}

void NameCounters::forEach(const std::function<void(NameCounter&)>& visit)
{
    const Table* table = currentTable.load(std::memory_order_acquire);
    for (size_t i = 0; i <= table->mask; ++i) {
        if (NameCounter* counter = table->slots[i].load(std::memory_order_acquire)) {
            visit(*counter);
        }
    }
}
