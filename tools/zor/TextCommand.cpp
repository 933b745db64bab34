// SPDX-License-Identifier: Apache-2.0
//
// Conversions of texts, each a kind that can only be formatted.

#include <tools/zor/CommandTables.h>
#include <tools/zor/FilterArguments.h>
#include <tools/zor/KindRules.h>
#include <tools/zor/Records.h>

#include <ZORFoundation/StringExtension.h>
#include <ZORFoundation/ZORExtra.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

using namespace ZORFoundation;

// Markup that cannot be read has no text.
std::u16string plainText(std::u16string_view markup) { return ZORExtra::zor_parsedHTML(markup).value_or(u""); }

// A record is a line: what ends lines within a text parts them in another way, and a tab would part columns.
std::u16string plainTextOnALine(std::u16string_view markup) {
    std::u16string text = plainText(markup);
    if (text.ends_with(u'\n')) text.pop_back();
    std::replace(text.begin(), text.end(), u'\n', u'\u2028');
    std::replace(text.begin(), text.end(), u'\t', u' ');
    return text;
}

template <auto Conversion, auto OnALine = Conversion>
constexpr Kind conversion(std::string_view name, std::string_view help) {
    return {name, help, nullptr, nullptr, display<Conversion>, display<OnALine>};
}

constexpr std::array kConversions{
    conversion<ZORExtra::removeAccents>("accents", "in ASCII, letters without their accents"),
    conversion<plainText, plainTextOnALine>("html", "the plain text of HTML"),
    conversion<StringExtension::withEmojis>("escapes", "\\u00E9 as the character that it writes"),
    conversion<StringExtension::emojiFlag>("flag", "letters as regional indicators"),
    conversion<StringExtension::removeConsecutiveSpaces>("spaces", "runs of spaces as one"),
};

constexpr auto kActions = actionsOf(kConversions);

ExitCode run(const Arguments& arguments) {
    const auto conversion = std::find_if(kConversions.begin(), kConversions.end(),
                                         [&](const Kind& kind) { return kind.name == arguments.words.front(); });
    return answerRecords(*conversion, arguments, Answer::format, "formatted");
}

}  // namespace

const Command kTextCommand{.name = "text",
                           .synopsis = "ACTION [TEXT...]",
                           .help = "texts converted",
                           .actions = kActions,
                           .options = filterOptionRows(),
                           .run = run};

}  // namespace zor
