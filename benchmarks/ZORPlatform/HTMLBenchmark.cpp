// SPDX-License-Identifier: Apache-2.0
//
// HTML as plain text beside the parser alone, and markup that is made to take long.

#include <ZORPlatform/Foundation/HTMLImport.h>
#include <benchmarks/Comparison.h>

#include <gumbo.h>

#include <string>
#include <string_view>

namespace {

using benchmarks::Comparison;

constexpr const char* kParser = "gumbo alone";

std::string repeated(std::string_view piece, std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) text += piece;
    return text;
}

void parseAlone(const std::string& markup) {
    GumboOutput* output = gumbo_parse_with_options(&kGumboDefaultOptions, markup.data(), markup.size());
    benchmark::DoNotOptimize(output);
    gumbo_destroy_output(&kGumboDefaultOptions, output);
}

void addImport(const std::string& name, const std::string& markup, double limit) {
    Comparison("plainTextFromHTML, " + name)
        .itemsPerCall(markup.size())
        .candidate([=] { benchmark::DoNotOptimize(ZORPlatform::plainTextFromHTML(markup)); })
        .peer(kParser, [=] { parseAlone(markup); })
        .atMost(limit, kParser)
        .add();
}

void addRefusal(const std::string& name, const std::string& markup) {
    constexpr double kTwentyMilliseconds = 20e6;
    Comparison("plainTextFromHTML, " + name + ", absent")
        .candidate([=] { benchmark::DoNotOptimize(ZORPlatform::plainTextFromHTML(markup)); })
        .atMostNanoseconds(kTwentyMilliseconds)
        .add();
}

const bool registered = [] {
    constexpr std::size_t kMegabyte = 1U << 20;
    constexpr std::string_view kPage =
        "<div class='item'><h2>Rekening &amp; kaart</h2><p>Beste klant,<br>uw <b>betaling</b> van 12,50&nbsp;&euro; is "
        "uitgevoerd. Meer weten? Kijk op <a href=\"https://www.zor.be/help\">onze site</a> of in uw "
        "kantoor.</p><ul><li>"
        "Caf\xC3\xA9 <i>cr\xC3\xA8me</i></li><li>Thee</li></ul><table><tr><td>Totaal<td>15,00</table></div>\n";
    addImport("1 MB", repeated(kPage, kMegabyte), 1.3);
    addImport("1 KB", repeated(kPage, 1024), 1.3);
    addImport("1 MB of text with line ends", repeated("Beste klant, uw betaling is uitgevoerd. <br>", kMegabyte), 1.3);
    addImport("1 MB of line ends", repeated(" <br>", kMegabyte), 1.3);

    addRefusal("100,000 levels", repeated("<div>", 500'000));
    addRefusal("100,000 levels behind end tags of nothing", repeated("<div></p></x>", 1'300'000));
    addRefusal("100,000 paragraphs that leave formatting open", repeated("<p><b></p>x", 1'100'000));
    std::string bomb;
    for (int part = 0; bomb.size() < 29'000; ++part) bomb += "<p><b id=" + std::to_string(part) + "></p>";
    addRefusal("29 KB of formatting that is opened again", bomb);
    while (bomb.size() < 500'000) bomb += "<p><b id=" + std::to_string(bomb.size()) + "></p>";
    addRefusal("500 KB of formatting that is opened again", bomb);
    return true;
}();

}  // namespace
