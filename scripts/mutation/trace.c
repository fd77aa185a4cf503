/* Notes which blocks of the instrumented objects a test runs: bit N of the file named by TARN_MUTATION_TRACE stands
   for the code N bytes behind the program's start. The file is shared, so children and abrupt ends count as well. */
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

extern const char __executable_start;
extern const char etext;

static uint8_t *blocks;

__attribute__((constructor)) static void begin(void)
{
    const char *path = getenv("TARN_MUTATION_TRACE");
    const size_t size = (size_t)(&etext - &__executable_start) / 8 + 1;
    const int file = path ? open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0644) : -1;
    if (file < 0)
        return;
    if (ftruncate(file, (off_t)size) == 0) {
        void *memory = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (memory != MAP_FAILED)
            blocks = memory;
    }
    close(file);
}

void __sanitizer_cov_trace_pc(void)
{
    if (!blocks)
        return;
    const size_t offset = (size_t)((const char *)__builtin_return_address(0) - &__executable_start);
    __atomic_fetch_or(&blocks[offset / 8], (uint8_t)(1U << (offset % 8)), __ATOMIC_RELAXED);
}
