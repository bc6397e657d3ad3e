#include "ClipboardInputs.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

// The most memory that each operation holds at a time, its input left out: one line of JSON each. This
// program's allocation functions stand in front of those of the C library and count; it has one thread.

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::size_t held = 0;
std::size_t mostHeld = 0;

void* counted(void* block)
{
    held += malloc_usable_size(block);
    mostHeld = std::max(mostHeld, held);
    return block;
}

} // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    const std::size_t before = malloc_usable_size(block);
    void* const moved = __libc_realloc(block, size);
    if (moved || size == 0)
        held -= before;
    return counted(moved);
}

void free(void* block)
{
    held -= malloc_usable_size(block);
    __libc_free(block);
}

} // extern "C"

int main()
{
    for (const int size : clipboardSizes) {
        for (const ClipboardCase& each : clipboardCases(size)) {
            each.work(); // what is made once is made
            const std::size_t before = held;
            mostHeld = held;
            each.work();
            std::printf("{\"name\": \"%s/%d\", \"input\": %lld, \"peak\": %zu}\n", each.name, size,
                        static_cast<long long>(each.inputBytes), mostHeld - before);
        }
    }
    return 0;
}
