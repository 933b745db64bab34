// SPDX-License-Identifier: Apache-2.0
#pragma once

// Characters that the HTML standard calls an error and keeps: control characters and noncharacters. The parser puts
// U+FFFD in their place, so they pass it as others, of private use.

#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// Markup for the parser, and the way back from what it gives. Linear in the size of the text; without such a character
/// nothing is copied.
class HTMLStandIns {
public:
    /// @param markup  well-formed UTF-8, which outlives the object
    explicit HTMLStandIns(std::string_view markup);
    HTMLStandIns(const HTMLStandIns&) = delete;
    HTMLStandIns& operator=(const HTMLStandIns&) = delete;

    /// What to parse: `markup`, or a copy with the stand-ins.
    [[nodiscard]] std::string_view markup() const noexcept { return markup_; }

    /// A text of the parsed document as the markup means it.
    [[nodiscard]] std::u16string text(std::string_view parsed) const;

private:
    std::string room_;
    std::string_view markup_;
    std::optional<char32_t> block_;  // The 256 characters of private use that stand in begin here.
};

}  // namespace ZORPlatform
