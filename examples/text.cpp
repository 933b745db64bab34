// SPDX-License-Identifier: Apache-2.0

#include <ZORFoundation/ZORFoundation.h>

#include <iostream>

using namespace ZORFoundation;

int main() {
    const auto print = [](std::u16string_view text) { std::cout << utf8(text) << '\n'; };

    // Characters as people count them: a letter with its accent and a flag are one each.
    const std::u16string place = u"Cafe\u0301 \U0001F1E7\U0001F1EA";
    std::cout << StringExtension::length(place) << " characters, " << place.size() << " units\n";
    print(StringExtension::substringToIndex(place, 4));

    // Conversions.
    print(ZORExtra::removeAccents(u"Cr\u00E8me br\u00FBl\u00E9e: 5 \u20AC"));
    print(ZORExtra::zor_parsedHTML(u"<p>Uw <b>betaling</b> is<br>verwerkt &amp; geboekt</p>").value_or(u"unreadable"));
    print(StringExtension::withEmojis(u"\\u00E9t\\u00E9"));
    print(StringExtension::emojiFlag(u"be"));

    // Room on a screen, in points.
    const Font font{u"DejaVu Sans", 12};
    const Size line = StringExtension::calculatedSize(u"een betaling", font);
    std::cout << StringExtension::heightWithConstrainedWidth(u"een betaling", line.width * 0.8, font) / line.height
              << " lines\n";
}
