// SPDX-License-Identifier: Apache-2.0
#pragma once

// Characters the slow way: ICU divides the whole text, and positions are looked up in the list of ends.

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace support {

/// Where the characters of texts end.
class CharacterModel {
public:
    CharacterModel() {
        UErrorCode status = U_ZERO_ERROR;
        breaks_.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    }

    /// The ends of the text's characters, in order.
    std::vector<std::size_t> ends(std::u16string_view text) {
        // The iterator looks at the text where it is, so the text stays.
        text_ = icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size()));
        breaks_->setText(text_);
        std::vector<std::size_t> ends;
        for (breaks_->first(); breaks_->next() != icu::BreakIterator::DONE;) {
            ends.push_back(static_cast<std::size_t>(breaks_->current()));
        }
        return ends;
    }

    /// `characterIndex` of a text with these ends.
    static std::size_t index(const std::vector<std::size_t>& ends, std::size_t position) {
        return static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), position) - ends.begin());
    }

    /// `characterPosition` of a text with these ends.
    static std::optional<std::size_t> position(const std::vector<std::size_t>& ends, std::size_t index) {
        if (index == 0) return 0;
        return index <= ends.size() ? std::optional(ends[index - 1]) : std::nullopt;
    }

private:
    icu::UnicodeString text_;
    std::unique_ptr<icu::BreakIterator> breaks_;
};

}  // namespace support
