// SPDX-License-Identifier: Apache-2.0
#pragma once

// A text of known length that is written piece by piece. The standard string would fill itself with zeros first, unit
// by unit, which costs as much as encoding does. Here a short text is copied from zeros and written in place; of a
// longer one, each piece is written to a chunk on the stack and appended.
//
//     TextAssembly text(2 * bytes.size());
//     for (...) encode(piece, text.room(2 * piece.size()));
//     return text.finish();

#include <ZORPlatform/Foundation/Wiping.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace ZORPlatform {

/// Assembles one text. The chunk is wiped at the end: what is encoded may be a secret.
class TextAssembly {
public:
    /// The most units that one piece may have. Below 8 KB the copies of long texts take longer, above 16 KB the chunk
    /// leaves too little of the nearest memory.
    static constexpr std::size_t kChunkUnits = 4096;

    /// The most units of a text that is written in place.
    static constexpr std::size_t kShortUnits = 256;

    /// A text to be written in place.
    ///
    /// @param units  at most kShortUnits
    static std::u16string zeros(std::size_t units);

    /// @param units  the length of the finished text
    explicit TextAssembly(std::size_t units)
        : isShort_(units <= kShortUnits), text_(isShort_ ? zeros(units) : std::u16string()) {
        if (!isShort_) text_.reserve(units);
    }

    /// Room for the next `units` units, all of which the caller writes before the next call.
    [[nodiscard]] char16_t* room(std::size_t units) {
        if (!isShort_ && kChunkUnits - used_ < units) flush();
        const std::size_t begin = std::exchange(used_, used_ + units);
        return (isShort_ ? text_.data() : chunk_.first(used_).data()) + begin;
    }

    /// The text. The last operation of an object.
    [[nodiscard]] std::u16string finish() {
        if (!isShort_) flush();
        return std::move(text_);
    }

private:
    static constexpr std::array<char16_t, kShortUnits> kZeros{};

    void flush() {
        text_.append(chunk_.first(used_).data(), used_);
        used_ = 0;
    }

    bool isShort_;
    std::u16string text_;
    std::size_t used_ = 0;
    WipingScratch<char16_t, kChunkUnits> chunk_;
};

}  // namespace ZORPlatform
