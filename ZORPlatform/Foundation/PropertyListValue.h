// SPDX-License-Identifier: Apache-2.0
#pragma once

// What a property list holds.
//
//     PropertyListValue settings = PropertyListValue::Dictionary{{u"language", u"nl"}, {u"tries", 3}};
//     settings.as<PropertyListValue::Dictionary>()->at(u"tries").integerValue();   // 3

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>

#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace ZORPlatform {

/// A reference between objects of a keyed archive. Property lists of settings hold none.
struct PropertyListUid {
    std::uint64_t value = 0;
    friend bool operator==(const PropertyListUid&, const PropertyListUid&) noexcept = default;
};

/// A value of a property list: dictionary, array, text, integer (−2^63 to 2^64−1), real (of four or eight
/// bytes, as binary lists tell apart), boolean, date, data, or a reference of a keyed archive. A value type: a copy is
/// independent, and everything in it can be changed. Equal when kind and content are; an integer never equals a real. A
/// default-constructed value is an empty dictionary.
class PropertyListValue {
public:
    using Dictionary = std::map<std::u16string, PropertyListValue, std::less<>>;
    using Array = std::vector<PropertyListValue>;
    using Data = std::vector<std::uint8_t>;

    PropertyListValue() = default;
    PropertyListValue(Dictionary dictionary) : content_(std::move(dictionary)) {}
    PropertyListValue(Array array) : content_(std::move(array)) {}
    PropertyListValue(std::u16string text) : content_(std::move(text)) {}
    PropertyListValue(std::u16string_view text) : content_(std::u16string(text)) {}
    PropertyListValue(const char16_t* text) : content_(std::u16string(text)) {}
    PropertyListValue(std::same_as<bool> auto boolean) : content_(boolean) {}
    PropertyListValue(float real) : content_(real) {}
    PropertyListValue(double real) : content_(real) {}
    template <std::integral Integer>
    requires(!std::same_as<Integer, bool>) PropertyListValue(Integer integer) {
        // One form for each number: the unsigned kind holds only what the signed one cannot.
        if (std::in_range<std::int64_t>(integer)) {
            content_ = static_cast<std::int64_t>(integer);
        } else {
            content_ = static_cast<std::uint64_t>(integer);
        }
    }
    PropertyListValue(NSDate date) : content_(date) {}
    PropertyListValue(Data data) : content_(std::move(data)) {}
    PropertyListValue(PropertyListUid uid) : content_(uid) {}

    /// The content when it is of that kind, else a null pointer. `Kind` is one of `Dictionary`, `Array`,
    /// `std::u16string`, `bool`, `float`, `double`, `NSDate`, `Data`, `PropertyListUid`.
    template <class Kind>
    [[nodiscard]] const Kind* as() const noexcept {
        return std::get_if<Kind>(&content_);
    }
    template <class Kind>
    [[nodiscard]] Kind* as() noexcept {
        return std::get_if<Kind>(&content_);
    }

    /// Makes the value one of the kinds above, made from `arguments`. Spares moving what is built up piece by piece.
    /// @return the content
    template <class Kind, class... Arguments>
    requires(std::same_as<Kind, bool> || !std::integral<Kind>) Kind& emplace(Arguments&&... arguments) {
        return content_.emplace<Kind>(std::forward<Arguments>(arguments)...);
    }

    /// The integer, or `std::nullopt` when the value is none or is above 2^63−1.
    [[nodiscard]] std::optional<std::int64_t> integerValue() const noexcept {
        const auto* value = std::get_if<std::int64_t>(&content_);
        return value != nullptr ? std::optional(*value) : std::nullopt;
    }
    /// The integer, or `std::nullopt` when the value is none or is negative.
    [[nodiscard]] std::optional<std::uint64_t> unsignedValue() const noexcept {
        if (const auto* value = std::get_if<std::uint64_t>(&content_)) return *value;
        const auto* value = std::get_if<std::int64_t>(&content_);
        return value != nullptr && *value >= 0 ? std::optional(static_cast<std::uint64_t>(*value)) : std::nullopt;
    }

    /// The real, of either size, or `std::nullopt` when the value is none.
    [[nodiscard]] std::optional<double> realValue() const noexcept {
        if (const auto* value = std::get_if<double>(&content_)) return *value;
        const auto* value = std::get_if<float>(&content_);
        return value != nullptr ? std::optional<double>(*value) : std::nullopt;
    }

    /// Calls `visitor` with the content: a reference to one of the kinds above, or to `std::int64_t` or
    /// `std::uint64_t`.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), content_);
    }

    friend bool operator==(const PropertyListValue&, const PropertyListValue&) = default;

private:
    std::variant<Dictionary, Array, std::u16string, bool, std::int64_t, std::uint64_t, float, double, NSDate, Data,
                 PropertyListUid>
        content_;
};

}  // namespace ZORPlatform
