// SPDX-License-Identifier: Apache-2.0
#pragma once

// A list that mostly has one element or none.

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace ZORPlatform {

/// Takes memory from its second element on. Not thread-safe.
///
/// @tparam Handle  cheap to move; empty when default-constructed
template <class Handle>
class ShortList {
public:
    [[nodiscard]] std::size_t size() const noexcept { return (hasFirst_ ? 1 : 0) + (further_ ? further_->size() : 0); }

    void append(Handle element) {
        append(std::move(element), [](const Handle&) { return false; });
    }
    /// Appends. Elements that `isObsolete` may be dropped where more memory would be needed.
    template <class IsObsolete>
    void append(Handle element, IsObsolete isObsolete) {
        if (size() == 0) {
            first_ = std::move(element);
            hasFirst_ = true;
            return;
        }
        if (further_ == nullptr) further_ = std::make_unique<std::vector<Handle>>();
        if (further_->size() == further_->capacity()) {
            std::erase_if(*further_, isObsolete);
            if (further_->size() >= further_->capacity() / 2) further_->reserve(2 * further_->capacity() + 1);
        }
        further_->push_back(std::move(element));
    }

    /// Calls `visit` with each element, in order.
    template <class Visit>
    void forEach(Visit visit) const {
        if (hasFirst_) visit(first_);
        if (further_ == nullptr) return;
        for (const Handle& element : *further_) visit(element);
    }

    /// Takes out the elements that are `chosen`, in order; the others keep theirs.
    template <class Chosen>
    std::vector<Handle> take(Chosen chosen) {
        std::vector<Handle> taken;
        if (hasFirst_ && chosen(std::as_const(first_))) {
            taken.push_back(std::exchange(first_, Handle()));
            hasFirst_ = false;
        }
        if (further_ != nullptr) {
            const auto kept = std::stable_partition(further_->begin(), further_->end(),
                                                    [&chosen](const Handle& element) { return !chosen(element); });
            taken.insert(taken.end(), std::move_iterator(kept), std::move_iterator(further_->end()));
            further_->erase(kept, further_->end());
        }
        return taken;
    }

    void clear() noexcept {
        const Handle first = std::exchange(first_, Handle());
        const auto further = std::move(further_);
        hasFirst_ = false;
    }

    void swap(ShortList& other) noexcept {
        std::swap(hasFirst_, other.hasFirst_);
        std::swap(first_, other.first_);
        std::swap(further_, other.further_);
    }

private:
    Handle first_;
    /// Those after the first, which may itself be missing among them.
    std::unique_ptr<std::vector<Handle>> further_;
    bool hasFirst_ = false;
};

}  // namespace ZORPlatform
