// SPDX-License-Identifier: Apache-2.0
#pragma once

// Enumerations whose cases stand for a text. Each offers `rawValue(value)` and a specialisation of `fromRawValue`:
//
//     rawValue(ZORApplicationCode::alpha);           // u"A031"
//     fromRawValue<ZORApplicationCode>(u"A031");     // ZORApplicationCode::alpha

#include <optional>
#include <string_view>

namespace ZORFoundation {

/// `init(rawValue:)`
///
/// The case whose raw value is exactly `text`, or `std::nullopt` when there is none.
template <class Enumeration>
[[nodiscard]] constexpr std::optional<Enumeration> fromRawValue(std::u16string_view text) noexcept = delete;

}  // namespace ZORFoundation
