#include "live_memory.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <malloc.h>

// The C library's allocator behind the functions that the program and its libraries call.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *block);
}

namespace {

std::atomic<long> blocks {0};
std::atomic<long> bytes {0};

long sizeOf(void *block)
{
    return static_cast<long>(malloc_usable_size(block));
}

void *taken(void *block)
{
    if (block) {
        blocks.fetch_add(1, std::memory_order_relaxed);
        bytes.fetch_add(sizeOf(block), std::memory_order_relaxed);
    }
    return block;
}

void given(long size)
{
    blocks.fetch_sub(1, std::memory_order_relaxed);
    bytes.fetch_sub(size, std::memory_order_relaxed);
}

} // namespace

extern "C" {

void *malloc(std::size_t size)
{
    return taken(__libc_malloc(size));
}

void *calloc(std::size_t count, std::size_t size)
{
    return taken(__libc_calloc(count, size));
}

void *realloc(void *block, std::size_t size)
{
    const long before = block ? sizeOf(block) : 0;
    void *moved = __libc_realloc(block, size);
    if (block && (moved || size == 0))
        given(before);
    return taken(moved);
}

void *memalign(std::size_t alignment, std::size_t size)
{
    return taken(__libc_memalign(alignment, size));
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    return taken(__libc_memalign(alignment, size));
}

int posix_memalign(void **block, std::size_t alignment, std::size_t size)
{
    void *aligned = taken(__libc_memalign(alignment, size));
    if (!aligned)
        return ENOMEM;
    *block = aligned;
    return 0;
}

void free(void *block)
{
    if (!block)
        return;
    given(sizeOf(block));
    __libc_free(block);
}
}

namespace tarnBench {

LiveMemory liveMemory()
{
    return {blocks, bytes};
}

} // namespace tarnBench
