// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/WrittenText.h>

namespace ZORPlatform::detail {

// Compiled for the standard after the library's own where the compiler has it: only there may a string begin unset.
std::u16string writtenText(std::size_t units, TextWriter writer, const void* write) {
    std::u16string text;
#if defined(__cpp_lib_string_resize_and_overwrite)
    // The length that libstdc++ 12 hands to the callback is that of the memory, so it is not used.
    text.resize_and_overwrite(units, [=](char16_t* to, std::size_t) noexcept {
        writer(write, to);
        return units;
    });
#else
    text.resize(units);
    writer(write, text.data());
#endif
    return text;
}

}  // namespace ZORPlatform::detail
