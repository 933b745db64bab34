// SPDX-License-Identifier: Apache-2.0
#pragma once

// Searching with a caller's pattern, in ICU's syntax. The pattern may be slow on some texts, so each search works
// within limits; a search that would exceed them is given up, which is an outcome of its own and never an exception.
//
//     const auto digits = NSRegularExpression::regularExpressionWithPattern(u"[0-9]+");
//     const bool complete = digits->enumerateMatchesInString(text, [&](std::span<const NSRange> ranges) {
//         found.push_back(text.substr(ranges[0].location, ranges[0].length));
//         return true;
//     });

#include <ZORPlatform/Foundation/NSError.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace ZORPlatform {

/// Where something is that is nowhere.
inline constexpr std::size_t NSNotFound = static_cast<std::size_t>(-1);

/// A range of UTF-16 units; one that does not exist has the location `NSNotFound` and the length 0.
struct NSRange {
    std::size_t location;
    std::size_t length;

    friend constexpr bool operator==(const NSRange&, const NSRange&) noexcept = default;
};

/// A compiled pattern. Immutable and cheap to copy; one object may be used from several threads.
class NSRegularExpression {
public:
    /// `initWithPattern:options:error:`, without options.
    ///
    /// @param error  cleared; holds NSCocoaErrorDomain 2048 with the pattern under "NSInvalidValue" when the result is
    ///               absent
    /// @return absent when `pattern` is no regular expression, as the empty text is none
    [[nodiscard]] static std::optional<NSRegularExpression> regularExpressionWithPattern(
        std::u16string_view pattern, std::optional<NSError>* error = nullptr);

    /// `numberOfCaptureGroups`
    [[nodiscard]] std::size_t numberOfCaptureGroups() const noexcept;

    /// Takes the ranges of one match: the whole match, then each capture group, `NSNotFound` for one that took no part.
    /// Answers whether to go on. The span is gone when the call returns.
    using MatchBlock = std::function<bool(std::span<const NSRange>)>;

    /// `enumerateMatchesInString:options:range:usingBlock:`, over the whole text and without options.
    ///
    /// Finds the matches that do not overlap, in order. After an empty match the search moves on by one code point.
    ///
    /// @return false when the search was given up before it came to the end: it took more steps of backtracking than
    ///         ten million and twenty for each unit of the text, or more processor time than a second and a
    ///         microsecond for each unit, or eight megabytes of backtracking memory, or the text has more than 2^31 - 1
    ///         units. Matches already handed out remain true
    [[nodiscard]] bool enumerateMatchesInString(std::u16string_view text, const MatchBlock& usingBlock) const;

private:
    struct Pattern;

    explicit NSRegularExpression(std::shared_ptr<const Pattern> pattern) noexcept;

    std::shared_ptr<const Pattern> pattern_;
};

}  // namespace ZORPlatform
