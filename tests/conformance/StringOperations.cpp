// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/ArrayExtension.h>
#include <ZORFoundation/StringExtension.h>
#include <ZORFoundation/ZORExtra.h>
#include <ZORFoundation/ZORFill.h>
#include <ZORFoundation/ZORSubstringSearch.h>

namespace conformance {

using namespace ZORFoundation;

namespace {

// Elements of a vector are of any kind and are equal when they match. Texts alone are hashed, as an application's are.
Value distinct(const Value::List& list) {
    struct Element {
        const Value* value;
        bool operator==(const Element& other) const { return value->matches(*other.value); }
    };
    std::vector<Element> elements;
    std::vector<std::u16string> texts;
    for (const Value& value : list) {
        elements.push_back({&value});
        if (value.isText()) texts.emplace_back(value.text());
    }
    if (!texts.empty() && texts.size() == list.size()) return ArrayExtension::distinct(texts);
    Value::List result;
    for (const Element& element : ArrayExtension::distinct(elements)) result.push_back(*element.value);
    return result;
}

Range range(const Value& value) {
    const auto [lower, upper] = value.pair();
    return {lower, upper};
}

// The subscript takes an integer or a range.
Value subscript(const Arguments& a) {
    return a[1].isList() ? StringExtension::subscript(a[0].text(), range(a[1]))
                         : StringExtension::subscript(a[0].text(), a[1].integer());
}

}  // namespace

void registerStringOperations(Operations& operations) {
    operations.add("ZORExtra.zor_preparedURLString",
                   [](const Arguments& a) { return ZORExtra::zor_preparedURLString(a[0].text()); });
    operations.add("ZORExtra.zor_containsSubstring:",
                   [](const Arguments& a) { return ZORExtra::zor_containsSubstring(a[0].text(), a[1].text()); });
    operations.add("ZORExtra.zor_parsedHTML", [](const Arguments& a) { return ZORExtra::zor_parsedHTML(a[0].text()); });
    operations.add("ZORExtra.removeAccents", [](const Arguments& a) { return ZORExtra::removeAccents(a[0].text()); });
    operations.add("ZORSubstringSearch.zor_hasSubString:",
                   [](const Arguments& a) { return ZORSubstringSearch::zor_hasSubString(a[0].text(), a[1].text()); });
    operations.add("ZORFill.zor_nullFilledArrayWithCount:", [](const Arguments& a) {
        return Value::List(ZORFill::zor_nullFilledArrayWithCount(a[0].integer()).size(), std::nullopt);
    });
    operations.add("String.replace(_:with:)", [](const Arguments& a) {
        std::u16string text(a[0].text());
        StringExtension::replace(text, a[1].text(), a[2].text());
        return text;
    });
    operations.add("String.length", [](const Arguments& a) { return StringExtension::length(a[0].text()); });
    operations.add("String.boolValue", [](const Arguments& a) { return StringExtension::boolValue(a[0].text()); });
    operations.add("String.substringToIndex",
                   [](const Arguments& a) { return StringExtension::substringToIndex(a[0].text(), a[1].integer()); });
    operations.add("String.substringFromIndex",
                   [](const Arguments& a) { return StringExtension::substringFromIndex(a[0].text(), a[1].integer()); });
    operations.add("String.substringWithRange",
                   [](const Arguments& a) { return StringExtension::substringWithRange(a[0].text(), range(a[1])); });
    operations.add("String.subscript", subscript);
    operations.add("String.replaceCharactersInRange(_:withString:)", [](const Arguments& a) {
        return StringExtension::replaceCharactersInRange(a[0].text(), range(a[1]), a[2].optionalText());
    });
    operations.add("String.preparedURLString",
                   [](const Arguments& a) { return StringExtension::preparedURLString(a[0].text()); });
    operations.add("String.uppercaseFirst",
                   [](const Arguments& a) { return StringExtension::uppercaseFirst(a[0].text()); });
    operations.add("String.replaceFirstCharactersBeforeFirstDigit", [](const Arguments& a) {
        return StringExtension::replaceFirstCharactersBeforeFirstDigit(a[0].text(), a[1].text());
    });
    operations.add("String.removeConsecutiveSpaces",
                   [](const Arguments& a) { return StringExtension::removeConsecutiveSpaces(a[0].text()); });
    operations.add("String.emojiFlag", [](const Arguments& a) { return StringExtension::emojiFlag(a[0].text()); });
    operations.add("String.withEmojis", [](const Arguments& a) { return StringExtension::withEmojis(a[0].text()); });
    operations.add("Array.distinct", [](const Arguments& a) { return distinct(a[0].list()); });
}

}  // namespace conformance
