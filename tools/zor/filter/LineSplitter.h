// SPDX-License-Identifier: Apache-2.0
#pragma once

// Cuts a stream of bytes into lines in constant memory, whatever pieces it arrives in. The mark with which some
// programs begin a UTF-8 file is no part of the first line.

#include <tools/zor/filter/RecordSink.h>

#include <cstddef>
#include <memory>
#include <span>

namespace zor {

class LineSplitter {
public:
    /// @param maxRecordBytes  lines longer than this reach the sink piecemeal
    LineSplitter(std::size_t maxRecordBytes, RecordSink& sink);

    /// Where the next bytes go; never empty.
    [[nodiscard]] std::span<char> room() noexcept;
    /// Takes the first `bytes` bytes of `room` as input.
    void commit(std::size_t bytes);
    /// After the last byte: a last line without LF is a line.
    void finish();

private:
    [[nodiscard]] bool passByteOrderMark();
    void skipOverlong();
    void passLines();

    RecordSink& sink_;
    std::size_t longestKept_;  ///< With a CR that may still turn out to belong to the line end.
    std::size_t capacity_;
    std::unique_ptr<char[]> bytes_;
    std::size_t begin_ = 0;   ///< The first byte that no sink has seen.
    std::size_t end_ = 0;     ///< Behind the last byte.
    std::size_t search_ = 0;  ///< No LF stands between begin_ and here.
    bool atStart_ = true;     ///< The bytes so far may be the beginning of a byte order mark.
    bool overlong_ = false;   ///< The bytes up to the next LF belong to a line that is not kept.
};

}  // namespace zor
