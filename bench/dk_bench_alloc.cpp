// A counting global operator new for the benchmark binaries: the allocation
// column of every query is read from here.
#include <cstdlib>
#include <new>

#include "dk_bench_floor.h"

namespace {
thread_local uint64_t t_allocations = 0;
}

uint64_t dksml::bench::AllocationCount() { return t_allocations; }

void* operator new(std::size_t size) {
    ++t_allocations;
    if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++t_allocations;
    return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
