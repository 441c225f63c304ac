// CountingNew.h: a global operator new that counts allocations, for white-box tests that prove a path allocates nothing (include in one file per program).
#pragma once

#include <cstdlib>
#include <new>

inline long s_allocations = 0;

// Out of line, so that the optimiser does not pair malloc() and free() with
// new- and delete-expressions and call them mismatched.
__attribute__((noinline)) void* operator new(std::size_t size) {
    ++s_allocations;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* p) noexcept { std::free(p); }
__attribute__((noinline)) void operator delete(void* p, std::size_t) noexcept { std::free(p); }
