// SPDX-License-Identifier: Apache-2.0
#pragma once

// A key as text, from a file or from the terminal. Never from the command line, which every user of the machine can
// read.

#include <string>
#include <string_view>

namespace zor {

/// Wiped at the end.
class KeyText {
public:
    /// The content of a file: UTF-8, of which one final LF or CR LF is no part unless the file is taken as it stands.
    ///
    /// @throws StreamError when the file cannot be read; UsageError when it is not UTF-8 or too long
    static KeyText fromFile(const std::string& path, bool exactly);

    /// A line typed at the terminal, without echo.
    ///
    /// @param twice  asks again and compares, where a slip would cost the data
    /// @throws UsageError without a terminal, when the input ends instead, and when the two lines differ
    static KeyText fromTerminal(bool twice);

    KeyText(const KeyText&) = delete;
    KeyText& operator=(const KeyText&) = delete;
    ~KeyText();

    [[nodiscard]] std::u16string_view view() const noexcept { return text_; }

private:
    explicit KeyText(std::string_view bytes);

    std::u16string text_;
};

}  // namespace zor
