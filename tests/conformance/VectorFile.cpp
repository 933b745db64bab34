// SPDX-License-Identifier: Apache-2.0
#include "VectorFile.h"

#include <ZORPlatform/Foundation/Utf.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <stdexcept>

namespace conformance {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using ZORPlatform::utf16;

/// What a malformed line is reported with.
struct FormatError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A vector that asks for more is taken for a slip of the pen.
constexpr std::size_t kLargestValue = std::size_t{1} << 28;

Value toValue(const Json& json);

bool hasKeys(const Json& object, std::initializer_list<const char*> keys) {
    return object.size() == keys.size() &&
           std::all_of(keys.begin(), keys.end(), [&](const char* key) { return object.contains(key); });
}

unsigned hexDigit(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
    if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a') + 10;
    if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A') + 10;
    throw FormatError("not a hexadecimal digit");
}

template <class Unit, std::size_t Digits>
std::vector<Unit> unitsFromHex(const std::string& text) {
    if (text.size() % Digits != 0) throw FormatError("an incomplete hexadecimal value");
    std::vector<Unit> units;
    units.reserve(text.size() / Digits);
    for (std::size_t at = 0; at < text.size(); at += Digits) {
        unsigned unit = 0;
        for (std::size_t i = 0; i < Digits; ++i) unit = unit * 16 + hexDigit(text[at + i]);
        units.push_back(static_cast<Unit>(unit));
    }
    return units;
}

std::u16string toText(const Json& json) {
    if (json.is_string()) return utf16(json.get_ref<const std::string&>());
    return std::u16string(toValue(json).text());
}

double toDouble(const Json& json, const char* what) {
    if (!json.is_number()) throw FormatError(std::string(what) + " is not a number");
    return json.get<double>();
}

Value toDecimal(const Json& json) {
    const auto& text = json.get_ref<const std::string&>();
    if (text != "NaN" && text.find_first_not_of("+-.eE0123456789") != std::string::npos) {
        throw FormatError("not a decimal number: " + text);
    }
    return Decimal{text};
}

Value toError(const Json& json) {
    const std::u16string domain = errorDomain(toText(json.at("domain")));
    const Json& code = json.at("code");
    if (code == "any") return ErrorOfDomain{domain};
    if (!code.is_number_integer()) throw FormatError("an error's code is neither an integer nor \"any\"");
    std::optional<ZORPlatform::NSError::UserInfo> userInfo;
    if (json.contains("userInfo") && !json.at("userInfo").is_null()) {
        userInfo.emplace();
        for (const auto& [key, text] : json.at("userInfo").items())
            userInfo->emplace(userInfoKey(utf16(key)), toText(text));
    }
    return ZORPlatform::NSError(domain, code.get<std::int64_t>(), std::move(userInfo));
}

/// Joins texts or bytes, all of one kind.
Value joined(const Value::List& pieces) {
    const bool isText = !pieces.empty() && pieces.front().isText();
    std::u16string text;
    Value::Bytes bytes;
    for (const Value& piece : pieces) {
        if (piece.isAbsent()) throw FormatError("null cannot be joined");
        if (isText) {
            text += piece.text();
        } else {
            const auto more = piece.bytes();
            bytes.insert(bytes.end(), more.begin(), more.end());
        }
        if (text.size() + bytes.size() > kLargestValue) throw FormatError("the value is too long");
    }
    return isText ? Value(text) : Value(std::move(bytes));
}

Value repeated(const Json& json) {
    const bool isText = hasKeys(json, {"text", "count"});
    if (!isText && !hasKeys(json, {"hex", "count"}))
        throw FormatError("\"repeat\" takes \"hex\" or \"text\", and \"count\"");
    if (!json.at("count").is_number_unsigned()) throw FormatError("\"count\" is not a number of times");
    const auto count = json.at("count").get<std::size_t>();
    const Value piece = isText ? Value(toText(json.at("text")))
                               : Value(unitsFromHex<std::uint8_t, 2>(json.at("hex").get_ref<const std::string&>()));
    const std::size_t size = isText ? piece.text().size() : piece.bytes().size();
    if (size != 0 && count > kLargestValue / size) throw FormatError("the value is too long");
    std::u16string text;
    Value::Bytes bytes;
    for (std::size_t i = 0; i < count && size != 0; ++i) {
        if (isText) {
            text += piece.text();
        } else {
            bytes.insert(bytes.end(), piece.bytes().begin(), piece.bytes().end());
        }
    }
    return isText ? Value(text) : Value(std::move(bytes));
}

Value toObject(const Json& json) {
    if (hasKeys(json, {"utf16"})) {
        const auto units = unitsFromHex<char16_t, 4>(json.at("utf16").get_ref<const std::string&>());
        return std::u16string_view(units.data(), units.size());
    }
    if (hasKeys(json, {"hex"})) return unitsFromHex<std::uint8_t, 2>(json.at("hex").get_ref<const std::string&>());
    if (hasKeys(json, {"decimal"})) return toDecimal(json.at("decimal"));
    if (hasKeys(json, {"unix"})) return Date{toDouble(json.at("unix"), "\"unix\"")};
    if (hasKeys(json, {"repeat"})) return repeated(json.at("repeat"));
    if (hasKeys(json, {"concat"})) return joined(toValue(json.at("concat")).list());
    if (hasKeys(json, {"domain", "code", "userInfo"}) || hasKeys(json, {"domain", "code"})) return toError(json);
    Value::Object members;
    for (const auto& [name, value] : json.items()) members.emplace_back(name, toValue(value));
    return members;
}

Value toValue(const Json& json) {
    switch (json.type()) {
        case Json::value_t::null:
            return std::nullopt;
        case Json::value_t::boolean:
            return json.get<bool>();
        case Json::value_t::number_integer:
            return json.get<std::int64_t>();
        case Json::value_t::number_unsigned:
            return json.get<std::uint64_t>();
        case Json::value_t::number_float:
            return json.get<double>();
        case Json::value_t::string:
            return utf16(json.get_ref<const std::string&>());
        case Json::value_t::object:
            return toObject(json);
        case Json::value_t::array: {
            Value::List list;
            for (const Json& element : json) list.push_back(toValue(element));
            return list;
        }
        default:
            throw FormatError("not a value");
    }
}

Environment toEnvironment(const Json& json) {
    Environment environment;
    for (const auto& [key, value] : json.items()) {
        if (key == "tz") {
            environment.timeZone = value.get<std::string>();
        } else if (key == "locale") {
            environment.locale = value.get<std::string>();
        } else if (key == "now") {
            environment.now = toDouble(value, "\"now\"");
        } else {
            throw FormatError("\"env\" has no \"" + key + "\"");
        }
    }
    return environment;
}

ExpectedException toException(const Json& json) {
    if (!hasKeys(json, {"name", "reason"}) && !hasKeys(json, {"name"})) {
        throw FormatError("\"throws\" takes \"name\" and \"reason\"");
    }
    ExpectedException exception{toText(json.at("name")), std::nullopt};
    if (json.contains("reason") && !json.at("reason").is_null()) exception.reason = toText(json.at("reason"));
    return exception;
}

Case toCase(const Json& json) {
    if (!json.is_object()) throw FormatError("the line is not an object");
    Case result;
    int outcomes = 0;
    for (const auto& [key, value] : json.items()) {
        if (key == "op") {
            result.operation = value.get<std::string>();
        } else if (key == "args") {
            result.arguments = toValue(value).list();
        } else if (key == "env") {
            result.environment = toEnvironment(value);
        } else if (key == "error") {
            result.error = toValue(value);
        } else if (key == "result") {
            result.outcome = toValue(value);
            ++outcomes;
        } else if (key == "throws") {
            result.outcome = toException(value);
            ++outcomes;
        } else if (key == "fatal") {
            if (value != true) throw FormatError("\"fatal\" can only be true");
            result.outcome = ExpectedStop{};
            ++outcomes;
        } else if (key != "note") {
            throw FormatError("a case has no \"" + key + "\"");
        }
    }
    if (result.operation.empty() || !json.contains("args")) throw FormatError("\"op\" or \"args\" is missing");
    if (outcomes != 1) throw FormatError("a case has exactly one of \"result\", \"throws\" and \"fatal\"");
    return result;
}

}  // namespace

std::variant<Case, Malformed> parseCase(std::string_view line) {
    try {
        return toCase(Json::parse(line));
    } catch (const Json::exception& problem) {
        return Malformed{problem.what()};
    } catch (const FormatError& problem) {
        return Malformed{problem.what()};
    } catch (const WrongKind& problem) {
        return Malformed{problem.what()};
    }
}

std::vector<std::variant<Case, Malformed>> readVectorFile(const fs::path& file) {
    std::vector<std::variant<Case, Malformed>> cases;
    std::ifstream stream(file, std::ios::binary);
    for (std::string line; std::getline(stream, line);) cases.push_back(parseCase(line));
    return cases;
}

std::vector<fs::path> vectorFiles(const fs::path& directory) {
    std::vector<fs::path> files;
    std::error_code failure;
    for (fs::directory_iterator entry(directory, failure), end; !failure && entry != end; entry.increment(failure)) {
        if (entry->path().extension() == ".jsonl") files.push_back(entry->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace conformance
