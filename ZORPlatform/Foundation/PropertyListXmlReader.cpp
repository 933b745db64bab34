// SPDX-License-Identifier: Apache-2.0
//
// The XML form. The parser below is lenient and decodes nothing; what it lets through is refused here, because a
// settings file with one odd character must still load, and a hostile one must not.
#include <ZORPlatform/Foundation/Base64.h>
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
#include <memory>

namespace ZORPlatform::PropertyListForms {
namespace {

// Line ends and references arrive as written; a text beside the root is seen. A text that its element begins with is
// the element's value and no node of its own, which halves the nodes.
constexpr unsigned kParseOptions = pugi::parse_cdata | pugi::parse_fragment | pugi::parse_embed_pcdata;

// White-space-only texts are texts. The parser makes nodes of them all, or of those only that are all their element
// holds. The latter will do, and spares a node for every indent, unless comments and the like may part a text.
unsigned whiteSpaceOption(std::string_view text) noexcept {
    const auto begins = [text](char second, std::string_view expected) {
        for (std::size_t at = text.find(second, 1); at != std::string_view::npos; at = text.find(second, at + 1)) {
            if (text[at - 1] == '<' && !text.substr(at + 1).starts_with(expected)) return true;
        }
        return false;
    };
    const bool mayPartTexts = begins('!', "DOCTYPE") || begins('?', "xml ");
    return mayPartTexts ? pugi::parse_ws_pcdata : pugi::parse_ws_pcdata_single;
}

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
    explicit ElementText(const pugi::xml_node& element) : view_(element.value()) {
        const pugi::xml_node first = element.first_child();
        if (!first && view_.find('&') == std::string_view::npos) return;
        // Decoding makes nothing longer, so there is one copy, and it can be wiped.
        std::size_t size = view_.size();
        for (pugi::xml_node child = first; child; child = child.next_sibling()) size += std::strlen(child.value());
        joined_.reserve(size);
        wellFormed_ = appendDecoded(joined_, view_);
        for (pugi::xml_node child = first; child && wellFormed_; child = child.next_sibling()) {
            if (child.type() == pugi::node_cdata) {
                joined_ += child.value();
            } else {
                wellFormed_ = child.type() == pugi::node_pcdata && appendDecoded(joined_, child.value());
            }
        }
        view_ = joined_;
    }
    ~ElementText() { wipe(joined_.data(), joined_.size()); }
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

// Every character outside the alphabet is skipped, padding included; bits that fill no byte are dropped.
PropertyListValue::Data data(std::string_view text) {
    constexpr std::size_t kFilterRoom = 64;
    const auto characters = std::make_unique_for_overwrite<char[]>(text.size() + kFilterRoom);
    std::size_t count = 0;
    while (!text.empty()) {
        const Base64Filtered taken =
            base64<char>().filter(text.data(), text.size(), /*stopsAtPadding=*/false, characters.get() + count);
        count += taken.characters;
        // It has stopped before a character outside ASCII, or at the end.
        text.remove_prefix(std::min(text.size(), taken.units + 1));
    }
    const std::size_t groups = count / 4;
    PropertyListValue::Data bytes(groups * 3);
    base64<char>().decode(characters.get(), groups, bytes.data());
    std::uint32_t bits = 0;
    for (std::size_t at = groups * 4; at < count; ++at) {
        bits = bits << 6 | kBase64Values[static_cast<unsigned char>(characters[at])];
    }
    const std::size_t rest = count % 4;
    if (rest == 2) bytes.push_back(static_cast<std::uint8_t>(bits >> 4));
    if (rest == 3)
        bytes.insert(bytes.end(), {static_cast<std::uint8_t>(bits >> 10), static_cast<std::uint8_t>(bits >> 2)});
    wipe(characters.get(), count);
    return bytes;
}

enum class Element { array, data, date, dictionary, false_, integer, key, real, string, true_, unknown };

Element elementOf(const pugi::xml_node& node) noexcept {
    const std::string_view name = node.name();
    const auto ifNamed = [name](std::string_view expected, Element element) {
        return name == expected ? element : Element::unknown;
    };
    switch (name.empty() ? '\0' : name[0]) {
        case 'a':
            return ifNamed("array", Element::array);
        case 'd':
            if (name == "dict") return Element::dictionary;
            return name == "data" ? Element::data : ifNamed("date", Element::date);
        case 'f':
            return ifNamed("false", Element::false_);
        case 'i':
            return ifNamed("integer", Element::integer);
        case 'k':
            return ifNamed("key", Element::key);
        case 'r':
            return ifNamed("real", Element::real);
        case 's':
            return ifNamed("string", Element::string);
        case 't':
            return ifNamed("true", Element::true_);
        default:
            return Element::unknown;
    }
}

/// The elements among the children of one, which may hold nothing else but blanks.
class ChildElements {
public:
    explicit ChildElements(const pugi::xml_node& parent)
        : next_(parent.first_child()), isPure_(isBlank(parent.value())) {}

    /// The next one; null at the end, and at anything else than an element or blanks.
    [[nodiscard]] pugi::xml_node next() {
        for (; next_; next_ = next_.next_sibling()) {
            const pugi::xml_node_type type = next_.type();
            if (type == pugi::node_element) {
                const pugi::xml_node found = next_;
                next_ = found.next_sibling();
                return found;
            }
            isPure_ = isPure_ && type == pugi::node_pcdata && isBlank(next_.value());
            if (!isPure_) break;
        }
        return {};
    }

    /// Once `next` has answered null: whether that was the end.
    [[nodiscard]] bool isPure() const noexcept { return isPure_; }

private:
    pugi::xml_node next_;
    bool isPure_;
};

// The one element among the children of `parent`.
pugi::xml_node onlyElement(const pugi::xml_node& parent) {
    ChildElements children(parent);
    const pugi::xml_node found = children.next();
    return !children.next() && children.isPure() ? found : pugi::xml_node();
}

// Values are read where they are to stay. Answers false for what is no list; `into` then has no meaning.
bool read(const pugi::xml_node& element, std::size_t depth, PropertyListValue& into);

bool readDictionary(const pugi::xml_node& element, std::size_t depth, PropertyListValue& into) {
    auto& entries = into.emplace<PropertyListValue::Dictionary>();
    ChildElements children(element);
    while (const pugi::xml_node key = children.next()) {
        if (elementOf(key) != Element::key) return false;
        const ElementText text(key);
        const pugi::xml_node content = children.next();
        if (!text.isWellFormed() || !content) return false;
        // Files are sorted by key, so the end is the likeliest place. Of equal keys the last one counts.
        const auto entry = entries.try_emplace(entries.end(), utf16(text.view()));
        if (!read(content, depth + 1, entry->second)) return false;
    }
    return children.isPure();
}

bool readArray(const pugi::xml_node& element, std::size_t depth, PropertyListValue& into) {
    auto& elements = into.emplace<PropertyListValue::Array>();
    ChildElements children(element);
    while (const pugi::xml_node content = children.next()) {
        if (!read(content, depth + 1, elements.emplace_back())) return false;
    }
    return children.isPure();
}

bool readScalar(Element kind, std::string_view text, PropertyListValue& into) {
    const auto assign = [&into](const std::optional<PropertyListValue>& value) {
        if (value) into = *value;
        return value.has_value();
    };
    switch (kind) {
        case Element::string:
            into.emplace<std::u16string>(utf16(text));
            return true;
        case Element::integer:
            return assign(integer(text));
        case Element::real:
            return assign(real(text));
        case Element::true_:
        case Element::false_:
            into.emplace<bool>(kind == Element::true_);
            return isBlank(text);
        case Element::date:
            return assign(date(text));
        case Element::data:
            into.emplace<PropertyListValue::Data>(data(text));
            return true;
        default:
            return false;
    }
}

bool read(const pugi::xml_node& element, std::size_t depth, PropertyListValue& into) {
    if (depth >= kMaximumDepth) return false;
    const Element kind = elementOf(element);
    if (kind == Element::dictionary) return readDictionary(element, depth, into);
    if (kind == Element::array) return readArray(element, depth, into);
    const ElementText text(element);
    return text.isWellFormed() && readScalar(kind, text.view(), into);
}

}  // namespace

std::optional<PropertyListValue> readXml(std::string utf8) {
    std::optional<PropertyListValue> list;
    // The parser overlooks a "<" before the last byte. No document ends so.
    if (utf8.size() >= 2 && utf8[utf8.size() - 2] != '<') {
        const unsigned options = kParseOptions | whiteSpaceOption(utf8);
        pugi::xml_document document;
        if (document.load_buffer_inplace(utf8.data(), utf8.size(), options, pugi::encoding_utf8)) {
            pugi::xml_node root = onlyElement(document);
            if (std::strcmp(root.name(), "plist") == 0) root = onlyElement(root);
            if (root && !read(root, 0, list.emplace())) list.reset();
        }
    }
    // The text may be the plaintext of an encrypted file.
    wipe(utf8.data(), utf8.size());
    return list;
}

}  // namespace ZORPlatform::PropertyListForms
