// SPDX-License-Identifier: Apache-2.0
//
// Conversions of whole texts and distinct elements, beside a copy of the text, ICU's transliterators, which are kept
// from call to call, and what the standard library offers.

#include <ZORFoundation/ArrayExtension.h>
#include <ZORFoundation/StringExtension.h>
#include <ZORFoundation/ZORExtra.h>
#include <ZORFoundation/ZORSubstringSearch.h>
#include <benchmarks/Comparison.h>

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace {

using benchmarks::Comparison;
using namespace ZORFoundation;

std::u16string repeated(std::u16string_view piece, std::size_t units) {
    std::u16string text;
    while (text.size() < units) text += piece;
    return text;
}

class Transliterator {
public:
    static Transliterator named(const char* identifier, UTransDirection direction) {
        UErrorCode status = U_ZERO_ERROR;
        return Transliterator(icu::Transliterator::createInstance(identifier, direction, status));
    }
    static Transliterator ofRules(const char16_t* rules) {
        UErrorCode status = U_ZERO_ERROR;
        UParseError error;
        return Transliterator(icu::Transliterator::createFromRules("bench", rules, UTRANS_FORWARD, error, status));
    }

    [[nodiscard]] std::u16string transliterated(std::u16string_view text) const {
        icu::UnicodeString result(text.data(), static_cast<std::int32_t>(text.size()));
        made_->transliterate(result);
        return {result.getBuffer(), static_cast<std::size_t>(result.length())};
    }

private:
    explicit Transliterator(icu::Transliterator* made) : made_(made) {
        if (made == nullptr) std::abort();
    }
    std::shared_ptr<const icu::Transliterator> made_;
};

template <class Convert>
void addConversion(const std::string& name, const std::u16string& text, Convert convert, const std::string& peerName,
                   const Transliterator& peer) {
    Comparison(name)
        .itemsPerCall(text.size())
        .candidate([=] { benchmark::DoNotOptimize(convert(text)); })
        .floor("a copy", [=] { benchmark::DoNotOptimize(std::u16string(text)); })
        .peer(peerName, [=] { benchmark::DoNotOptimize(peer.transliterated(text)); })
        .atMost(0.2, peerName)
        .add();
}

template <class Element>
std::vector<Element> distinctBySet(const std::vector<Element>& array) {
    std::vector<Element> result;
    std::unordered_set<Element> known;
    for (const Element& element : array) {
        if (known.insert(element).second) result.push_back(element);
    }
    return result;
}

struct Comparable {
    int value;
    bool operator==(const Comparable& other) const { return value == other.value; }
};

// Every number comes twice.
std::vector<int> numbers(int count) {
    std::vector<int> made;
    for (int at = 0; at < count; ++at) made.push_back(at * 7919 % (count / 2));
    return made;
}

const bool registered = [] {
    const std::u16string french = repeated(u"Cr\u00E8me br\u00FBl\u00E9e et caf\u00E9 cr\u00E8me, merci. ", 512);
    const std::u16string ascii = repeated(u"Creme brulee et cafe creme, merci. ", 512);
    const auto withoutAccents = [](const std::u16string& text) { return ZORExtra::removeAccents(text); };
    const Transliterator marks = Transliterator::named("NFD; [:Nonspacing Mark:] Remove; NFC", UTRANS_FORWARD);
    const Transliterator latin = Transliterator::named("Latin-ASCII", UTRANS_FORWARD);
    addConversion("removeAccents, 1 KB of French", french, withoutAccents, "ICU: marks removed", marks);
    addConversion("removeAccents, 1 KB of French, again", french, withoutAccents, "ICU: Latin-ASCII", latin);
    addConversion("removeAccents, 1 KB of ASCII", ascii, withoutAccents, "ICU: Latin-ASCII", latin);

    const auto withEmojis = [](const std::u16string& text) { return StringExtension::withEmojis(text); };
    const Transliterator hex = Transliterator::named("Any-Hex/Java", UTRANS_REVERSE);
    addConversion("withEmojis, 1 KB with an escape every ten units", repeated(u"caf\\u00E9 cr", 512), withEmojis,
                  "ICU: Any-Hex/Java", hex);
    addConversion("withEmojis, 1 KB of nothing but escapes", repeated(u"\\uD83D\\uDE00", 512), withEmojis,
                  "ICU: Any-Hex/Java", hex);
    addConversion("withEmojis, 1 KB without escapes", ascii, withEmojis, "ICU: Any-Hex/Java", hex);

    const auto collapsed = [](const std::u16string& text) { return StringExtension::removeConsecutiveSpaces(text); };
    const Transliterator spaces = Transliterator::ofRules(u"' '+ > ' ';");
    addConversion("removeConsecutiveSpaces, 1 KB with a run every ten units", repeated(u"Rent   May", 512), collapsed,
                  "ICU: a rule", spaces);
    addConversion("removeConsecutiveSpaces, 1 KB without runs", ascii, collapsed, "ICU: a rule", spaces);
    addConversion("removeConsecutiveSpaces, 1 KB of pairs", repeated(u"a  b  ", 512), collapsed, "ICU: a rule", spaces);

    const std::u16string code = u"be";
    Comparison("emojiFlag, a country")
        .candidate([=] { benchmark::DoNotOptimize(StringExtension::emojiFlag(code)); })
        .floor("a copy of the result",
               [flag = StringExtension::emojiFlag(code)] { benchmark::DoNotOptimize(std::u16string(flag)); })
        .add();

    Comparison("zor_containsSubstring, at the end of 1 KB of ASCII")
        .itemsPerCall(ascii.size())
        .candidate([=] { benchmark::DoNotOptimize(ZORExtra::zor_containsSubstring(ascii + u"Z", u"z")); })
        .floor("a copy", [=] { benchmark::DoNotOptimize(ascii + u"Z"); })
        .add();

    const std::vector<int> thousand = numbers(1000);
    Comparison("distinct, a thousand numbers")
        .itemsPerCall(thousand.size())
        .candidate([=] { benchmark::DoNotOptimize(ArrayExtension::distinct(thousand)); })
        .peer("std::unordered_set", [=] { benchmark::DoNotOptimize(distinctBySet(thousand)); })
        .atMost(1, "std::unordered_set")
        .add();
    Comparison("distinct, a hundred thousand numbers")
        .itemsPerCall(100'000)
        .candidate([array = numbers(100'000)] { benchmark::DoNotOptimize(ArrayExtension::distinct(array)); })
        .peer("std::unordered_set", [array = numbers(100'000)] { benchmark::DoNotOptimize(distinctBySet(array)); })
        .peer("a hundred times a thousand",
              [=] {
                  for (int round = 0; round < 100; ++round)
                      benchmark::DoNotOptimize(ArrayExtension::distinct(thousand));
              })
        .atMost(1, "std::unordered_set")
        .atMost(3, "a hundred times a thousand")
        .add();
    std::vector<std::u16string> texts;
    for (const int number : thousand)
        texts.push_back(u"BE68 5390 0754 " + std::u16string(1, static_cast<char16_t>(number)));
    Comparison("distinct, a thousand texts")
        .itemsPerCall(texts.size())
        .candidate([=] { benchmark::DoNotOptimize(ArrayExtension::distinct(texts)); })
        .peer("std::unordered_set", [=] { benchmark::DoNotOptimize(distinctBySet(texts)); })
        .atMost(1, "std::unordered_set")
        .add();
    return true;
}();

}  // namespace
