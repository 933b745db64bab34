// SPDX-License-Identifier: Apache-2.0
//
// What has a display but no rule: any text has one.

#include <tools/zor/KindGroups.h>
#include <tools/zor/KindRules.h>

#include <ZORFoundation/StringPatterns.h>
#include <ZORFoundation/ZORCardNumberFormatter.h>
#include <ZORFoundation/ZORChallengeResponseFormatter.h>
#include <ZORFoundation/ZORPhoneNumberFormatter.h>
#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <array>

namespace zor {
namespace {

using namespace ZORFoundation;

std::u16string telephoneLink(std::u16string_view text, const KindSettings& settings) {
    return ZORPhoneNumberFormatter::formatPhoneNumber(text, settings.token);
}

std::u16string challenge(std::u16string_view text, const KindSettings&) {
    return ZORChallengeResponseFormatter::formattedChallenge(text).value_or(u"");
}

std::u16string laidIntoPattern(std::u16string_view text, const KindSettings& settings) {
    return StringExtension::formatTextWithPattern(text, settings.pattern, settings.slot);
}

template <std::u16string KindSettings::*Text>
bool setText(KindSettings& settings, std::string_view value) {
    auto text = ZORPlatform::utf16IfWellFormed(value);
    if (!text || text->empty()) return false;
    settings.*Text = *std::move(text);
    return true;
}

bool setSlot(KindSettings& settings, std::string_view value) {
    return setText<&KindSettings::slot>(settings, value) && ZORPlatform::characterCount(settings.slot) == 1;
}

constexpr KindOption kToken{"--token", "TEXT", "what follows the link, such as ;ext=12", setText<&KindSettings::token>};
constexpr std::array kPhoneOptions{&kToken};
constexpr KindOption kPattern{"--pattern", "TEXT", "slots and what stands between them, such as XXXX-XXXX",
                              setText<&KindSettings::pattern>};
constexpr KindOption kSlot{"--slot", "CHARACTER", "what marks a slot (default: X)", setSlot};
constexpr std::array kPatternOptions{&kPattern, &kSlot};

std::string_view patternComplaint(const KindSettings& settings) {
    return settings.pattern.empty() ? "--pattern is missing" : "";
}

constexpr auto withoutBlanks = display<ZORCardNumberFormatter::strippedCardNumber>;

constexpr std::array kKinds{
    Kind{"phone", "telephone links", nullptr, nullptr, display<dialled>, telephoneLink, kPhoneOptions},
    Kind{"challenge", "challenges of a login", nullptr, nullptr, withoutBlanks, challenge},
    Kind{"login-code", "codes that answer them", nullptr, nullptr, withoutBlanks,
         display<ZORChallengeResponseFormatter::formattedLoginCodeOptimal>},
    Kind{"pattern", "texts laid into a pattern", nullptr, nullptr, withoutBlanks, laidIntoPattern, kPatternOptions,
         "character", patternComplaint},
};

}  // namespace

const KindGroup kDisplayKinds{"displays", "Unicode 15", "2026-11-21", kKinds};

}  // namespace zor
