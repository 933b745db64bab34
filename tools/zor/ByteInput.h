// SPDX-License-Identifier: Apache-2.0
#pragma once

// Bytes on their way in, for commands that work on data and not on records.

#include <ZORPlatform/Foundation/Wiping.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zor {

/// A file, or standard input. What has been read is wiped at the end: it may be plaintext.
class ByteInput {
public:
    /// @param path        empty or "-": standard input
    /// @param pieceBytes  the most that one call of `next` gives
    /// @throws StreamError when the file cannot be opened
    ByteInput(const std::string& path, std::size_t pieceBytes);
    ByteInput(const ByteInput&) = delete;
    ByteInput& operator=(const ByteInput&) = delete;
    ~ByteInput();

    /// The next bytes: a whole piece, except at the end; none behind it. They stay until the next call.
    ///
    /// @throws StreamError
    [[nodiscard]] std::span<const std::uint8_t> next();

private:
    int descriptor_;
    ZORPlatform::WipingBuffer piece_;
};

}  // namespace zor
