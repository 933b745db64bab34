// SPDX-License-Identifier: Apache-2.0
#include <support/AllocationCount.h>

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;
thread_local std::size_t allocatedBytes = 0;

void note(std::size_t size) noexcept {
    ++allocations;
    allocatedBytes += size;
}

}  // namespace

std::size_t support::AllocationCount::total() noexcept { return allocations; }
std::size_t support::AllocationCount::totalBytes() noexcept { return allocatedBytes; }

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZOR_ALLOCATIONS_TOLD_BY_SANITIZER
#endif
#endif

#ifdef ZOR_ALLOCATIONS_TOLD_BY_SANITIZER

// clang's thread sanitizer defines the operators itself and cannot be linked beside others.
extern "C" void __sanitizer_malloc_hook(const volatile void* /*memory*/, std::size_t size) { note(size); }
extern "C" void __sanitizer_free_hook(const volatile void* /*memory*/) {}

#else

// The other forms of the standard library end in these. The address sanitizer's forms do not: the nothrow one is given
// here too, since what it returns is freed by the delete below.
void* operator new(std::size_t size) {
    note(size);
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    note(size);
    const auto boundary = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(boundary, (size + boundary - 1) / boundary * boundary)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    note(size);
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

#endif
