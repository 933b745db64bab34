// SPDX-License-Identifier: Apache-2.0
#pragma once

// The codes of a challenge-response login: the challenge that is shown and the login code that is typed back. Lengths
// and positions are UTF-16 units.
//
//     ZORChallengeResponseFormatter::formattedChallenge(u"1234567");                 // 1234 567
//     ZORChallengeResponseFormatter::formattedLoginCodeOptimal(u"1234 5678 9");      // 1234 5678

#include <ZORPlatform/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZORFoundation {

/// Displays challenges and login codes. Both operations are pure and may be called from any thread.
class ZORChallengeResponseFormatter {
public:
    ZORChallengeResponseFormatter() = delete;

    /// `formattedLoginCodeOptimal:`
    ///
    /// Writes a login code the way it grows while it is typed: without U+0020 and U+00A0, at most 8 units, and one
    /// U+00A0 after the fourth when more follow.
    ///
    /// @param text  any spelling; absent counts as empty
    /// @return empty when nothing is left once separators are out
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedLoginCodeOptimal(std::u16string_view text);

    /// `formattedChallenge:`
    ///
    /// Writes a challenge of 7 units or more as its first four units, one U+00A0 and all the others; a shorter one as
    /// it is. Nothing is stripped.
    ///
    /// @return `std::nullopt` exactly when `text` is absent
    [[nodiscard]] ZOR_EXPORT static std::optional<std::u16string> formattedChallenge(
        std::optional<std::u16string_view> text);
};

}  // namespace ZORFoundation
