// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/PropertyListText.h>

#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <cmath>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace zor {
namespace {

using ZORPlatform::PropertyListValue;
using Array = PropertyListValue::Array;
using Dictionary = PropertyListValue::Dictionary;

// What stands in the one element that the XML of a number or date holds, so that its spelling has one home.
std::optional<std::string> xmlContent(const PropertyListValue& value) {
    const std::optional<std::string> xml = propertyListXml(value);
    if (!xml) return std::nullopt;
    const std::size_t end = xml->rfind("</", xml->rfind("</plist>") - 1);
    const std::size_t begin = xml->rfind('>', end) + 1;
    return xml->substr(begin, end - begin);
}

void appendJsonString(std::string& json, std::u16string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    json.push_back('"');
    while (!text.empty()) {
        const char16_t unit = text[0];
        const bool isPair =
            (unit & 0xFC00) == 0xD800 && text.size() > 1 && (static_cast<char16_t>(text[1]) & 0xFC00) == 0xDC00;
        const std::size_t size = isPair ? 2 : 1;
        if (unit == u'"' || unit == u'\\') {
            json.append({'\\', static_cast<char>(unit)});
        } else if (unit < 0x20 || (!isPair && (unit & 0xF800) == 0xD800)) {
            json.append("\\u");
            for (const int shift : {12, 8, 4, 0})
                json.push_back(kDigits[static_cast<std::size_t>(unit >> shift) & 0xF]);
        } else {
            json.append(ZORPlatform::utf8(text.substr(0, size)));
        }
        text.remove_prefix(size);
    }
    json.push_back('"');
}

// Answers false at a value that has no text.
bool appendJson(std::string& json, const PropertyListValue& value, std::size_t indent);

template <class Container, class AppendEntry>
bool appendEntries(std::string& json, const Container& entries, std::string_view brackets, std::size_t indent,
                   AppendEntry appendEntry) {
    json.push_back(brackets[0]);
    std::string_view separator = "\n";
    for (const auto& entry : entries) {
        json.append(separator).append(2 * (indent + 1), ' ');
        if (!appendEntry(entry)) return false;
        separator = ",\n";
    }
    if (!entries.empty()) json.append("\n").append(2 * indent, ' ');
    json.push_back(brackets[1]);
    return true;
}

bool appendJson(std::string& json, const PropertyListValue& value, std::size_t indent) {
    if (const auto* dictionary = value.as<Dictionary>()) {
        return appendEntries(json, *dictionary, "{}", indent, [&](const auto& entry) {
            appendJsonString(json, entry.first);
            json.append(": ");
            return appendJson(json, entry.second, indent + 1);
        });
    }
    if (const auto* array = value.as<Array>()) {
        return appendEntries(json, *array, "[]", indent,
                             [&](const PropertyListValue& entry) { return appendJson(json, entry, indent + 1); });
    }
    if (const auto* text = value.as<std::u16string>()) {
        appendJsonString(json, *text);
        return true;
    }
    const std::optional<std::string> text = bareText(value);
    if (!text) return false;
    const std::optional<double> real = value.realValue();
    const bool isJson =
        value.as<bool>() != nullptr || value.integerValue() || value.unsignedValue() || (real && std::isfinite(*real));
    if (isJson) {
        json.append(*text);
    } else {
        json.append("\"").append(*text).append("\"");
    }
    return true;
}

}  // namespace

std::optional<std::string> propertyListXml(const PropertyListValue& value) {
    const auto bytes = ZORPlatform::NSPropertyListSerialization::dataWithPropertyList(
        value, ZORPlatform::NSPropertyListFormat::xml_v1_0);
    if (!bytes) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
}

std::optional<std::string> propertyListJson(const PropertyListValue& value) {
    std::string json;
    if (!appendJson(json, value, 0)) return std::nullopt;
    return json;
}

std::optional<std::string> bareText(const PropertyListValue& value) {
    if (value.as<Dictionary>() != nullptr || value.as<Array>() != nullptr) return std::nullopt;
    if (const auto* text = value.as<std::u16string>()) return ZORPlatform::utf8(*text);
    if (const auto* isTrue = value.as<bool>()) return *isTrue ? "true" : "false";
    if (const auto* data = value.as<PropertyListValue::Data>()) {
        return ZORPlatform::utf8(ZORFoundation::ZORAESCrypt::zor_base64Encoding(*data));
    }
    if (const auto* reference = value.as<ZORPlatform::PropertyListUid>()) return std::to_string(reference->value);
    return xmlContent(value);
}

}  // namespace zor
