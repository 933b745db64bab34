// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/WorkList.h>

#include <algorithm>
#include <new>

namespace ZORPlatform {
namespace {

// Most queues have a work or two at a time. A queue that has many grows by more and more of them, up to what costs the
// memory manager no special effort.
constexpr std::size_t kFirstChunk = 6;
constexpr std::size_t kLargestChunk = 512;
constexpr std::size_t kKeptChunk = 24;

}  // namespace

WorkList::~WorkList() {
    while (!isEmpty()) static_cast<void>(takeFirst());
    if (first_ != nullptr) free(first_);
}

void WorkList::trim() noexcept {
    if (first_ == nullptr || first_->capacity <= kKeptChunk) return;
    free(first_);
    first_ = last_ = nullptr;
}

void WorkList::addChunk() {
    static_assert(sizeof(Chunk) % alignof(DispatchWork) == 0 && alignof(Chunk) >= alignof(DispatchWork));
    const std::size_t capacity = last_ == nullptr ? kFirstChunk : std::min(2 * last_->capacity, kLargestChunk);
    void* const memory = ::operator new(sizeof(Chunk) + capacity * sizeof(DispatchWork));
    auto* const chunk = ::new (memory) Chunk{nullptr, capacity, 0, 0};
    (last_ == nullptr ? first_ : last_->next) = chunk;
    last_ = chunk;
}

void WorkList::free(Chunk* chunk) noexcept { ::operator delete(chunk); }

}  // namespace ZORPlatform
