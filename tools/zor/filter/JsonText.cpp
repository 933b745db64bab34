// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/JsonText.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <bitset>

namespace zor {
namespace {

bool isDigit(char byte) noexcept { return byte >= '0' && byte <= '9'; }

// The four hexadecimal digits at the beginning of `text`.
std::optional<char16_t> hexUnit(std::string_view text) noexcept {
    if (text.size() < 4) return std::nullopt;
    unsigned value = 0;
    for (const char digit : text.substr(0, 4)) {
        value *= 16;
        if (isDigit(digit)) {
            value += static_cast<unsigned>(digit - '0');
        } else if (const int letter = digit | 0x20; letter >= 'a' && letter <= 'f') {
            value += static_cast<unsigned>(letter - 'a' + 10);
        } else {
            return std::nullopt;
        }
    }
    return static_cast<char16_t>(value);
}

// What a single-letter escape stands for; NUL for a letter that is none.
char escapedByte(char letter) noexcept {
    switch (letter) {
        case '"':
        case '\\':
        case '/':
            return letter;
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return '\0';
    }
}

}  // namespace

void JsonCursor::skipSpace() noexcept {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\r')) ++at_;
}

bool JsonCursor::take(char byte) noexcept {
    if (at_ == text_.size() || text_[at_] != byte) return false;
    ++at_;
    return true;
}

std::optional<std::string_view> JsonCursor::string() noexcept {
    if (!take('"')) return std::nullopt;
    for (const std::size_t begin = at_; at_ < text_.size(); ++at_) {
        const char byte = text_[at_];
        if (byte == '"') return text_.substr(begin, at_++ - begin);
        if (static_cast<unsigned char>(byte) < 0x20) return std::nullopt;
        if (byte != '\\') continue;
        if (++at_ == text_.size()) return std::nullopt;
        if (text_[at_] == 'u') {
            if (!hexUnit(text_.substr(at_ + 1))) return std::nullopt;
            at_ += 4;
        } else if (escapedByte(text_[at_]) == '\0') {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

bool JsonCursor::skipWord(std::string_view word) noexcept {
    if (text_.substr(at_, word.size()) != word) return false;
    at_ += word.size();
    return true;
}

bool JsonCursor::skipDigits() noexcept {
    const std::size_t begin = at_;
    while (isDigit(peek())) ++at_;
    return at_ > begin;
}

bool JsonCursor::skipNumber() noexcept {
    (void)take('-');
    if (!take('0') && !skipDigits()) return false;
    if (take('.') && !skipDigits()) return false;
    if ((peek() | 0x20) == 'e') {
        ++at_;
        if (!take('+')) (void)take('-');
        return skipDigits();
    }
    return true;
}

bool JsonCursor::skipScalar() noexcept {
    switch (peek()) {
        case '"':
            return string().has_value();
        case 't':
            return skipWord("true");
        case 'f':
            return skipWord("false");
        case 'n':
            return skipWord("null");
        default:
            return skipNumber();
    }
}

bool JsonCursor::skipValue() noexcept {
    std::bitset<kMaximumDepth> isObject;
    std::size_t depth = 0;
    for (;;) {
        // A value begins here.
        skipSpace();
        bool opened = false;
        if (peek() == '{' || peek() == '[') {
            if (depth == kMaximumDepth) return false;
            isObject[depth++] = text_[at_++] == '{';
            skipSpace();
            opened = peek() != (isObject[depth - 1] ? '}' : ']');
        } else if (!skipScalar()) {
            return false;
        }
        // Behind a value, or inside what was opened: close what ends here, then find the next value.
        while (!opened) {
            if (depth == 0) return true;
            skipSpace();
            if (take(',')) break;
            if (!take(isObject[depth - 1] ? '}' : ']')) return false;
            --depth;
        }
        if (depth > 0 && isObject[depth - 1]) {
            skipSpace();
            if (!string()) return false;
            skipSpace();
            if (!take(':')) return false;
        }
    }
}

std::optional<std::string_view> unescapedJson(std::string_view spelled, std::string& room) {
    std::size_t escape = spelled.find('\\');
    if (escape == std::string_view::npos) return spelled;
    room.clear();
    for (; escape != std::string_view::npos; escape = spelled.find('\\')) {
        room += spelled.substr(0, escape);
        spelled.remove_prefix(escape + 1);
        if (spelled.front() != 'u') {
            room += escapedByte(spelled.front());
            spelled.remove_prefix(1);
            continue;
        }
        std::u16string units;
        do {
            units += hexUnit(spelled.substr(1)).value_or(u'\0');
            spelled.remove_prefix(5);
        } while (spelled.starts_with("\\u") && (spelled.remove_prefix(1), true));
        const std::optional<std::string> bytes = ZORPlatform::utf8IfWellFormed(units);
        if (!bytes) return std::nullopt;
        room += *bytes;
    }
    room += spelled;
    return room;
}

}  // namespace zor
