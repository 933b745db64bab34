// SPDX-License-Identifier: Apache-2.0
//
// Laws of HTML: any markup is read or refused, in time and memory that the markup's size bounds.
#include <fuzz/support/FuzzText.h>

#include <ZORPlatform/Foundation/HTMLImport.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

using fuzz::require;

namespace {

// What bytes from 0x80 on stand for, so that short inputs are markup.
constexpr std::array<std::string_view, 88> kTags{"<div>",
                                                 "</div>",
                                                 "<p>",
                                                 "</p>",
                                                 "<b>",
                                                 "</b>",
                                                 "<i>",
                                                 "</i>",
                                                 "<a>",
                                                 "</a>",
                                                 "<span>",
                                                 "</span>",
                                                 "<ul>",
                                                 "</ul>",
                                                 "<li>",
                                                 "</li>",
                                                 "<dd>",
                                                 "</dd>",
                                                 "<dt>",
                                                 "<ol>",
                                                 "</ol>",
                                                 "<h1>",
                                                 "</h2>",
                                                 "<table>",
                                                 "</table>",
                                                 "<tr>",
                                                 "</tr>",
                                                 "<td>",
                                                 "</td>",
                                                 "<th>",
                                                 "<caption>",
                                                 "</caption>",
                                                 "<tbody>",
                                                 "<colgroup>",
                                                 "<tfoot>",
                                                 "<select>",
                                                 "</select>",
                                                 "<option>",
                                                 "<optgroup>",
                                                 "<button>",
                                                 "</button>",
                                                 "<object>",
                                                 "</object>",
                                                 "<marquee>",
                                                 "</marquee>",
                                                 "<template>",
                                                 "</template>",
                                                 "<svg>",
                                                 "</svg>",
                                                 "<path/>",
                                                 "<g>",
                                                 "</g>",
                                                 "<foreignObject>",
                                                 "</foreignObject>",
                                                 "<desc>",
                                                 "<title>",
                                                 "</title>",
                                                 "<math>",
                                                 "</math>",
                                                 "<mi>",
                                                 "</mi>",
                                                 "<annotation-xml>",
                                                 "<br>",
                                                 "</br>",
                                                 "<hr>",
                                                 "<img>",
                                                 "<input>",
                                                 "<textarea>",
                                                 "</textarea>",
                                                 "<script>",
                                                 "</script>",
                                                 "<style>",
                                                 "</style>",
                                                 "<pre>",
                                                 "</pre>",
                                                 "<form>",
                                                 "</form>",
                                                 "<nobr>",
                                                 "</nobr>",
                                                 "<x-y>",
                                                 "</x-y>",
                                                 "<body>",
                                                 "</body>",
                                                 "</html>",
                                                 "<frameset>",
                                                 "<noscript>",
                                                 "</noscript>",
                                                 "<ruby>"};

std::string markupOf(const std::uint8_t* data, std::size_t size) {
    std::string markup;
    for (std::size_t at = 0; at < size; ++at) {
        if (data[at] < 0x80) {
            markup += static_cast<char>(data[at]);
        } else if (data[at] - 0x80U < kTags.size()) {
            markup += kTags[data[at] - 0x80U];
        } else {
            // Formatting that differs, so that it is opened again more than three times.
            markup += "<b id=" + std::to_string(at) + ">";
        }
    }
    return markup;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string markup = markupOf(data, size);
    const auto text = ZORPlatform::plainTextFromHTML(markup);
    // Longer text than markup would have come from somewhere else; a line may be given its number and its end.
    require(!text || text->size() <= 16 * (markup.size() + 1));
    return 0;
}
