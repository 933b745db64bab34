// SPDX-License-Identifier: Apache-2.0
//
// The XML form. The parser below is lenient and decodes nothing; what it lets through is refused here, because a
// settings file with one odd character must still load, and a hostile one must not.
#include <ZORPlatform/Foundation/GregorianDayInternal.h>
#include <ZORPlatform/Foundation/PropertyListFormsInternal.h>
#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace ZORPlatform::PropertyListForms {
namespace {

// White-space-only texts are texts; line ends and references arrive as written; a text beside the root is seen.
constexpr unsigned kParseOptions = pugi::parse_cdata | pugi::parse_ws_pcdata | pugi::parse_fragment;

constexpr bool isXmlSpace(char character) noexcept {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

std::string_view withoutLeadingSpace(std::string_view text) noexcept {
    while (!text.empty() && isXmlSpace(text.front())) text.remove_prefix(1);
    return text;
}

bool isBlank(std::string_view text) noexcept { return withoutLeadingSpace(text).empty(); }

bool isScalar(std::uint32_t value) noexcept {
    return value > 0 && value < 0x110000 && (value < 0xD800 || value >= 0xE000);
}

// `reference` stands between "&" and ";".
bool appendReference(std::string& text, std::string_view reference) {
    struct Entity {
        std::string_view name;
        char character;
    };
    constexpr std::array kEntities{Entity{"amp", '&'}, Entity{"lt", '<'}, Entity{"gt", '>'}, Entity{"quot", '"'},
                                   Entity{"apos", '\''}};
    for (const Entity& entity : kEntities) {
        if (reference == entity.name) {
            text.push_back(entity.character);
            return true;
        }
    }
    if (reference.size() < 2 || reference[0] != '#') return false;
    const bool hexadecimal = reference[1] == 'x';
    const std::string_view digits = reference.substr(hexadecimal ? 2 : 1);
    std::uint32_t scalar = 0;
    const char* const end = digits.data() + digits.size();
    const auto [last, status] = std::from_chars(digits.data(), end, scalar, hexadecimal ? 16 : 10);
    if (status != std::errc() || last != end || !isScalar(scalar)) return false;
    std::u16string units;
    appendScalar(units, scalar);
    text += utf8(units);
    return true;
}

bool appendDecoded(std::string& text, std::string_view raw) {
    while (true) {
        const std::size_t ampersand = raw.find('&');
        text += raw.substr(0, ampersand);
        if (ampersand == std::string_view::npos) return true;
        raw.remove_prefix(ampersand + 1);
        const std::size_t semicolon = raw.find(';');
        if (semicolon == std::string_view::npos || !appendReference(text, raw.substr(0, semicolon))) return false;
        raw.remove_prefix(semicolon + 1);
    }
}

/// What an element without child elements holds: its text, with references decoded. Comments split a text in several
/// nodes. Most elements hold one piece without references, which is then not copied.
class ElementText {
public:
    explicit ElementText(const pugi::xml_node& element) {
        const pugi::xml_node first = element.first_child();
        if (!first) return;
        if (!first.next_sibling() && first.type() == pugi::node_pcdata) {
            view_ = first.value();
            if (view_.find('&') == std::string_view::npos) return;
        }
        for (const pugi::xml_node& child : element) {
            if (child.type() == pugi::node_cdata) {
                joined_ += child.value();
            } else if (child.type() != pugi::node_pcdata || !appendDecoded(joined_, child.value())) {
                wellFormed_ = false;
                return;
            }
        }
        view_ = joined_;
    }
    ElementText(const ElementText&) = delete;
    ElementText& operator=(const ElementText&) = delete;

    [[nodiscard]] bool isWellFormed() const noexcept { return wellFormed_; }
    [[nodiscard]] std::string_view view() const noexcept { return view_; }

private:
    std::string joined_;
    std::string_view view_;
    bool wellFormed_ = true;
};

// White space, sign, white space, then decimal or hexadecimal digits, and nothing else.
std::optional<PropertyListValue> integer(std::string_view text) {
    text = withoutLeadingSpace(text);
    bool negative = false;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        negative = text[0] == '-';
        text = withoutLeadingSpace(text.substr(1));
    }
    const bool hexadecimal = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (hexadecimal) text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    const char* const end = text.data() + text.size();
    const auto [last, status] = std::from_chars(text.data(), end, magnitude, hexadecimal ? 16 : 10);
    if (status != std::errc() || last != end) return std::nullopt;
    if (!negative) return magnitude;
    constexpr std::uint64_t kLowest = std::uint64_t{1} << 63;
    if (magnitude > kLowest) return std::nullopt;
    return static_cast<std::int64_t>(0 - magnitude);
}

std::optional<PropertyListValue> real(std::string_view text) {
    text = withoutLeadingSpace(text);
    // from_chars takes no plus sign, and takes "infinity" and "nan" in any case, but also "nan(…)".
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    if (text.empty() || text.back() == ')') return std::nullopt;
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [last, status] = std::from_chars(text.data(), end, value);
    if (last != end || status == std::errc::invalid_argument) return std::nullopt;
    if (status == std::errc::result_out_of_range) {
        // Too large or too small for a double: strtod tells which, and gives infinity or zero.
        value = std::strtod(std::string(text).c_str(), nullptr);
    }
    return value;
}

// YYYY-MM-DDTHH:MM:SSZ, the year with four digits or more and a sign where negative; days and months roll over.
std::optional<PropertyListValue> date(std::string_view text) {
    constexpr std::size_t kTailSize = std::string_view("-MM-DDTHH:MM:SSZ").size();
    constexpr std::size_t kLongestYear = 10;
    const bool negative = text.starts_with('-');
    if (negative) text.remove_prefix(1);
    if (text.size() < 4 + kTailSize || text.size() > kLongestYear + kTailSize) return std::nullopt;
    const auto number = [](std::string_view digits) -> std::optional<std::int64_t> {
        std::int64_t value = 0;
        for (const char digit : digits) {
            if (digit < '0' || digit > '9') return std::nullopt;
            value = value * 10 + (digit - '0');
        }
        return value;
    };
    const std::string_view tail = text.substr(text.size() - kTailSize);
    if (tail[0] != '-' || tail[3] != '-' || tail[6] != 'T' || tail[9] != ':' || tail[12] != ':' || tail[15] != 'Z') {
        return std::nullopt;
    }
    const auto year = number(text.substr(0, text.size() - kTailSize));
    const auto month = number(tail.substr(1, 2));
    const auto day = number(tail.substr(4, 2));
    const auto hour = number(tail.substr(7, 2));
    const auto minute = number(tail.substr(10, 2));
    const auto second = number(tail.substr(13, 2));
    if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
    const std::int64_t days = daysSince1970(negative ? -*year : *year, *month, *day) - daysSince1970(2001, 1, 1);
    return NSDate::sinceReferenceDate(static_cast<double>(days) * 86400.0 +
                                      static_cast<double>(*hour * 3600 + *minute * 60 + *second));
}

constexpr std::array<std::int8_t, 256> kBase64Values = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    std::int8_t value = 0;
    for (const char letter : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")) {
        values[static_cast<unsigned char>(letter)] = value++;
    }
    return values;
}();

// Every character outside the alphabet is skipped, padding included; bits that fill no byte are dropped.
PropertyListValue::Data data(std::string_view text) {
    PropertyListValue::Data bytes;
    bytes.reserve(text.size() / 4 * 3 + 3);
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char letter : text) {
        const std::int8_t value = kBase64Values[static_cast<unsigned char>(letter)];
        if (value < 0) continue;
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<std::uint8_t>(bits >> count));
        }
    }
    return bytes;
}

std::optional<PropertyListValue> value(const pugi::xml_node& element, std::size_t depth);

std::optional<PropertyListValue> container(const pugi::xml_node& element, std::size_t depth) {
    const bool isDictionary = std::strcmp(element.name(), "dict") == 0;
    PropertyListValue::Array elements;
    PropertyListValue::Dictionary entries;
    std::optional<std::u16string> key;
    for (const pugi::xml_node& child : element) {
        if (child.type() != pugi::node_element) {
            if (child.type() == pugi::node_pcdata && isBlank(child.value())) continue;
            return std::nullopt;
        }
        if (isDictionary && !key) {
            if (std::strcmp(child.name(), "key") != 0) return std::nullopt;
            const ElementText text(child);
            if (!text.isWellFormed()) return std::nullopt;
            key = utf16(text.view());
            continue;
        }
        std::optional<PropertyListValue> content = value(child, depth + 1);
        if (!content) return std::nullopt;
        if (isDictionary) {
            // Files are sorted by key, so the end is the likeliest place.
            entries.insert_or_assign(entries.end(), std::move(*key), std::move(*content));
            key.reset();
        } else {
            elements.push_back(std::move(*content));
        }
    }
    if (key) return std::nullopt;
    if (isDictionary) return PropertyListValue(std::move(entries));
    return PropertyListValue(std::move(elements));
}

std::optional<PropertyListValue> value(const pugi::xml_node& element, std::size_t depth) {
    if (depth >= kMaximumDepth) return std::nullopt;
    const std::string_view name = element.name();
    if (name == "dict" || name == "array") return container(element, depth);
    const ElementText text(element);
    if (!text.isWellFormed()) return std::nullopt;
    if (name == "string") return utf16(text.view());
    if (name == "integer") return integer(text.view());
    if (name == "true" || name == "false") {
        if (!isBlank(text.view())) return std::nullopt;
        return name == "true";
    }
    if (name == "real") return real(text.view());
    if (name == "date") return date(text.view());
    if (name == "data") return data(text.view());
    return std::nullopt;
}

// The one element among the children of `parent`, which may hold nothing else but blanks.
pugi::xml_node onlyElement(const pugi::xml_node& parent) {
    pugi::xml_node found;
    for (const pugi::xml_node& child : parent) {
        if (child.type() == pugi::node_pcdata && isBlank(child.value())) continue;
        if (child.type() != pugi::node_element || found) return {};
        found = child;
    }
    return found;
}

}  // namespace

std::optional<PropertyListValue> readXml(std::string utf8) {
    std::optional<PropertyListValue> list;
    {
        pugi::xml_document document;
        if (document.load_buffer_inplace(utf8.data(), utf8.size(), kParseOptions, pugi::encoding_utf8)) {
            pugi::xml_node root = onlyElement(document);
            if (std::strcmp(root.name(), "plist") == 0) root = onlyElement(root);
            if (root) list = value(root, 0);
        }
    }
    // The text may be the plaintext of an encrypted file.
    wipe(utf8.data(), utf8.size());
    return list;
}

}  // namespace ZORPlatform::PropertyListForms
