// SPDX-License-Identifier: Apache-2.0
//
// Text laid into patterns and telephone links, beside a copy of the same size into fresh memory and beside the rule
// carried out step by step.

#include <ZORFoundation/StringPatterns.h>
#include <ZORFoundation/ZORPhoneNumberFormatter.h>
#include <benchmarks/Comparison.h>
#include <tests/support/PatternModel.h>

#include <string>
#include <string_view>

namespace {

using benchmarks::Comparison;
using ZORFoundation::ZORPhoneNumberFormatter;
using ZORFoundation::StringExtension::formatTextWithPattern;

constexpr std::u16string_view kTyped = u"1234 5678 9012 3456";
constexpr std::u16string_view kPattern = u"XXXX-XXXX-XXXX-XXXX";
constexpr std::u16string_view kNumber = u"+32 (0)2 123.45.67";

std::u16string copied(std::u16string_view text) { return std::u16string(text); }

std::u16string removedOneByOne(std::u16string_view number) {
    std::u16string rest(number);
    for (const char16_t unit : {u'(', u')', u'-', u' ', u'.'}) std::erase(rest, unit);
    return u"tel://" + rest;
}

std::u16string repeated(std::u16string_view piece, std::size_t units) {
    std::u16string text;
    while (text.size() < units) text += piece;
    return text;
}

template <typename Format>
void addGrowth(const char* name, std::u16string_view piece, Format format) {
    const std::u16string once = repeated(piece, 20'000);
    const std::u16string twice = once + once;
    Comparison(std::string(name) + ", twice the input")
        .candidate([=] { benchmark::DoNotOptimize(format(twice)); })
        .peer("the input once", [=] { benchmark::DoNotOptimize(format(once)); })
        .atMost(2.2, "the input once")
        .add();
}

const bool registered = [] {
    Comparison("formatTextWithPattern, sixteen digits in groups of four")
        .candidate([] { benchmark::DoNotOptimize(formatTextWithPattern(kTyped, kPattern, u"X")); })
        .floor("the result copied", [] { benchmark::DoNotOptimize(copied(kPattern)); })
        .peer("step by step", [] { benchmark::DoNotOptimize(support::formattedPlainly(kTyped, kPattern, u"X")); })
        .add();
    Comparison("formatPhoneNumber")
        .candidate([] { benchmark::DoNotOptimize(ZORPhoneNumberFormatter::formatPhoneNumber(kNumber)); })
        .floor("the result copied", [] { benchmark::DoNotOptimize(copied(u"tel://+32021234567")); })
        .peer("removed one by one", [] { benchmark::DoNotOptimize(removedOneByOne(kNumber)); })
        .add();
    const auto grouped = [](std::u16string_view text) { return formatTextWithPattern(text, text, u"X"); };
    addGrowth("formatTextWithPattern, slots", u"X", grouped);
    addGrowth("formatTextWithPattern, spaces", u"X    -", grouped);
    addGrowth("formatTextWithPattern, clusters held apart", u"Xe \u0301", grouped);
    addGrowth("formatPhoneNumber", u"+32 (0)2 123.45.67",
              [](std::u16string_view text) { return ZORPhoneNumberFormatter::formatPhoneNumber(text); });
    return true;
}();

}  // namespace
