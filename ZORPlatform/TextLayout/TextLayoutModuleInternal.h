// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the text-layout module exports: one C function. Its name carries the version of this interface.

#include <cstddef>

extern "C" {

/// Measures UTF-8 text without U+0000.
///
/// @param family     the font's family, UTF-8, ended by U+0000
/// @param pointSize  above 0, at most 10,000
/// @param width      in points, 0 or more; infinity for unlimited
/// @param size       takes width and height
void ZORFoundationMeasureText1(const char* text, std::size_t bytes, const char* family, double pointSize, double width,
                               double size[2]);
}

namespace ZORPlatform {

using MeasureText = decltype(ZORFoundationMeasureText1);
inline constexpr const char* kMeasureTextSymbol = "ZORFoundationMeasureText1";

}  // namespace ZORPlatform
