// SPDX-License-Identifier: Apache-2.0
//
// Positions in user-perceived characters, beside ICU's break iterator, which is kept from call to call and given the
// text in place.

#include <ZORFoundation/StringExtension.h>
#include <ZORPlatform/Foundation/Text.h>
#include <benchmarks/Comparison.h>

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/utext.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

using benchmarks::Comparison;
using namespace ZORFoundation::StringExtension;

constexpr const char* kIterator = "ICU's break iterator";

std::u16string repeated(std::u16string_view piece, std::size_t units) {
    std::u16string text;
    while (text.size() < units) text += piece;
    return text;
}

// The end of character number `count`, or of the text.
std::int32_t endByIcu(std::u16string_view text, std::size_t count) {
    UErrorCode status = U_ZERO_ERROR;
    thread_local const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    UText view = UTEXT_INITIALIZER;
    utext_openUChars(&view, text.data(), static_cast<std::int64_t>(text.size()), &status);
    breaks->setText(&view, status);
    if (U_FAILURE(status)) std::abort();
    std::int32_t end = breaks->first();
    for (std::int32_t next = end; count > 0 && (next = breaks->next()) != icu::BreakIterator::DONE; --count) end = next;
    utext_close(&view);
    return end;
}

void addLength(const std::string& name, const std::u16string& text, double limit) {
    Comparison("length, " + name)
        .itemsPerCall(text.size())
        .candidate([=] { benchmark::DoNotOptimize(length(text)); })
        .peer(kIterator, [=] { benchmark::DoNotOptimize(endByIcu(text, text.size())); })
        .atMost(limit, kIterator)
        .add();
}

const bool registered = [] {
    constexpr std::u16string_view kFrench = u"Cr\u00E8me br\u00FBl\u00E9e: 12,50 \u00A0EUR, pay\u00E9e le 3/5. ";
    constexpr std::u16string_view kLines =
        u"Rekening BE68 5390 0754 7034\r\nBedrag 12,50\r\nMededeling +++090/9337/55493+++\r\n";
    constexpr std::u16string_view kMixed =
        u"Betaling van 12,50 \u20AC \u2013 \u201Cbedankt\u201D \U0001F44D\U0001F3FD e\u0301te\u0301 \u6F22\u5B57 "
        u"\uD55C\uAE00 "
        u"\u041F\u0440\u0438\u0432\u0435\u0442 \u0E17\u0E35\u0E48 \u0915\u094D\u0937\u093F "
        u"\U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F1E7\U0001F1EA, groeten uit Gent! ";
    constexpr double kPlainGoal = 1.0 / 15;

    addLength("1 KB of plain text", repeated(kFrench, 512), kPlainGoal);
    addLength("20 units of plain text", u"Cr\u00E8me br\u00FBl\u00E9e 12,50", kPlainGoal);
    addLength("1 MB of plain text", repeated(kFrench, 1U << 19), kPlainGoal);
    addLength("1 MB of mixed text", repeated(kMixed, 1U << 19), 0.2);
    addLength("lines that end with CR LF", repeated(kLines, 1U << 16), 1);
    addLength("Chinese", repeated(u"\u6F22\u5B57\u4E2D\u6587", 1U << 16), 1);
    addLength("Hangul in syllables", repeated(u"\uD55C\uAE00\uAC00", 1U << 16), 1);
    addLength("Hangul in letters", repeated(u"\u1112\u1161\u11AB", 1U << 16), 1);
    addLength("Hindi", repeated(u"\u0915\u094D\u0937\u093F\u0928\u092E", 1U << 16), 1);
    addLength("families", repeated(u"\U0001F468\u200D\U0001F469\u200D\U0001F467", 1U << 16), 1);
    addLength("flags", repeated(u"\U0001F1E7\U0001F1EA", 1U << 16), 1);
    addLength("one letter and its marks", u"e" + repeated(u"\u0301", 1U << 16), 1);
    addLength("a mark on every other letter", repeated(u"ae\u0301", 1U << 16), 1);
    addLength("lone surrogates", repeated(u"\xDE00\xD83D", 1U << 16), 1);

    const std::u16string plain = repeated(kFrench, 512);
    Comparison("substringWithRange, ten characters out of the middle of 1 KB of plain text")
        .candidate([=] {
            benchmark::DoNotOptimize(substringWithRange(plain, {250, 260}));
        })
        .peer(kIterator,
              [=] {
                  benchmark::DoNotOptimize(
                      plain.substr(static_cast<std::size_t>(endByIcu(plain, 250)),
                                   static_cast<std::size_t>(endByIcu(std::u16string_view(plain).substr(250), 10))));
              })
        .atMost(kPlainGoal, kIterator)
        .add();
    const std::u16string mixed = repeated(kMixed, 512);
    Comparison("substringFromIndex, 250 characters into mixed text")
        .candidate([=] { benchmark::DoNotOptimize(substringFromIndex(mixed, 250)); })
        .peer(kIterator,
              [=] { benchmark::DoNotOptimize(mixed.substr(static_cast<std::size_t>(endByIcu(mixed, 250)))); })
        .atMost(0.2, kIterator)
        .add();
    const std::u16string large = repeated(kMixed, 1U << 19);
    Comparison("substringToIndex, ten characters out of 1 MB")
        .candidate([=] { benchmark::DoNotOptimize(substringToIndex(large, 10)); })
        .peer("out of twenty", [text = large.substr(0, 20)] { benchmark::DoNotOptimize(substringToIndex(text, 10)); })
        .atMost(1.2, "out of twenty")
        .add();
    return true;
}();

}  // namespace
