// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/SingleValues.h>

#include <tools/zor/filter/Output.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

using ZORFoundation::BrokenRule;

constexpr std::string_view kGreen = "\x1B[32m";
constexpr std::string_view kRed = "\x1B[31m";
constexpr std::string_view kPlain = "\x1B[0m";

// Control characters, and those that turn the direction of writing, so that a value could hide its verdict.
bool steersTerminal(char16_t unit) noexcept {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

// A text without what would steer a terminal.
std::string shown(std::u16string text) {
    std::replace_if(text.begin(), text.end(), steersTerminal, u'\uFFFD');
    return ZORPlatform::utf8(text);
}

// What a rule that is not one of length means. A rule without a row is still named, and the place shown.
struct Phrase {
    BrokenRule rule;
    std::string_view text;
};

constexpr std::array kPhrases{
    Phrase{BrokenRule::empty, "there is nothing to check"},
    Phrase{BrokenRule::unexpectedCharacter, "there is a character that does not belong there,"},
    Phrase{BrokenRule::incomplete, "the text ends too early,"},
    Phrase{BrokenRule::checkDigits, "the check digits do not belong to the rest,"},
};

// "1 digit", "2 digits", "3 letters of the last label".
std::string countOf(std::size_t count, std::string_view counted) {
    const std::size_t nounEnd = std::min(counted.find(' '), counted.size());
    std::string text = std::to_string(count).append(" ").append(counted.substr(0, nounEnd));
    if (count != 1) text += 's';
    return text.append(counted.substr(nounEnd));
}

struct Judgement {
    bool valid = false;
    std::string why;
    std::u16string formatted;
};

Judgement judge(const Kind& kind, const KindSettings& settings, Answer answer, const std::string& value) {
    const std::optional<std::u16string> text = ZORPlatform::utf16IfWellFormed(value);
    if (!text) return {false, "bad_utf8: this is no UTF-8 text", ZORPlatform::utf16(value)};
    Judgement judgement;
    judgement.valid = kind.check == nullptr || kind.check(*text, settings);
    if (answer == Answer::explain && !judgement.valid) {
        judgement.why = sentence(kind.explain(*text, settings), kind.counted);
    }
    if (answer == Answer::format) judgement.formatted = kind.format(*text, settings);
    return judgement;
}

void appendVerdict(bool valid, bool coloured, Output& out) {
    if (coloured) out.append(valid ? kGreen : kRed);
    out.append(valid ? "valid" : "invalid");
    if (coloured) out.append(kPlain);
}

}  // namespace

ExitCode answerValues(const Kind& kind, const KindSettings& settings, Answer answer,
                      std::span<const std::string> values) {
    const bool coloured = ::isatty(STDOUT_FILENO) == 1;
    bool allValid = true;
    Output out;
    for (const std::string& value : values) {
        const Judgement judgement = judge(kind, settings, answer, value);
        allValid = allValid && judgement.valid;
        if (answer == Answer::format) {
            out.append(shown(judgement.formatted));
        } else {
            out.append(shown(ZORPlatform::utf16(value)));
            out.append(": ");
            appendVerdict(judgement.valid, coloured, out);
            if (!judgement.why.empty()) out.append(", " + judgement.why);
        }
        out.append('\n');
    }
    writeAll(STDOUT_FILENO, out.view());
    return allValid ? ExitCode::success : ExitCode::someInvalid;
}

std::string sentence(const ZORFoundation::Explanation& explanation, std::string_view counted) {
    if (explanation.isValid()) return {};
    std::string text = std::string(name(explanation.rule)) + ": ";
    if (explanation.expected > 0) {
        text += "found " + countOf(explanation.found, counted) + ", expected ";
        if (explanation.rule == BrokenRule::tooShort) text += "at least ";
        const bool isBoundAbove = explanation.rule == BrokenRule::tooLong ||
                                  explanation.rule == BrokenRule::integerDigits ||
                                  explanation.rule == BrokenRule::decimals;
        if (isBoundAbove) text += "at most ";
        text += std::to_string(explanation.expected);
        return text + (explanation.rule == BrokenRule::countryLength ? " in this country" : "");
    }
    const auto phrase = std::find_if(kPhrases.begin(), kPhrases.end(),
                                     [&](const Phrase& candidate) { return candidate.rule == explanation.rule; });
    text += phrase == kPhrases.end() ? "this is not allowed" : phrase->text;
    if (explanation.rule == BrokenRule::empty) return text;
    return text + " at position " + std::to_string(explanation.position);
}

}  // namespace zor
