// SPDX-License-Identifier: Apache-2.0
#pragma once

// Memory for key bytes and plaintext: overwritten with zeros when it goes, in a way the compiler may not leave out.
// What is wiped is this memory and no other: not a caller's own copy, nor registers, swap or core files.
//
//     WipingArray<std::uint8_t, 32> key;       // on the stack
//     WipingScratch<char, 4096> piece;         // on the stack, not filled first, wiped as far as it was used
//     WipingBuffer plaintext(length);          // on the heap, not filled first

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

namespace ZORPlatform {

/// Overwrites `size` bytes with zeros. Nothing happens for size 0.
inline void wipe(void* memory, std::size_t size) noexcept {
    if (size == 0) return;
    std::memset(memory, 0, size);
    // Memory that assembler may read has to be written first. As explicit_bzero does it, but inline for small sizes.
    asm volatile("" : : "r"(memory) : "memory");
}

/// An array of `Count` elements that begins as zeros and ends wiped.
template <typename Element, std::size_t Count>
class WipingArray {
    static_assert(std::is_trivially_copyable_v<Element>);

public:
    WipingArray() noexcept = default;
    WipingArray(const WipingArray&) = delete;
    WipingArray& operator=(const WipingArray&) = delete;
    ~WipingArray() { wipe(elements_, sizeof elements_); }

    [[nodiscard]] Element* data() noexcept { return elements_; }
    [[nodiscard]] const Element* data() const noexcept { return elements_; }
    [[nodiscard]] static constexpr std::size_t size() noexcept { return Count; }
    [[nodiscard]] Element& operator[](std::size_t index) noexcept { return elements_[index]; }
    [[nodiscard]] std::span<Element, Count> span() noexcept { return elements_; }
    [[nodiscard]] std::span<const Element, Count> span() const noexcept { return elements_; }

private:
    Element elements_[Count] = {};
};

/// Working space that starts unset. Its beginning, as far as it was ever asked for, ends wiped.
template <typename Element, std::size_t Count>
class WipingScratch {
    static_assert(std::is_trivially_copyable_v<Element>);

public:
    // Not defaulted: that would fill the elements wherever the object is value-initialised.
    WipingScratch() noexcept {}
    WipingScratch(const WipingScratch&) = delete;
    WipingScratch& operator=(const WipingScratch&) = delete;
    ~WipingScratch() { wipe(elements_, used_ * sizeof(Element)); }

    [[nodiscard]] static constexpr std::size_t size() noexcept { return Count; }
    /// The first `count` elements, at most `size()`.
    [[nodiscard]] std::span<Element> first(std::size_t count) noexcept {
        used_ = std::max(used_, count);
        return {elements_, count};
    }

private:
    // A vector store that crosses a line of the cache takes twice as long.
    alignas(64) Element elements_[Count];
    std::size_t used_ = 0;
};

/// Bytes of a length fixed at construction. They start unset and end wiped.
class WipingBuffer {
public:
    explicit WipingBuffer(std::size_t size)
        : bytes_(std::make_unique_for_overwrite<std::uint8_t[]>(size)), size_(size) {}
    WipingBuffer(WipingBuffer&& other) noexcept
        : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
    WipingBuffer& operator=(WipingBuffer&& other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~WipingBuffer() { wipe(bytes_.get(), size_); }

    [[nodiscard]] std::uint8_t* data() noexcept { return bytes_.get(); }
    [[nodiscard]] const std::uint8_t* data() const noexcept { return bytes_.get(); }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] std::span<std::uint8_t> span() noexcept { return {bytes_.get(), size_}; }
    [[nodiscard]] std::span<const std::uint8_t> span() const noexcept { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t size_;
};

}  // namespace ZORPlatform
