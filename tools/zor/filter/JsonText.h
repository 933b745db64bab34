// SPDX-License-Identifier: Apache-2.0
#pragma once

// JSON (RFC 8259) as far as the filter needs it: walking over values without building them, and strings.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zor {

/// Walks over one JSON text. Each function advances behind what it names, or answers false or nothing where the text
/// does not have it there; after that the position means nothing.
class JsonCursor {
public:
    /// Objects and arrays inside each other, beyond which a text is refused.
    static constexpr std::size_t kMaximumDepth = 512;

    explicit JsonCursor(std::string_view text) noexcept : text_(text) {}

    void skipSpace() noexcept;
    [[nodiscard]] bool take(char byte) noexcept;
    /// The next byte, NUL at the end.
    [[nodiscard]] char peek() const noexcept { return at_ < text_.size() ? text_[at_] : '\0'; }
    [[nodiscard]] bool atEnd() const noexcept { return at_ == text_.size(); }
    [[nodiscard]] std::size_t position() const noexcept { return at_; }

    /// A string: what stands between its quotes, as it is spelled.
    [[nodiscard]] std::optional<std::string_view> string() noexcept;
    /// Any value.
    [[nodiscard]] bool skipValue() noexcept;

private:
    [[nodiscard]] bool skipScalar() noexcept;
    [[nodiscard]] bool skipWord(std::string_view word) noexcept;
    [[nodiscard]] bool skipNumber() noexcept;
    [[nodiscard]] bool skipDigits() noexcept;

    std::string_view text_;
    std::size_t at_ = 0;
};

/// The text that a string spells, in UTF-8. A lone surrogate has no such text: nothing.
///
/// @param spelled  as JsonCursor::string gives it
/// @param room     for a text with escapes; the view points into it or into `spelled`
[[nodiscard]] std::optional<std::string_view> unescapedJson(std::string_view spelled, std::string& room);

}  // namespace zor
