// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/TextLayout/TextLayout.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/TextLayout/TextLayoutModuleInternal.h>

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <limits>

namespace ZORPlatform {
namespace {

constexpr double kLargestPointSize = 10'000;

MeasureText* measureTextOf(const char* file) noexcept {
    void* const module = dlopen(file, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    return module != nullptr ? reinterpret_cast<MeasureText*>(dlsym(module, kMeasureTextSymbol)) : nullptr;
}

// Beside the file that this function is in: the library, or a program that holds its objects.
std::filesystem::path besideThisFile() {
    Dl_info info;
    if (dladdr(reinterpret_cast<const void*>(&besideThisFile), &info) == 0) return {};
    return std::filesystem::path(info.dli_fname).parent_path() / textLayoutModuleName();
}

MeasureText* loadMeasureText() {
    if (const std::optional<std::filesystem::path> file = HostEnvironment::textLayoutModule()) {
        return measureTextOf(file->c_str());
    }
    if (MeasureText* const found = measureTextOf(besideThisFile().c_str())) return found;
    return measureTextOf(std::string(textLayoutModuleName()).c_str());
}

// A module that was not there may be there next time; loading one twice is no harm.
MeasureText* measureText() {
    static constinit std::atomic<MeasureText*> loaded = nullptr;
    MeasureText* function = loaded.load(std::memory_order_acquire);
    if (function == nullptr) {
        function = loadMeasureText();
        loaded.store(function, std::memory_order_release);
    }
    return function;
}

std::string withoutNul(std::string text) {
    std::erase(text, '\0');
    return text;
}

}  // namespace

std::string_view textLayoutModuleName() noexcept { return ZOR_TEXT_LAYOUT_MODULE; }

std::optional<Size> boundingRectSize(std::u16string_view text, std::optional<double> width, const Font& font) {
    MeasureText* const measure = measureText();
    if (measure == nullptr) return std::nullopt;
    if (!(font.pointSize > 0)) return Size{};
    const std::string bytes = withoutNul(utf8(text));
    const std::string family = withoutNul(utf8(font.family));
    std::array<double, 2> size{};
    // Not-a-number compares as less, too.
    const double limit = width ? (*width > 0 ? *width : 0) : std::numeric_limits<double>::infinity();
    measure(bytes.data(), bytes.size(), family.c_str(), std::min(font.pointSize, kLargestPointSize), limit,
            size.data());
    return Size{size[0], size[1]};
}

}  // namespace ZORPlatform
