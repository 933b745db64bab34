// SPDX-License-Identifier: Apache-2.0
#include "Value.h"

#include <ZORFoundation/ErrorHandling/ZORError.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace conformance {
namespace {

/// A decimal number without the zeros that do not count: equal numbers have equal members.
struct CanonicalDecimal {
    bool negative = false;
    std::string digits;  ///< Neither first nor last is 0; empty for zero.
    std::int64_t exponent = 0;

    friend bool operator==(const CanonicalDecimal&, const CanonicalDecimal&) = default;
};

/// Absent for what is no number, "NaN" included.
std::optional<CanonicalDecimal> canonicalDecimal(std::string_view text) {
    CanonicalDecimal result;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        result.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    const std::size_t mark = text.find_first_of("eE");
    if (mark != std::string_view::npos) {
        const char* begin = text.data() + mark + (text.substr(mark + 1).starts_with('+') ? 2 : 1);
        const char* end = text.data() + text.size();
        if (begin == end || std::from_chars(begin, end, result.exponent).ptr != end) return std::nullopt;
        text = text.substr(0, mark);
    }
    const std::size_t point = text.find('.');
    if (point != std::string_view::npos) result.exponent -= static_cast<std::int64_t>(text.size() - point - 1);
    for (const char character : text) {
        if (character != '.') result.digits.push_back(character);
    }
    if (result.digits.empty() || result.digits.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    result.digits.erase(0, std::min(result.digits.find_first_not_of('0'), result.digits.size()));
    if (result.digits.empty()) return CanonicalDecimal{};
    while (result.digits.back() == '0') {
        result.digits.pop_back();
        ++result.exponent;
    }
    return result;
}

bool sameDecimal(const Decimal& left, const Decimal& right) {
    return left.text == right.text ||
           (canonicalDecimal(left.text) && canonicalDecimal(left.text) == canonicalDecimal(right.text));
}

bool sameDate(const Date& left, const Date& right) {
    constexpr double kMicrosecond = 1e-6;
    return left.unixSeconds == right.unixSeconds || std::abs(left.unixSeconds - right.unixSeconds) < kMicrosecond;
}

bool sameNumber(double number, std::int64_t integer) {
    // The double is turned into an integer, which is exact where it has one; the other way round is not.
    constexpr double kLimit = 9223372036854775808.0;
    return number >= -kLimit && number < kLimit && std::trunc(number) == number &&
           static_cast<std::int64_t>(number) == integer;
}

std::string cut(std::string text) {
    constexpr std::size_t kShownBytes = 240;
    if (text.size() <= kShownBytes) return text;
    const std::size_t size = text.size();
    text.resize(kShownBytes);
    return text + "... (" + std::to_string(size) + " bytes)";
}

std::string escaped(std::string_view bytes) {
    std::string result = "\"";
    for (const char character : bytes) {
        if (character == '"' || character == '\\') result += '\\';
        if (static_cast<unsigned char>(character) >= 0x20) {
            result += character;
        } else {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(character));
            result += code.data();
        }
    }
    return result + "\"";
}

template <class Unit>
std::string hex(std::span<const Unit> units, int digits) {
    std::string result;
    for (const Unit unit : units) {
        std::array<char, 8> code{};
        std::snprintf(code.data(), code.size(), "%0*X", digits, static_cast<unsigned>(unit));
        result += code.data();
    }
    return result;
}

std::string shown(std::u16string_view text) {
    if (const auto bytes = ZORPlatform::utf8IfWellFormed(text)) return cut(escaped(*bytes));
    return R"({"utf16": ")" + cut(hex(std::span<const char16_t>(text), 4)) + "\"}";
}

std::string shown(double number) {
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%.17g", number);
    const std::string_view text = digits.data();
    return std::string(text) + (text.find_first_not_of("-0123456789") == std::string_view::npos ? ".0" : "");
}

std::string shown(const Value::NSError& error) {
    std::string result = R"({"domain": )" + shown(std::u16string_view(error.domain())) + R"(, "code": )" +
                         std::to_string(error.code()) + R"(, "userInfo": {)";
    const char* separator = "";
    for (const auto& [key, text] : error.userInfo()) {
        result += separator + shown(std::u16string_view(key)) + ": " + shown(std::u16string_view(text));
        separator = ", ";
    }
    return result + "}}";
}

std::string shown(const Value::List& list) {
    std::string result = "[";
    const char* separator = "";
    for (const Value& element : list) {
        result += separator + element.description();
        separator = ", ";
    }
    return cut(result + "]");
}

std::string shown(const Value::Object& object) {
    std::string result = "{";
    const char* separator = "";
    for (const auto& [name, value] : object) {
        result += separator + escaped(name) + ": " + value.description();
        separator = ", ";
    }
    return cut(result + "}");
}

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

}  // namespace

template <class Alternative>
const Alternative& Value::as(std::string_view wanted) const {
    if (const auto* found = std::get_if<Alternative>(&content_)) return *found;
    throwWrongKind(wanted);
}

void Value::throwWrongKind(std::string_view wanted) const {
    throw WrongKind("the operation asks for " + std::string(wanted) + ", the argument is " + description());
}

std::optional<std::u16string_view> Value::optionalText() const {
    if (isAbsent()) return std::nullopt;
    const Text& units = as<Text>("a text");
    return std::u16string_view(units.data(), units.size());
}

std::u16string_view Value::text() const { return optionalText().value_or(std::u16string_view()); }

std::optional<std::span<const std::uint8_t>> Value::optionalBytes() const {
    if (isAbsent()) return std::nullopt;
    return as<Bytes>("bytes");
}

std::span<const std::uint8_t> Value::bytes() const { return optionalBytes().value_or(std::span<const std::uint8_t>()); }

bool Value::boolean() const { return as<bool>("a boolean"); }

double Value::number() const {
    if (const auto* integer = std::get_if<std::int64_t>(&content_)) return static_cast<double>(*integer);
    return as<double>("a number");
}

const std::string& Value::decimal() const { return as<Decimal>("a decimal number").text; }

double Value::unixSeconds() const { return as<Date>("a date").unixSeconds; }

const Value::List& Value::list() const { return as<List>("a list"); }

const Value& Value::member(std::string_view name) const {
    for (const auto& [key, value] : as<Object>("an object")) {
        if (key == name) return value;
    }
    throwWrongKind("an object with the member " + std::string(name));
}

const Value::NSError& Value::error() const { return as<NSError>("an error"); }

std::optional<Value::NSError> Value::optionalError() const {
    if (isAbsent()) return std::nullopt;
    return error();
}

std::optional<Value::NSError::UserInfo> Value::optionalUserInfo() const {
    if (isAbsent()) return std::nullopt;
    NSError::UserInfo userInfo;
    for (const auto& [name, value] : as<Object>("user information")) {
        userInfo.emplace(userInfoKey(ZORPlatform::utf16(name)), value.text());
    }
    return userInfo;
}

bool Value::matches(const Value& actual) const {
    const auto same = Overloaded{
        [](const Decimal& left, const Decimal& right) { return sameDecimal(left, right); },
        [](const Date& left, const Date& right) { return sameDate(left, right); },
        [](const ErrorOfDomain& left, const NSError& right) {
            return left.domain == right.domain() && right.code() != 0;
        },
        [](double left, double right) { return left == right || (std::isnan(left) && std::isnan(right)); },
        [](double left, std::int64_t right) { return sameNumber(left, right); },
        [](std::int64_t left, double right) { return sameNumber(right, left); },
        [](const List& left, const List& right) {
            return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                              [](const Value& a, const Value& b) { return a.matches(b); });
        },
        [](const Object& left, const Object& right) {
            return std::is_permutation(
                left.begin(), left.end(), right.begin(), right.end(),
                [](const Member& a, const Member& b) { return a.first == b.first && a.second.matches(b.second); });
        },
        []<class Left, class Right>(const Left& left, const Right& right) {
            if constexpr (std::same_as<Left, Right> && std::equality_comparable<Left>) {
                return left == right;
            } else {
                return false;
            }
        },
    };
    return std::visit(same, content_, actual.content_);
}

std::string Value::description() const {
    return std::visit(
        Overloaded{
            [](std::monostate) -> std::string { return "null"; },
            [](bool value) -> std::string { return value ? "true" : "false"; },
            [](std::integral auto value) { return std::to_string(value); },
            [](double value) { return shown(value); },
            [](const Text& units) { return shown(std::u16string_view(units.data(), units.size())); },
            [](const Bytes& bytes) {
                return R"({"hex": ")" + cut(hex(std::span<const std::uint8_t>(bytes), 2)) + "\"}";
            },
            [](const Decimal& decimal) { return R"({"decimal": ")" + decimal.text + "\"}"; },
            [](const Date& date) { return R"({"unix": )" + shown(date.unixSeconds) + "}"; },
            [](const NSError& error) { return shown(error); },
            [](const ErrorOfDomain& error) { return R"({"domain": )" + shown(error.domain) + R"(, "code": "any"})"; },
            [](const List& list) { return shown(list); },
            [](const Object& object) { return shown(object); },
        },
        content_);
}

std::u16string userInfoKey(std::u16string_view name) {
    if (name == u"NSLocalizedDescriptionKey") return std::u16string(ZORPlatform::NSLocalizedDescriptionKey);
    if (name == u"NSLocalizedFailureReasonErrorKey")
        return std::u16string(ZORPlatform::NSLocalizedFailureReasonErrorKey);
    return std::u16string(name);
}

std::u16string errorDomain(std::u16string_view name) {
    if (name == u"FrontendErrorDomain") return std::u16string(ZORFoundation::ZorXUNErrorDomain);
    if (name == u"WebSealErrorDomain") return std::u16string(ZORFoundation::ZorWebSealErrorDomain);
    return std::u16string(name);
}

}  // namespace conformance
