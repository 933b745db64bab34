// SPDX-License-Identifier: Apache-2.0
#pragma once

// A value as the vectors write it: what goes into an operation and what comes out.
//
//     Value(u"BE68").text();            // u"BE68"
//     Value(std::nullopt).isAbsent();   // true
//     Value(42).matches(Value(42.0));   // numbers are compared by value

#include <ZORPlatform/Foundation/NSError.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace conformance {

/// A value is not of the kind that an operation asked for.
class WrongKind : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A decimal number as text, for example "-1234.56" or "NaN"; compared by numeric value.
struct Decimal {
    std::string text;
};

/// Seconds since 1970-01-01T00:00:00Z. The library counts from 2001, so the last bits of a date may differ between the
/// two doubles: dates are the same within a microsecond.
struct Date {
    double unixSeconds;
};

/// An expected error whose code only has to be other than 0 and whose user information is left open.
struct ErrorOfDomain {
    std::u16string domain;
};

class Value {
    // A vector has no terminator behind its units.
    using Text = std::vector<char16_t>;

public:
    using Bytes = std::vector<std::uint8_t>;
    using List = std::vector<Value>;
    using Member = std::pair<std::string, Value>;
    using Object = std::vector<Member>;
    using NSError = ZORPlatform::NSError;

    Value(std::nullopt_t) {}
    Value(std::same_as<bool> auto value) : content_(value) {}
    template <std::integral Integer>
    requires(!std::same_as<Integer, bool>) Value(Integer value) {
        if (std::in_range<std::int64_t>(value)) {
            content_ = static_cast<std::int64_t>(value);
        } else {
            content_ = static_cast<std::uint64_t>(value);
        }
    }
    Value(std::floating_point auto value) : content_(static_cast<double>(value)) {}
    Value(std::u16string_view text) : content_(Text(text.begin(), text.end())) {}
    Value(const std::u16string& text) : Value(std::u16string_view(text)) {}
    Value(const char16_t* text) : Value(std::u16string_view(text)) {}
    Value(Bytes bytes) : content_(std::move(bytes)) {}
    Value(std::span<const std::uint8_t> bytes) : content_(Bytes(bytes.begin(), bytes.end())) {}
    Value(Decimal decimal) : content_(std::move(decimal)) {}
    Value(Date date) : content_(date) {}
    Value(NSError error) : content_(std::move(error)) {}
    Value(ErrorOfDomain error) : content_(std::move(error)) {}
    Value(List list) : content_(std::move(list)) {}
    Value(Object object) : content_(std::move(object)) {}
    template <class Element>
    requires(!std::same_as<Element, Value> && !std::same_as<Element, std::uint8_t> && !std::same_as<Element, Member>)
        Value(const std::vector<Element>& elements)
        : content_(List(elements.begin(), elements.end())) {}
    template <class Held>
    Value(const std::optional<Held>& value) : Value(value ? Value(*value) : Value(std::nullopt)) {}

    [[nodiscard]] bool isAbsent() const noexcept { return std::holds_alternative<std::monostate>(content_); }

    [[nodiscard]] bool isText() const noexcept { return std::holds_alternative<Text>(content_); }

    [[nodiscard]] bool isList() const noexcept { return std::holds_alternative<List>(content_); }

    // Reading a value as an argument. All throw WrongKind. Views live as long as the value, and what they show ends
    // where its memory ends, so that the address sanitizer sees a read past it.

    /// A text; absent gives the empty view.
    [[nodiscard]] std::u16string_view text() const;
    [[nodiscard]] std::optional<std::u16string_view> optionalText() const;
    /// Bytes; absent gives none.
    [[nodiscard]] std::span<const std::uint8_t> bytes() const;
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> optionalBytes() const;
    [[nodiscard]] bool boolean() const;
    /// An integer that fits `Integer`.
    template <std::integral Integer = std::int64_t>
    [[nodiscard]] Integer integer() const {
        if (const auto* negative = std::get_if<std::int64_t>(&content_);
            negative && std::in_range<Integer>(*negative)) {
            return static_cast<Integer>(*negative);
        }
        if (const auto* large = std::get_if<std::uint64_t>(&content_); large && std::in_range<Integer>(*large)) {
            return static_cast<Integer>(*large);
        }
        throwWrongKind("an integer of the operation's width");
    }
    /// An integer or a double.
    [[nodiscard]] double number() const;
    /// The text of a decimal number.
    [[nodiscard]] const std::string& decimal() const;
    [[nodiscard]] double unixSeconds() const;
    [[nodiscard]] const List& list() const;
    /// A list of two integers: limits or a range.
    template <std::integral Integer = std::int64_t>
    [[nodiscard]] std::pair<Integer, Integer> pair() const {
        const List& bounds = list();
        if (bounds.size() != 2) throwWrongKind("a pair of integers");
        return {bounds[0].integer<Integer>(), bounds[1].integer<Integer>()};
    }
    /// The member of an object.
    [[nodiscard]] const Value& member(std::string_view name) const;
    [[nodiscard]] const NSError& error() const;
    [[nodiscard]] std::optional<NSError> optionalError() const;
    /// An object of texts; keys are resolved as `userInfoKey` does.
    [[nodiscard]] std::optional<NSError::UserInfo> optionalUserInfo() const;

    /// Whether `actual` is what this expected value asks for.
    [[nodiscard]] bool matches(const Value& actual) const;

    /// For people, about as the vectors write it; long values are cut.
    [[nodiscard]] std::string description() const;

private:
    [[noreturn]] void throwWrongKind(std::string_view wanted) const;
    template <class Alternative>
    [[nodiscard]] const Alternative& as(std::string_view wanted) const;

    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, Text, Bytes, Decimal, Date, NSError,
                 ErrorOfDomain, List, Object>
        content_;
};

/// The platform's key behind the name of its constant, and any other key as it stands.
[[nodiscard]] std::u16string userInfoKey(std::u16string_view name);

/// "FrontendErrorDomain" and "WebSealErrorDomain" give the domains configured for the library, any other text itself.
[[nodiscard]] std::u16string errorDomain(std::u16string_view name);

}  // namespace conformance
