// SPDX-License-Identifier: Apache-2.0
#pragma once

// A text of known length that is written in place. A standard string that is given its length fills itself with zeros
// first, unit by unit, which takes longer than to encode what it is for.
//
//     return writtenText(2 * bytes.size(), [&](char16_t* units) noexcept { encode(bytes, units); });

#include <cstddef>
#include <string>
#include <type_traits>

namespace ZORPlatform {

namespace detail {

using TextWriter = void (*)(const void* write, char16_t* units) noexcept;

[[nodiscard]] std::u16string writtenText(std::size_t units, TextWriter writer, const void* write);

}  // namespace detail

/// The text that `write` writes. One allocation, the text's.
///
/// @param units  the length of the text
/// @param write  called once, with the address at which it writes every unit; it may not throw
template <typename Write>
[[nodiscard]] std::u16string writtenText(std::size_t units, const Write& write) {
    static_assert(std::is_nothrow_invocable_v<const Write&, char16_t*>);
    const auto writer = [](const void* object, char16_t* to) noexcept { (*static_cast<const Write*>(object))(to); };
    return detail::writtenText(units, writer, &write);
}

}  // namespace ZORPlatform
