// SPDX-License-Identifier: Apache-2.0
#pragma once

// Memory for objects of one type that one thread makes and another destroys, again and again. The general memory
// manager has both threads take turns at a lock for each of them, and puts the one that comes second to sleep.
//
//     std::allocate_shared<NSBlockOperation>(RecyclingAllocator<NSBlockOperation>(), std::move(block));
//
// Blocks. A thread keeps the blocks that it was given, up to two batches. Further batches go to the shelf, from where
// threads without blocks help themselves; what finds no room there goes back to the memory manager, and so does what a
// thread has when it ends. No thread ever waits for another.

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace ZORPlatform {

/// Blocks of `kSize` bytes. Thread-safe.
template <std::size_t kSize>
class RecycledBlocks {
public:
    RecycledBlocks() = delete;

    /// Throws `std::bad_alloc`.
    [[nodiscard]] static void* take() {
        Stock& stock = stock_;
        if (stock.first == nullptr) restock(stock);
        if (stock.first == nullptr) return ::operator new(kSize);
        --stock.count;
        return std::exchange(stock.first, stock.first->next);
    }

    static void give(void* block) noexcept {
        Stock& stock = stock_;
        if (stock.count == stock.room && !makeRoom(stock)) return ::operator delete(block);
        stock.first = ::new (block) Block{stock.first};
        ++stock.count;
    }

private:
    static constexpr std::size_t kBatch = 32;
    static constexpr std::size_t kBatchesOnShelf = 8;

    struct Block {
        Block* next;
    };

    /// What a thread has.
    struct Stock {
        Block* first;
        std::size_t count;
        std::size_t room;  ///< None before the first block, nor at the end of the thread.
        Block* fullBatch;
        bool isClosed;
    };
    struct Closing {
        ~Closing() {
            free(stock_.first);
            free(stock_.fullBatch);
            stock_ = {.first = nullptr, .count = 0, .room = 0, .fullBatch = nullptr, .isClosed = true};
        }
    };

    static void restock(Stock& stock) noexcept {
        if (stock.isClosed) return;
        stock.first = std::exchange(stock.fullBatch, nullptr);
        for (auto place = shelf_.begin(); stock.first == nullptr && place != shelf_.end(); ++place) {
            if (place->load(std::memory_order_relaxed) == nullptr) continue;
            stock.first = place->exchange(nullptr, std::memory_order_acquire);
        }
        if (stock.first == nullptr) return;
        stock.count = kBatch;
        openStock(stock);
    }

    /// @return false at the end of the thread
    static bool makeRoom(Stock& stock) noexcept {
        if (stock.isClosed) return false;
        if (stock.room == 0) {
            openStock(stock);
            return true;
        }
        stock.count = 0;
        Block* batch = std::exchange(stock.fullBatch, std::exchange(stock.first, nullptr));
        for (auto place = shelf_.begin(); batch != nullptr && place != shelf_.end(); ++place) {
            Block* empty = nullptr;
            if (place->load(std::memory_order_relaxed) == nullptr &&
                place->compare_exchange_strong(empty, batch, std::memory_order_release, std::memory_order_relaxed)) {
                batch = nullptr;
            }
        }
        free(batch);
        return true;
    }

    static void openStock(Stock& stock) noexcept {
        stock.room = kBatch;
        // Used, so that it is destroyed with the thread.
        static_cast<void>(&closing_);
    }

    static void free(Block* first) noexcept {
        while (first != nullptr) ::operator delete(std::exchange(first, first->next));
    }

    static inline constinit thread_local Stock stock_{};
    static inline thread_local Closing closing_;
    static inline constinit std::array<std::atomic<Block*>, kBatchesOnShelf> shelf_{};
};

/// For containers and shared pointers of single objects.
template <class Object>
class RecyclingAllocator {
public:
    using value_type = Object;

    RecyclingAllocator() noexcept = default;
    template <class Other>
    RecyclingAllocator(const RecyclingAllocator<Other>& /*other*/) noexcept {}  // Implicit: allocators are rebound.

    [[nodiscard]] Object* allocate(std::size_t count) {
        static_assert(sizeof(Object) >= sizeof(void*) && alignof(Object) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
        if (count != 1) throw std::bad_array_new_length();
        return static_cast<Object*>(RecycledBlocks<sizeof(Object)>::take());
    }
    void deallocate(Object* object, std::size_t) noexcept { RecycledBlocks<sizeof(Object)>::give(object); }

    friend bool operator==(RecyclingAllocator, RecyclingAllocator) noexcept { return true; }
};

}  // namespace ZORPlatform
