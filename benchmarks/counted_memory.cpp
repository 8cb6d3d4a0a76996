#include "benchmarks/counted_memory.h"

#include <malloc.h>

#include <algorithm>

namespace {

// Only one thread allocates here.
std::size_t in_use = 0;
std::size_t in_use_at_restart = 0;
std::size_t peak = 0;

void* taken(void* block) {
    if (block != nullptr) in_use += _msize(block);
    peak = std::max(peak, in_use);
    return block;
}

void given_back(void* block) {
    if (block != nullptr) in_use -= std::min(in_use, _msize(block));
}

}  // namespace

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size) { return taken(__real_malloc(size)); }
void* __wrap_calloc(std::size_t count, std::size_t size) { return taken(__real_calloc(count, size)); }

void* __wrap_realloc(void* block, std::size_t size) {
    given_back(block);
    return taken(__real_realloc(block, size));
}

void __wrap_free(void* block) {
    given_back(block);
    __real_free(block);
}

}  // extern "C"

namespace benchmarks {

void restart_peak() noexcept { peak = in_use_at_restart = in_use; }

std::size_t peak_growth() noexcept { return peak - in_use_at_restart; }

}  // namespace benchmarks
