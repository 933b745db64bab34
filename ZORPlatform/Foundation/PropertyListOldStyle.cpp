// SPDX-License-Identifier: Apache-2.0
//
// The old-style text form: { key = value; } ( a, b ) <0f 2a> "quoted" bare, and the lines of a strings file.
#include <ZORPlatform/Foundation/PropertyListFormsInternal.h>

#include <array>
#include <string_view>

namespace ZORPlatform::PropertyListForms {
namespace {

constexpr bool isSpace(char16_t unit) noexcept {
    return (unit >= 0x09 && unit <= 0x0D) || unit == u' ' || unit == 0x2028 || unit == 0x2029;
}

constexpr bool isInBareWord(char16_t unit) noexcept {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9') ||
           std::u16string_view(u"_$/:.-").find(unit) != std::u16string_view::npos;
}

constexpr int hexadecimalDigit(char16_t unit) noexcept {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
    return -1;
}

class Reader {
public:
    explicit Reader(std::u16string_view text) : text_(text) {}

    std::optional<PropertyListValue> document() {
        skipSpace();
        if (atEnd()) return PropertyListValue::Dictionary{};
        const std::size_t begin = at_;
        std::optional<PropertyListValue> list = value(0);
        skipSpace();
        if (!list || atEnd()) return list;
        // A strings file is the content of a dictionary without its braces.
        if (list->as<std::u16string>() == nullptr) return std::nullopt;
        at_ = begin;
        list = entries(0);
        return atEnd() ? list : std::nullopt;
    }

private:
    std::optional<PropertyListValue> value(std::size_t depth) {
        skipSpace();
        if (depth >= kMaximumDepth || atEnd()) return std::nullopt;
        if (take(u'{')) {
            std::optional<PropertyListValue> dictionary = entries(depth);
            return take(u'}') ? std::move(dictionary) : std::nullopt;
        }
        if (take(u'(')) return array(depth);
        if (take(u'<')) return data();
        std::optional<std::u16string> word = text();
        if (!word) return std::nullopt;
        return PropertyListValue(std::move(*word));
    }

    // Up to the first place where no key stands.
    std::optional<PropertyListValue> entries(std::size_t depth) {
        PropertyListValue::Dictionary dictionary;
        skipSpace();
        while (std::optional<std::u16string> key = text()) {
            skipSpace();
            std::optional<PropertyListValue> content;
            if (take(u'=')) {
                content = value(depth + 1);
                skipSpace();
            } else {
                content = *key;  // "key;" stands for "key = key;".
            }
            if (!content || !take(u';')) return std::nullopt;
            dictionary.insert_or_assign(std::move(*key), std::move(*content));
            skipSpace();
        }
        return PropertyListValue(std::move(dictionary));
    }

    std::optional<PropertyListValue> array(std::size_t depth) {
        PropertyListValue::Array elements;
        skipSpace();
        while (!take(u')')) {
            std::optional<PropertyListValue> element = value(depth + 1);
            if (!element) return std::nullopt;
            elements.push_back(std::move(*element));
            skipSpace();
            if (take(u',')) {
                skipSpace();
            } else if (atEnd() || text_[at_] != u')') {
                return std::nullopt;
            }
        }
        return PropertyListValue(std::move(elements));
    }

    std::optional<PropertyListValue> data() {
        PropertyListValue::Data bytes;
        for (skipSpace(); !take(u'>'); skipSpace()) {
            if (text_.size() - at_ < 2) return std::nullopt;
            const int high = hexadecimalDigit(text_[at_]);
            const int low = hexadecimalDigit(text_[at_ + 1]);
            if (high < 0 || low < 0) return std::nullopt;
            bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
            at_ += 2;
        }
        return PropertyListValue(std::move(bytes));
    }

    std::optional<std::u16string> text() {
        if (atEnd()) return std::nullopt;
        if (text_[at_] == u'"' || text_[at_] == u'\'') return quoted(text_[at_++]);
        const std::size_t begin = at_;
        while (!atEnd() && isInBareWord(text_[at_])) ++at_;
        if (at_ == begin) return std::nullopt;
        return std::u16string(text_.substr(begin, at_ - begin));
    }

    std::optional<std::u16string> quoted(char16_t quote) {
        std::u16string content;
        while (!atEnd()) {
            const char16_t unit = text_[at_++];
            if (unit == quote) return content;
            if (unit != u'\\') {
                content.push_back(unit);
            } else if (atEnd()) {
                break;
            } else {
                content.push_back(escaped());
            }
        }
        return std::nullopt;
    }

    // What stands behind a backslash: a letter, up to three octal digits, or "U" and up to four hexadecimal ones.
    char16_t escaped() {
        const char16_t unit = text_[at_++];
        if (unit >= u'0' && unit <= u'7') {
            unsigned code = unit - u'0';
            for (int i = 0; i < 2 && !atEnd() && text_[at_] >= u'0' && text_[at_] <= u'7'; ++i) {
                code = code * 8 + (text_[at_++] - u'0');
            }
            return static_cast<char16_t>(code & 0xFF);
        }
        if (unit == u'U') {
            unsigned code = 0;
            for (int i = 0; i < 4 && !atEnd() && hexadecimalDigit(text_[at_]) >= 0; ++i) {
                code = code * 16 + static_cast<unsigned>(hexadecimalDigit(text_[at_++]));
            }
            return static_cast<char16_t>(code);
        }
        constexpr std::u16string_view kLetters = u"abfnrtv";
        constexpr std::u16string_view kControls = u"\a\b\f\n\r\t\v";
        const std::size_t letter = kLetters.find(unit);
        return letter == std::u16string_view::npos ? unit : kControls[letter];
    }

    // White space and both kinds of comment.
    void skipSpace() {
        while (!atEnd()) {
            const std::u16string_view rest = text_.substr(at_);
            if (isSpace(rest.front())) {
                ++at_;
            } else if (rest.starts_with(u"//")) {
                const std::size_t end = rest.find_first_of(u"\n\r\u2028\u2029");
                at_ = end == std::u16string_view::npos ? text_.size() : at_ + end;
            } else if (rest.starts_with(u"/*")) {
                const std::size_t end = rest.find(u"*/", 2);
                at_ = end == std::u16string_view::npos ? text_.size() : at_ + end + 2;
            } else {
                return;
            }
        }
    }

    bool take(char16_t unit) {
        if (atEnd() || text_[at_] != unit) return false;
        ++at_;
        return true;
    }

    [[nodiscard]] bool atEnd() const noexcept { return at_ == text_.size(); }

    std::u16string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

std::optional<PropertyListValue> readOldStyle(std::u16string_view text) { return Reader(text).document(); }

}  // namespace ZORPlatform::PropertyListForms
