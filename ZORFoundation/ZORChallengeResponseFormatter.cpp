// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORChallengeResponseFormatter.h>

#include <ZORFoundation/DisplayInternal.h>

namespace ZORFoundation {
namespace {

constexpr std::size_t kLoginCodeUnits = 8;
constexpr std::size_t kShortestSplitChallenge = 7;
constexpr std::size_t kGroupUnits = 4;

}  // namespace

std::u16string ZORChallengeResponseFormatter::formattedLoginCodeOptimal(std::u16string_view text) {
    const auto units = leadingUnits<kLoginCodeUnits>(text, isCardNumberSeparator);
    return inGroupsOfFour(units);
}

std::optional<std::u16string> ZORChallengeResponseFormatter::formattedChallenge(
    std::optional<std::u16string_view> text) {
    if (!text) return std::nullopt;
    if (text->size() < kShortestSplitChallenge) return std::u16string(*text);
    std::u16string shown;
    shown.reserve(text->size() + 1);
    shown.append(text->substr(0, kGroupUnits)).append(1, kGroupSeparator).append(text->substr(kGroupUnits));
    return shown;
}

}  // namespace ZORFoundation
