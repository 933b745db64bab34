// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the library adds to arrays.
//
//     ArrayExtension::distinct(std::vector{3, 1, 3, 2, 1});   // {3, 1, 2}

#include <ZORPlatform/Export.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace ZORFoundation::ArrayExtension {

/// Asks for texts to be compared by canonical equivalence: "é" is the same as "e" with a combining acute.
struct CanonicalEquivalence {};

/// An element that is found by its hash; equal elements have equal hashes.
template <class Element>
concept Hashable = requires(const Element& element) {
    { std::hash<Element>{}(element) } -> std::convertible_to<std::size_t>;
};

/// `distinct`
///
/// The first occurrence of each distinct element, in the order of the array. Elements are compared by their own `==`,
/// so texts unit by unit, and an element that does not equal itself (a floating-point not-a-number) is always kept.
///
/// Takes time linear in the array where elements are `Hashable`, quadratic where they have equality only.
template <std::equality_comparable Element>
[[nodiscard]] std::vector<Element> distinct(const std::vector<Element>& array);

/// `distinct` by canonical equivalence: the first spelling of each text, as it stands. Linear.
[[nodiscard]] ZOR_EXPORT std::vector<std::u16string> distinct(const std::vector<std::u16string>& array,
                                                              CanonicalEquivalence);

// The public part ends here.

namespace detail {

/// Places of a result, found by hash: open addressing, at most half full. Elements stay where they are, so that one of
/// them need not be copied twice.
class PlacesByHash {
public:
    explicit PlacesByHash(std::size_t most) {
        while (capacity() < 2 * most) ++bits_;
        places_.resize(capacity(), kFree);
    }

    /// Whether `equalsElementAt` holds for a place under this hash; if not, `place` is entered.
    template <class Equal>
    bool containsOrInserts(std::size_t hash, std::size_t place, Equal equalsElementAt) {
        // The standard library's hash of a number is the number itself: multiplying spreads what differs in high or
        // low digits only.
        std::size_t slot = static_cast<std::size_t>((hash * std::uint64_t{0x9E3779B97F4A7C15}) >> (64 - bits_));
        for (; places_[slot] != kFree; slot = (slot + 1) & (capacity() - 1)) {
            if (equalsElementAt(places_[slot])) return true;
        }
        places_[slot] = place;
        return false;
    }

private:
    static constexpr std::size_t kFree = std::numeric_limits<std::size_t>::max();

    [[nodiscard]] std::size_t capacity() const noexcept { return std::size_t{1} << bits_; }

    unsigned bits_ = 4;
    std::vector<std::size_t> places_;
};

/// Up to here comparing all with all is faster than hashing.
inline constexpr std::size_t kFewElements = 16;

}  // namespace detail

template <std::equality_comparable Element>
std::vector<Element> distinct(const std::vector<Element>& array) {
    std::vector<Element> result;
    if constexpr (Hashable<Element>) {
        if (array.size() > detail::kFewElements) {
            detail::PlacesByHash places(array.size());
            for (const auto& element : array) {
                // What does not equal itself is never found again, and would only crowd the places of its hash.
                if (element == element &&
                    places.containsOrInserts(std::hash<Element>{}(element), result.size(),
                                             [&](std::size_t place) { return result[place] == element; })) {
                    continue;
                }
                result.push_back(element);
            }
            return result;
        }
    }
    for (const auto& element : array) {
        const bool isKnown = [&] {
            for (const auto& known : result) {
                if (known == element) return true;
            }
            return false;
        }();
        if (!isKnown) result.push_back(element);
    }
    return result;
}

}  // namespace ZORFoundation::ArrayExtension
