// SPDX-License-Identifier: Apache-2.0
//
// Measuring of texts beside Pango itself, its context kept; and the first measurement of a process, with all that it
// loads.

#include <ZORFoundation/StringMeasuring.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <benchmarks/Comparison.h>
#include <benchmarks/ZORPlatform/PangoMeasure.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

using benchmarks::Comparison;
using benchmarks::PangoMeasure;
using ZORFoundation::Font;

constexpr const char* kPango = "Pango, context kept";
constexpr const char* kPangoAlone = "a program linked with Pango";

void addHeight(const std::string& name, const std::u16string& text, double width, double limit) {
    Comparison("heightWithConstrainedWidth, " + name)
        .candidate([=, font = Font{u"DejaVu Sans", 12}] {
            benchmark::DoNotOptimize(ZORFoundation::StringExtension::heightWithConstrainedWidth(text, width, font));
        })
        .peer(kPango,
              [width, bytes = ZORPlatform::utf8(text)] {
                  static const PangoMeasure pango;
                  benchmark::DoNotOptimize(pango.height(bytes, width));
              })
        .atMost(limit, kPango)
        .add();
}

// Runs a program of one measurement to its end.
void start(const char* program, const char* argument = nullptr) {
    char* const arguments[] = {const_cast<char*>(program), const_cast<char*>(argument), nullptr};
    pid_t child = -1;
    if (::posix_spawn(&child, program, nullptr, nullptr, arguments, environ) != 0) std::abort();
    int status = 0;
    if (::waitpid(child, &status, 0) != child || status != 0) std::abort();
}

const bool registered = [] {
    ZORPlatform::HostEnvironment::setTextLayoutModule(ZOR_TEXT_LAYOUT_FILE);
    const std::u16string line = u"Uw betaling van 12,50 \u20AC aan caf\u00E9 is uitgevoerd";
    std::u16string page;
    while (page.size() < 10'000) page += line + u". ";
    // What is done once a call, such as looking for the font, shows beside a single word only.
    addHeight("a word", u"Bedrag", 200, 1.25);
    addHeight("48 characters in three lines", line, 100, 1.15);
    addHeight("10,000 characters", page, 300, 1.15);

    Comparison("the first measurement of a process")
        .inChildProcesses()
        .candidate([] { start(ZOR_FIRST_MEASURE, "measure"); })
        .floor("the same program without it", [] { start(ZOR_FIRST_MEASURE); })
        .peer(kPangoAlone, [] { start(ZOR_FIRST_MEASURE_BY_PANGO); })
        .atMost(1.5, kPangoAlone)
        .add();
    return true;
}();

}  // namespace
