// SPDX-License-Identifier: Apache-2.0
#pragma once

// Memory for objects that mostly live for a moment. Internal: applications use Future and Promise.
//
// A future that a callback returns, and a callback on a promise that resolves soon, are freed right before the next of
// their kind is made. A thread keeps one freed block of each small size for it, which takes a third of the time of the
// allocator.

#include <cstddef>
#include <new>
#include <utility>

namespace ZORFoundation::FutureInternal {

// With blocks that come back at once, the address sanitizer would not see a use after the end.
#if defined(__SANITIZE_ADDRESS__)
#define ZOR_KEEPS_SPARE_BLOCKS 0
#elif defined(__has_feature)
#define ZOR_KEEPS_SPARE_BLOCKS !__has_feature(address_sanitizer)
#else
#define ZOR_KEEPS_SPARE_BLOCKS 1
#endif
inline constexpr bool kKeepsSpareBlocks = ZOR_KEEPS_SPARE_BLOCKS;
#undef ZOR_KEEPS_SPARE_BLOCKS

/// One freed block of each small size, for the calling thread. Freed itself when the thread ends.
class SpareBlocks {
public:
    static void* allocate(std::size_t size) {
        if (size <= kLargest) {
            if (void* const block = std::exchange(blocks_[index(size)], nullptr)) return block;
        }
        return ::operator new(rounded(size));
    }

    static void release(void* block, std::size_t size) noexcept {
        if (kKeepsSpareBlocks && size <= kLargest && blocks_[index(size)] == nullptr && isOwned()) {
            blocks_[index(size)] = block;
        } else {
            ::operator delete(block);
        }
    }

private:
    static constexpr std::size_t kStep = 16;
    static constexpr std::size_t kLargest = 128;
    enum class Ownership : unsigned char { none, owned, ended };

    struct Owner {
        ~Owner() {
            ownership_ = Ownership::ended;
            for (void*& block : blocks_) ::operator delete(std::exchange(block, nullptr));
        }
    };

    /// Whether somebody frees the blocks with the thread. A future may outlast that: then none is kept any more.
    static bool isOwned() noexcept {
        if (ownership_ == Ownership::none) {
            static thread_local const Owner owner;
            ownership_ = Ownership::owned;
        }
        return ownership_ == Ownership::owned;
    }
    static std::size_t rounded(std::size_t size) noexcept { return (size + kStep - 1) / kStep * kStep; }
    static std::size_t index(std::size_t size) noexcept { return (size - 1) / kStep; }

    static thread_local void* blocks_[kLargest / kStep];
    static thread_local Ownership ownership_;
};

inline constinit thread_local void* SpareBlocks::blocks_[]{};
inline constinit thread_local SpareBlocks::Ownership SpareBlocks::ownership_{};

/// An `Object` in a spare block.
template <class Object>
class BrieflyLived final : public Object {
public:
    using Object::Object;

    static void* operator new(std::size_t size) { return SpareBlocks::allocate(size); }
    static void operator delete(void* block, std::size_t size) noexcept { SpareBlocks::release(block, size); }
    static void* operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }
    static void operator delete(void* block, std::align_val_t alignment) noexcept {
        ::operator delete(block, alignment);
    }
};

}  // namespace ZORFoundation::FutureInternal
