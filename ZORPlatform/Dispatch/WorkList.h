// SPDX-License-Identifier: Apache-2.0
#pragma once

// The works that a queue still has to run, in the order of submission.

#include <ZORPlatform/Dispatch/DispatchWork.h>

#include <cstddef>
#include <memory>
#include <utility>

namespace ZORPlatform {

/// Kept in chunks: a long list never moves its works to grow, and gives memory back while it is worked off. Not
/// thread-safe.
class WorkList {
public:
    WorkList() noexcept = default;
    WorkList(const WorkList&) = delete;
    WorkList& operator=(const WorkList&) = delete;
    ~WorkList();

    [[nodiscard]] bool isEmpty() const noexcept { return first_ == nullptr || first_->begin == first_->end; }

    void append(DispatchWork work) {
        if (last_ == nullptr || last_->end == last_->capacity) addChunk();
        ::new (static_cast<void*>(last_->work(last_->end))) DispatchWork(std::move(work));
        ++last_->end;
    }

    /// Calls the first work and destroys it. The list must not be empty.
    void runFirst() {
        DispatchWork& work = *first_->work(first_->begin);
        work();
        work.~DispatchWork();
        removedFirst();
    }

    [[nodiscard]] DispatchWork takeFirst() noexcept {
        DispatchWork* const work = first_->work(first_->begin);
        DispatchWork taken = std::move(*work);
        std::destroy_at(work);
        removedFirst();
        return taken;
    }

    /// Takes all works of `others`, and may leave it some room in return.
    void append(WorkList& others) noexcept {
        if (isEmpty()) return swap(others);
        if (others.isEmpty()) return;
        last_->next = std::exchange(others.first_, nullptr);
        last_ = std::exchange(others.last_, nullptr);
    }

    void swap(WorkList& other) noexcept {
        std::swap(first_, other.first_);
        std::swap(last_, other.last_);
    }

    /// Keeps no more room than a queue at rest should have. The list must be empty.
    void trim() noexcept;

private:
    struct Chunk {
        Chunk* next;
        std::size_t capacity;
        std::size_t begin;
        std::size_t end;

        /// The works stand behind the chunk itself.
        [[nodiscard]] DispatchWork* work(std::size_t index) noexcept {
            return reinterpret_cast<DispatchWork*>(this + 1) + index;
        }
    };

    void addChunk();
    static void free(Chunk* chunk) noexcept;

    void removedFirst() noexcept {
        if (++first_->begin < first_->end) return;
        if (first_ == last_) {
            first_->begin = first_->end = 0;
        } else {
            free(std::exchange(first_, first_->next));
        }
    }

    // Only a chunk that is alone may be empty.
    Chunk* first_ = nullptr;
    Chunk* last_ = nullptr;
};

}  // namespace ZORPlatform
