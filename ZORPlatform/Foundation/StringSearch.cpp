// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/StringSearch.h>

#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <vector>

namespace ZORPlatform {
namespace {

// Reads a text unit by unit and says where a searched text, which is not empty, ends in it: Knuth, Morris and Pratt's
// automaton, so that no text takes more than linear time.
class UnitSearch {
public:
    explicit UnitSearch(std::u16string_view searched) : searched_(searched), fallback_(searched.size() + 1) {
        for (std::size_t end = 1; end < searched.size(); ++end) {
            matched_ = next(searched[end]);
            fallback_[end + 1] = matched_;
        }
        matched_ = 0;
    }

    /// Whether the searched text ends with this unit. Occurrences may overlap.
    bool endsWith(char16_t unit) noexcept {
        if (matched_ == searched_.size()) matched_ = fallback_[matched_];
        matched_ = next(unit);
        return matched_ == searched_.size();
    }

    /// Forgets what has been read.
    void restart() noexcept { matched_ = 0; }

private:
    [[nodiscard]] std::size_t next(char16_t unit) const noexcept {
        std::size_t matched = matched_;
        while (matched > 0 && searched_[matched] != unit) matched = fallback_[matched];
        return searched_[matched] == unit ? matched + 1 : 0;
    }

    std::u16string_view searched_;
    std::vector<std::size_t> fallback_;  // By how much is matched: how much still is when the next unit differs.
    std::size_t matched_ = 0;
};

bool isAscii(std::u16string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// What all spellings of a text that a search takes for the same have in common.
std::u16string searchForm(std::u16string_view text, NSStringCompareOptions options) {
    return options == NSStringCompareOptions::caseInsensitive ? canonicalCaseFolding(text)
                                                              : canonicalDecomposition(text);
}

constexpr char16_t asciiSearchForm(char16_t unit, NSStringCompareOptions options) noexcept {
    const bool folds = options == NSStringCompareOptions::caseInsensitive && unit >= u'A' && unit <= u'Z';
    return folds ? static_cast<char16_t>(unit + 0x20) : unit;
}

// The search form of a text, and which of its units begin what was a character.
struct SearchedText {
    std::u16string form;
    std::vector<bool> isBoundary;  // One more than there are units.

    SearchedText(std::u16string_view text, NSStringCompareOptions options) {
        form.reserve(text.size());
        isBoundary.reserve(text.size() + 1);
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text[at] == u'\r' ? at + 1 : characterEnd(text, at);
            if (end == at + 1 && text[at] < 0x80) {
                form.push_back(asciiSearchForm(text[at], options));
            } else {
                form += searchForm(text.substr(at, end - at), options);
            }
            // A character whose form is empty would be found anywhere; there is none.
            isBoundary.push_back(true);
            isBoundary.resize(form.size(), false);
            at = end;
        }
        isBoundary.push_back(true);
    }
};

}  // namespace

bool containsString(std::u16string_view text, std::u16string_view searched, NSStringCompareOptions options) {
    if (searched.empty()) return false;
    const std::u16string searchedForm = searchForm(searched, options);
    UnitSearch search(searchedForm);
    if (isAscii(text)) {
        return std::any_of(text.begin(), text.end(),
                           [&](char16_t unit) { return search.endsWith(asciiSearchForm(unit, options)); });
    }
    const SearchedText in(text, options);
    for (std::size_t at = 0; at < in.form.size(); ++at) {
        if (search.endsWith(in.form[at]) && in.isBoundary[at + 1] && in.isBoundary[at + 1 - searchedForm.size()]) {
            return true;
        }
    }
    return false;
}

void replaceOccurrences(std::u16string& text, std::u16string_view target, std::u16string_view replacement) {
    if (target.empty() || target.size() > text.size()) return;
    UnitSearch search(target);
    std::u16string result;
    std::size_t kept = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!search.endsWith(text[at])) continue;
        result.append(text, kept, at + 1 - target.size() - kept).append(replacement);
        kept = at + 1;
        search.restart();
    }
    if (kept > 0) text = std::move(result.append(text, kept));
}

}  // namespace ZORPlatform
