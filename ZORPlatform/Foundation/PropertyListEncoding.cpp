// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/PropertyListFormsInternal.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

#include <array>
#include <limits>
#include <memory>

namespace ZORPlatform::PropertyListForms {
namespace {

struct Mark {
    std::string_view bytes;
    const char* encoding;  // Null for UTF-8.
};

// UTF-32 before UTF-16: its little-endian mark begins with the other's.
constexpr std::array kMarks{Mark{{"\xFF\xFE\0\0", 4}, "UTF-32LE"}, Mark{{"\0\0\xFE\xFF", 4}, "UTF-32BE"},
                            Mark{{"\xFF\xFE", 2}, "UTF-16LE"}, Mark{{"\xFE\xFF", 2}, "UTF-16BE"},
                            Mark{{"\xEF\xBB\xBF", 3}, nullptr}};

// What "<?" looks like without a mark.
constexpr std::array kDeclarations{Mark{{"<\0\0\0", 4}, "UTF-32LE"}, Mark{{"\0\0\0<", 4}, "UTF-32BE"},
                                   Mark{{"<\0?\0", 4}, "UTF-16LE"}, Mark{{"\0<\0?", 4}, "UTF-16BE"}};

// The encoding that an XML declaration in an ASCII-compatible encoding names; empty for none.
std::string declaredEncoding(std::string_view bytes) {
    if (!bytes.starts_with("<?xml")) return {};
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const std::size_t attribute = declaration.find("encoding");
    if (attribute == std::string_view::npos) return {};
    const std::size_t open = declaration.find_first_of("\"'", attribute);
    if (open == std::string_view::npos) return {};
    const std::size_t close = declaration.find(declaration[open], open + 1);
    if (close == std::string_view::npos) return {};
    return std::string(declaration.substr(open + 1, close - open - 1));
}

std::optional<std::string> convert(std::string_view bytes, const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(encoding, &status), &ucnv_close);
    if (U_FAILURE(status)) return std::nullopt;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    std::u16string text;
    std::array<char16_t, 4096> piece;
    const char* source = bytes.data();
    do {
        char16_t* target = piece.data();
        status = U_ZERO_ERROR;
        ucnv_toUnicode(converter.get(), &target, piece.data() + piece.size(), &source, bytes.data() + bytes.size(),
                       nullptr, true, &status);
        text.append(piece.data(), target);
    } while (status == U_BUFFER_OVERFLOW_ERROR);
    if (U_FAILURE(status)) return std::nullopt;
    return utf8IfWellFormed(text);
}

bool isUtf8Name(std::string_view name) noexcept {
    return name.empty() || ucnv_compareNames(std::string(name).c_str(), "UTF-8") == 0 ||
           ucnv_compareNames(std::string(name).c_str(), "US-ASCII") == 0;
}

}  // namespace

std::optional<std::string> textOfBytes(std::span<const std::uint8_t> bytes) {
    std::string_view content(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const char* encoding = nullptr;
    bool marked = false;
    for (const Mark& mark : kMarks) {
        if (!content.starts_with(mark.bytes)) continue;
        content.remove_prefix(mark.bytes.size());
        encoding = mark.encoding;
        marked = true;
        break;
    }
    std::string declared;
    if (!marked) {
        for (const Mark& declaration : kDeclarations) {
            if (encoding == nullptr && content.starts_with(declaration.bytes)) encoding = declaration.encoding;
        }
        if (encoding == nullptr) {
            declared = declaredEncoding(content);
            if (!isUtf8Name(declared)) encoding = declared.c_str();
        }
    }
    std::optional<std::string> text;
    if (encoding != nullptr) {
        text = convert(content, encoding);
    } else if (isWellFormedUtf8(content)) {
        text = std::string(content);
    }
    if (text && text->find('\0') != std::string::npos) return std::nullopt;
    return text;
}

}  // namespace ZORPlatform::PropertyListForms
