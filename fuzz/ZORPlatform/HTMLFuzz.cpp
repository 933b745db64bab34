// SPDX-License-Identifier: Apache-2.0
//
// Laws of HTML: any markup is read or refused, and its text is bounded by its size; a text comes back from its own
// markup; what is not refused for its depth is not deep, however often it is repeated.
#include <fuzz/support/FuzzText.h>

#include <ZORPlatform/Foundation/HTMLImport.h>
#include <ZORPlatform/Foundation/HTMLNestingInternal.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gumbo.h>

#include <array>
#include <memory>
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

std::string escaped(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        if (byte == '&') {
            result += "&amp;";
        } else if (byte == '<') {
            result += "&lt;";
        } else {
            result += byte;
        }
    }
    return result;
}

void requireTextComesBack(const std::u16string& text) {
    // CR is read as a line end, alone or with the LF behind it.
    if (text.find(u'\r') != std::u16string::npos) return;
    const auto again = ZORPlatform::plainTextFromHTML("<pre>\n" + escaped(ZORPlatform::utf8(text)) + "</pre>");
    require(again.has_value());
    require(*again == (text.ends_with(u'\n') ? text : text + u'\n'));
}

std::size_t depthByParser(std::string_view markup) {
    // A deep document needs a deep stack to be freed by the parser.
    std::vector<std::unique_ptr<char[]>> memory;
    GumboOptions options = kGumboDefaultOptions;
    options.userdata = &memory;
    options.max_errors = 0;
    options.allocator = [](void* userdata, std::size_t bytes) -> void* {
        auto& blocks = *static_cast<std::vector<std::unique_ptr<char[]>>*>(userdata);
        return blocks.emplace_back(new char[bytes]).get();
    };
    options.deallocator = [](void*, void*) {};
    const GumboOutput* output = gumbo_parse_with_options(&options, markup.data(), markup.size());
    struct Level {
        const GumboNode* node;
        std::size_t depth;
    };
    std::size_t deepest = 0;
    std::vector<Level> open{{output->root, 1}};
    while (!open.empty()) {
        const auto [node, depth] = open.back();
        open.pop_back();
        deepest = std::max(deepest, depth);
        if (node->type != GUMBO_NODE_ELEMENT && node->type != GUMBO_NODE_TEMPLATE) continue;
        const GumboVector& children = node->v.element.children;
        for (unsigned at = 0; at < children.length; ++at) {
            open.push_back({static_cast<const GumboNode*>(children.data[at]), depth + 1});
        }
    }
    return deepest;
}

// An element that is counted brings at most three along that are not: a table its body, row and cell.
void requireNotDeep(std::string_view part) {
    constexpr int kTimes = 600;
    constexpr std::size_t kDeepest = 4 * 513 + 8;
    if (part.size() > 64) return;
    std::string markup;
    for (int time = 0; time < kTimes; ++time) markup += part;
    if (ZORPlatform::isNestedTooDeep(markup) || !ZORPlatform::plainTextFromHTML(markup)) return;
    require(depthByParser(markup) <= kDeepest);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string markup = markupOf(data, size);
    const auto text = ZORPlatform::plainTextFromHTML(markup);
    // Longer text than markup would have come from somewhere else; a line may be given its number and its end.
    require(!text || text->size() <= 16 * (markup.size() + 1));
    if (text) requireTextComesBack(*text);
    requireNotDeep(markup);
    return 0;
}
