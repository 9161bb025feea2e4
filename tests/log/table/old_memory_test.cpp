// Nothing that memory held before can be found in a table: neither in its rows nor in the bytes of
// its buffers that no row shows, such as values where nothing is available.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordGuard.h"
#include "Tables.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace
{

/// What new memory is filled with; set while a table is built.
int filling = 0;

void* filledMemory(size_t size, size_t alignment)
{
    const size_t rounded = (size + alignment - 1) / alignment * alignment;
    void* memory = std::aligned_alloc(alignment, rounded == 0 ? alignment : rounded);
    if (memory == nullptr)
        throw std::bad_alloc();
    std::memset(memory, filling, rounded);
    return memory;
}

} // namespace

// NOLINTBEGIN(cert-dcl54-cpp,misc-new-delete-overloads): pairs, as the standard replaces them
void* operator new(size_t size)
{
    return filledMemory(size, alignof(std::max_align_t));
}
void* operator new(size_t size, std::align_val_t alignment)
{
    return filledMemory(size, static_cast<size_t>(alignment));
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, size_t, std::align_val_t) noexcept
{
    std::free(memory);
}
// NOLINTEND(cert-dcl54-cpp,misc-new-delete-overloads)

using namespace Kor::MessageApi;

namespace
{

size_t bitBytes(int64_t count)
{
    return static_cast<size_t>(count + 7) / 8;
}

/// Bytes of a value of a fixed size, 0 for other formats.
size_t valueSize(const std::string& format)
{
    switch (format[0]) {
    case 'c':
    case 'C':
        return 1;
    case 's':
    case 'S':
        return 2;
    case 'i':
    case 'I':
    case 'f':
        return 4;
    case 'l':
    case 'L':
    case 'g':
    case 't':
        return 8;
    default:
        return 0;
    }
}

/// All bytes of an array that a consumer may look at, those of its children and dictionary too.
void addBytes(const ArrowSchema& schema, const ArrowArray& array, std::string& out)
{
    const std::string format = schema.format;
    const auto add = [&](int64_t buffer, size_t size) {
        if (const void* bytes = array.buffers[buffer])
            out.append(static_cast<const char*>(bytes), size);
    };
    const auto total = array.length + array.offset;
    const auto count = static_cast<size_t>(total);
    add(0, bitBytes(total));
    if (format == "b") {
        add(1, bitBytes(total));
    } else if (format == "u" || format == "z") {
        ASSERT_NE(array.buffers[1], nullptr);
        add(1, (count + 1) * sizeof(int32_t));
        add(2, static_cast<size_t>(static_cast<const int32_t*>(array.buffers[1])[count]));
    } else if (format == "+l") {
        add(1, (count + 1) * sizeof(int32_t));
    } else if (format != "+s" && format.compare(0, 3, "+w:") != 0) {
        ASSERT_NE(valueSize(format), 0U) << format;
        add(1, count * valueSize(format));
    }
    for (int64_t i = 0; i < array.n_children; ++i)
        addBytes(*schema.children[i], *array.children[i], out);
    if (array.dictionary != nullptr)
        addBytes(*schema.dictionary, *array.dictionary, out);
}

std::string bytesOf(const TQX_TypeLayout& type, const tqx::TableOptions& options,
                    const std::vector<Bytes>& blocks, int memory)
{
    filling = memory;
    const WholeTable table(type, options, blocks);
    std::string bytes;
    for (const ArrowArray& batch : table.batches)
        addBytes(table.columns, batch, bytes);
    filling = 0;
    return bytes;
}

} // namespace

TEST(OldMemory, ShowsInNoTable)
{
    std::mt19937_64 random(21);
    size_t compared = 0;
    for (const TQX_TypeLayout* type : mainTypes()) {
        std::vector<Bytes> blocks;
        for (unsigned revision = 0; revision <= type->highestRevision; ++revision) {
            for (unsigned i = 0; i < 8; ++i)
                blocks.push_back(randomBlock(*type, {revision, i % 4, 0}, random));
        }
        for (const bool isShown : {true, false}) {
            SCOPED_TRACE(type->name);
            tqx::TableOptions options;
            options.batchRows = 20;
            options.isScaled = options.isNamed = options.hidesDoNotUse = isShown;
            const std::string bytes = bytesOf(*type, options, blocks, 0xa5);
            EXPECT_TRUE(bytes == bytesOf(*type, options, blocks, 0x5a));
            compared += bytes.size();
        }
    }
    EXPECT_GT(compared, 1000000U);
}
