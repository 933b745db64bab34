// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Base64.h>
#include <ZORPlatform/Foundation/GregorianDayInternal.h>
#include <ZORPlatform/Foundation/PropertyListFormsInternal.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace ZORPlatform::PropertyListForms {
namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";

// A line of data is shorter the deeper it stands, down to the width at eight levels.
constexpr std::size_t kDataLineWidth = 76;
constexpr std::size_t kTabWidth = 8;
constexpr std::size_t kIndentsThatCount = 8;

constexpr double kSecondsInDay = 86400;
constexpr std::int64_t kReferenceDay = 11323;  // 2001-01-01 in days since 1970-01-01.
constexpr double kLastWritableDate = 3e16;     // Near year 10^9; beyond it a double no longer counts every second.

/// Writes one document. Once something cannot be written, `failed` stays set and the bytes mean nothing.
class Writer {
public:
    std::optional<std::vector<std::uint8_t>> document(const PropertyListValue& list) {
        append(kHeader);
        value(list, 0);
        append(kFooter);
        if (failed_) {
            wipe(bytes_.data(), size_);
            return std::nullopt;
        }
        bytes_.resize(size_);
        return std::move(bytes_);
    }

private:
    void value(const PropertyListValue& list, std::size_t indent) {
        if (indent >= kMaximumDepth) failed_ = true;
        if (failed_) return;
        list.visit([this, indent](const auto& content) { element(content, indent); });
    }

    void element(const PropertyListValue::Dictionary& dictionary, std::size_t indent) {
        if (dictionary.empty()) return line(indent, "<dict/>\n");
        line(indent, "<dict>\n");
        for (const auto& [key, content] : dictionary) {
            tabs(indent + 1);
            append("<key>");
            text(key);
            append("</key>\n");
            value(content, indent + 1);
        }
        line(indent, "</dict>\n");
    }

    void element(const PropertyListValue::Array& array, std::size_t indent) {
        if (array.empty()) return line(indent, "<array/>\n");
        line(indent, "<array>\n");
        for (const PropertyListValue& content : array) value(content, indent + 1);
        line(indent, "</array>\n");
    }

    void element(const std::u16string& content, std::size_t indent) {
        tabs(indent);
        append("<string>");
        text(content);
        append("</string>\n");
    }

    void element(bool content, std::size_t indent) { line(indent, content ? "<true/>\n" : "<false/>\n"); }

    void element(std::int64_t content, std::size_t indent) { number("<integer>", content, "</integer>\n", indent); }
    void element(std::uint64_t content, std::size_t indent) { number("<integer>", content, "</integer>\n", indent); }

    void element(float content, std::size_t indent) { real(content, indent); }
    void element(double content, std::size_t indent) { real(content, indent); }

    template <class Real>
    void real(Real content, std::size_t indent) {
        if (std::isnan(content)) return line(indent, "<real>nan</real>\n");
        if (std::isinf(content)) {
            return line(indent, content > 0 ? "<real>+infinity</real>\n" : "<real>-infinity</real>\n");
        }
        number("<real>", content, "</real>\n", indent);
    }

    void element(NSDate date, std::size_t indent) {
        const double seconds = std::floor(date.timeIntervalSinceReferenceDate());
        if (!(std::fabs(seconds) <= kLastWritableDate)) {
            failed_ = true;
            return;
        }
        const double days = std::floor(seconds / kSecondsInDay);
        const auto second = static_cast<unsigned>(seconds - days * kSecondsInDay);
        const GregorianDay day = gregorianDay(static_cast<std::int64_t>(days) + kReferenceDay);
        tabs(indent);
        append("<date>");
        if (day.year < 0) append("-");
        digits(static_cast<std::uint64_t>(day.year < 0 ? -day.year : day.year), 4);
        append("-");
        digits(day.month, 2);
        append("-");
        digits(day.day, 2);
        append("T");
        digits(second / 3600, 2);
        append(":");
        digits(second / 60 % 60, 2);
        append(":");
        digits(second % 60, 2);
        append("Z</date>\n");
    }

    void element(const PropertyListValue::Data& data, std::size_t indent) {
        line(indent, "<data>\n");
        const std::size_t width = kDataLineWidth - kTabWidth * std::min(indent, kIndentsThatCount);
        const std::size_t bytesInLine = width / 4 * 3;
        for (std::size_t at = 0; at < data.size(); at += bytesInLine) {
            tabs(indent);
            base64(std::span(data).subspan(at, std::min(bytesInLine, data.size() - at)));
            append("\n");
        }
        line(indent, "</data>\n");
    }

    // A reference of a keyed archive, in the form that XML archives give it.
    void element(PropertyListUid uid, std::size_t indent) {
        element(PropertyListValue::Dictionary{{u"CF$UID", uid.value}}, indent);
    }

    void line(std::size_t indent, std::string_view content) {
        tabs(indent);
        append(content);
    }

    template <class Number>
    void number(std::string_view open, Number content, std::string_view close, std::size_t indent) {
        tabs(indent);
        append(open);
        char* const begin = room(32);
        size_ += static_cast<std::size_t>(std::to_chars(begin, begin + 32, content).ptr - begin);
        append(close);
    }

    void digits(std::uint64_t content, int width) {
        std::array<char, 20> reversed{};
        int count = 0;
        for (; content > 0 || count < width; content /= 10) {
            reversed[static_cast<std::size_t>(count++)] = static_cast<char>('0' + content % 10);
        }
        char* out = room(reversed.size());
        std::reverse_copy(reversed.begin(), reversed.begin() + count, out);
        size_ += static_cast<std::size_t>(count);
    }

    void text(std::u16string_view content) {
        // At most five bytes a unit, for "&amp;".
        char* const begin = room(content.size() * 5);
        char* out = begin;
        for (std::size_t i = 0; i < content.size(); ++i) {
            const char32_t unit = content[i];
            if (unit < 0x80) {
                if (unit == u'&') {
                    out = std::copy_n("&amp;", 5, out);
                } else if (unit == u'<') {
                    out = std::copy_n("&lt;", 4, out);
                } else if (unit == u'>') {
                    out = std::copy_n("&gt;", 4, out);
                } else {
                    failed_ = failed_ || unit == 0;
                    *out++ = static_cast<char>(unit);
                }
            } else if (unit < 0x800) {
                *out++ = static_cast<char>(0xC0 | (unit >> 6));
                *out++ = static_cast<char>(0x80 | (unit & 0x3F));
            } else if (unit < 0xD800 || unit >= 0xE000) {
                *out++ = static_cast<char>(0xE0 | (unit >> 12));
                *out++ = static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
                *out++ = static_cast<char>(0x80 | (unit & 0x3F));
            } else if (unit < 0xDC00 && i + 1 < content.size() && (content[i + 1] & 0xFC00) == 0xDC00) {
                const char32_t scalar = 0x10000 + ((unit & 0x3FF) << 10) + (content[++i] & 0x3FFU);
                *out++ = static_cast<char>(0xF0 | (scalar >> 18));
                *out++ = static_cast<char>(0x80 | ((scalar >> 12) & 0x3F));
                *out++ = static_cast<char>(0x80 | ((scalar >> 6) & 0x3F));
                *out++ = static_cast<char>(0x80 | (scalar & 0x3F));
            } else {
                failed_ = true;  // A lone surrogate has no UTF-8.
            }
        }
        size_ += static_cast<std::size_t>(out - begin);
    }

    // Whole groups by the machine's means; the last one, where it is not whole, is padded.
    void base64(std::span<const std::uint8_t> bytes) {
        char* out = room((bytes.size() + 2) / 3 * 4);
        const std::size_t groups = bytes.size() / 3;
        ZORPlatform::base64<char>().encode(bytes.data(), groups, out);
        if (const auto rest = bytes.subspan(groups * 3); !rest.empty()) {
            const std::array<std::uint8_t, 3> last{rest[0], rest.size() > 1 ? rest[1] : std::uint8_t{0}, 0};
            ZORPlatform::base64<char>().encode(last.data(), 1, out + groups * 4);
            std::memset(out + groups * 4 + rest.size() + 1, '=', 3 - rest.size());
        }
        size_ += (bytes.size() + 2) / 3 * 4;
    }

    void tabs(std::size_t count) {
        std::memset(room(count), '\t', count);
        size_ += count;
    }

    void append(std::string_view content) {
        std::memcpy(room(content.size()), content.data(), content.size());
        size_ += content.size();
    }

    // Where the next `count` bytes go. The vector is kept larger than what is written, so most calls only add.
    char* room(std::size_t count) {
        if (bytes_.size() - size_ < count) grow(std::max(bytes_.size() * 2, size_ + count + 4096));
        return reinterpret_cast<char*>(bytes_.data() + size_);
    }

    // What is left behind is wiped: the list may be the content of an encrypted file.
    void grow(std::size_t size) {
        std::vector<std::uint8_t> larger(size);
        std::copy_n(bytes_.begin(), size_, larger.begin());
        wipe(bytes_.data(), size_);
        bytes_ = std::move(larger);
    }

    std::vector<std::uint8_t> bytes_;
    std::size_t size_ = 0;
    bool failed_ = false;
};

}  // namespace

std::optional<std::vector<std::uint8_t>> writeXml(const PropertyListValue& list) { return Writer().document(list); }

}  // namespace ZORPlatform::PropertyListForms
