// The program with an operator new that sometimes refuses memory.

#include <cstddef>
#include <cstdlib>
#include <new>

int toolMain(int argc, char** argv); // the main function of the program

namespace
{

unsigned long granted = 0;
unsigned long period = 0; ///< every so many requests one is refused, 0 for none

void* allocate(size_t size, size_t alignment)
{
    if (period != 0 && ++granted % period == 0)
        throw std::bad_alloc();
    void* memory = alignment <= alignof(std::max_align_t)
                       ? std::malloc(size)
                       : std::aligned_alloc(alignment, (size + alignment - 1) & ~(alignment - 1));
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

// The JSON library loses memory when a request of its own is refused; what counts here is that the
// program ends cleanly.
extern "C" int __lsan_is_turned_off()
{
    return 1;
}

void* operator new(size_t size)
{
    return allocate(size, 1);
}

void* operator new(size_t size, std::align_val_t alignment)
{
    return allocate(size, static_cast<size_t>(alignment));
}

// Sorting asks for its buffer like this.
void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    try {
        return allocate(size, 1);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
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

int main(int argc, char** argv)
{
    const char* wanted = std::getenv("TQX_REFUSE_EVERY");
    period = wanted == nullptr ? 0 : std::strtoul(wanted, nullptr, 10);
    const int status = toolMain(argc, argv);
    period = 0; // what libraries do at the exit is not the program's
    return status;
}
