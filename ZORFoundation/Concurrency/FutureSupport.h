// SPDX-License-Identifier: Apache-2.0
#pragma once

// Functions to pass on with futures: what `and_` pairs up made flat, and key/value pairs put in a dictionary.
//
//     name.and_(number).and_(balance).map(FutureSupport::flatten);   // Future<std::tuple<Name, Number, Amount>>

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

namespace ZORFoundation {

namespace FutureInternal {

/// How many pairs are nested in one another on the left, at most `limit`.
template <class Type, std::size_t limit>
inline constexpr std::size_t kPairDepth = 0;
template <class First, class Second, std::size_t limit>
requires(limit >
         0) inline constexpr std::size_t kPairDepth<std::pair<First, Second>, limit> = 1 + kPairDepth<First, limit - 1>;

/// The longest shape, with seven elements, nests six pairs; a pair nested deeper is an element.
inline constexpr std::size_t kMostPairs = 6;

struct Flatten {
    template <class Nested>
    requires(kPairDepth<std::remove_cvref_t<Nested>, kMostPairs> >= 2) [[nodiscard]] constexpr auto operator()(
        Nested&& tuple) const {
        return flat<kPairDepth<std::remove_cvref_t<Nested>, kMostPairs>>(std::forward<Nested>(tuple));
    }

private:
    template <std::size_t depth, class Nested>
    static constexpr auto flat(Nested&& nested) {
        if constexpr (depth == 0) {
            return std::tuple<std::remove_cvref_t<Nested>>(std::forward<Nested>(nested));
        } else {
            using Last = typename std::remove_cvref_t<Nested>::second_type;
            return std::tuple_cat(flat<depth - 1>(std::forward<Nested>(nested).first),
                                  std::tuple<Last>(std::forward<Nested>(nested).second));
        }
    }
};

struct ConvertTuplesToDictionary {
    template <class Dictionary, class Key, class Value>
    constexpr void operator()(Dictionary& dictionary, const std::pair<Key, Value>& tuple) const {
        dictionary.insert_or_assign(tuple.first, tuple.second);
    }
};

}  // namespace FutureInternal

/// `FutureSupport`: function objects, generic in their types. Pure.
class FutureSupport {
public:
    FutureSupport() = delete;

    /// `flatten(tuple:)`
    ///
    /// Turns pairs nested on the left, as repeated `and_` makes them, into a flat `std::tuple` of the same elements in
    /// the same order: ((A, B), C) gives (A, B, C), and so on up to seven elements. Other shapes do not compile.
    static constexpr FutureInternal::Flatten flatten{};

    /// `convertTuplesToDictionary`
    ///
    /// Stores the second element of a `std::pair` under the first, and replaces an earlier entry of that key: the
    /// update of a `reduce` into a dictionary (`std::unordered_map`, `std::map`).
    static constexpr FutureInternal::ConvertTuplesToDictionary convertTuplesToDictionary{};
};

namespace FutureInternal {

/// `FutureSupport::flatten` by its short name, for the library's own sources.
inline constexpr const Flatten& flatten = FutureSupport::flatten;

}  // namespace FutureInternal
}  // namespace ZORFoundation
