// SPDX-License-Identifier: Apache-2.0
#pragma once

// The client applications of the product family. Vocabulary for the embedding application; nothing in the library
// depends on it.
//
//     rawValue(ZORApplicationCode::juliett);         // u"A066"
//     fromRawValue<ZORApplicationCode>(u"A032");     // std::nullopt
//     std::unordered_map<ZORApplicationCode, int> users;

#include <ZORFoundation/RawValue.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ZORFoundation {

/// A client application. The order of the cases is that of their raw values and of their hashes.
enum class ZORApplicationCode : std::uint8_t {
    alpha,    ///< "A031"
    bravo,    ///< "A037"
    charlie,  ///< "A039": the public variant of `alpha`.
    delta,    ///< "A044"
    echo,     ///< "A048"
    foxtrot,  ///< "A052": the private variant of an application.
    golf,     ///< "A054": the public variant of the same one.
    hotel,    ///< "A064"
    india,    ///< "A065"
    juliett,  ///< "A066"
};

namespace ApplicationCodes {

/// The raw values, by case.
inline constexpr std::array<std::u16string_view, 10> kRawValues{u"A031", u"A037", u"A039", u"A044", u"A048",
                                                                u"A052", u"A054", u"A064", u"A065", u"A066"};

}  // namespace ApplicationCodes

/// `rawValue`: a capital A and three digits. `value` is one of the cases. Pure.
[[nodiscard]] constexpr std::u16string_view rawValue(ZORApplicationCode value) noexcept {
    return ApplicationCodes::kRawValues[static_cast<std::size_t>(value)];
}

/// `ZORApplicationCode.init(rawValue:)`
///
/// @param text  compared whole, case-sensitively
/// @return the case, or `std::nullopt` for any other text
///
/// Pure.
template <>
[[nodiscard]] constexpr std::optional<ZORApplicationCode> fromRawValue<ZORApplicationCode>(
    std::u16string_view text) noexcept {
    for (std::size_t ordinal = 0; ordinal < ApplicationCodes::kRawValues.size(); ++ordinal) {
        if (ApplicationCodes::kRawValues[ordinal] == text) return static_cast<ZORApplicationCode>(ordinal);
    }
    return std::nullopt;
}

}  // namespace ZORFoundation
