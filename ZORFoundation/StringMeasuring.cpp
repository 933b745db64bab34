// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringMeasuring.h>

#include <ZORPlatform/Foundation/Precondition.h>

#include <string>

namespace ZORFoundation::StringExtension {
namespace {

Size boundingSize(std::string_view operation, std::u16string_view text, std::optional<double> width, const Font& font) {
    const std::optional<Size> size = ZORPlatform::boundingRectSize(text, width, font);
    if (size) return *size;
    ZORPlatform::preconditionFailure(std::string(operation) + ": the text-layout module " +
                                     std::string(ZORPlatform::textLayoutModuleName()) +
                                     " must be installed beside the library");
}

}  // namespace

double heightWithConstrainedWidth(std::u16string_view text, double width, const Font& font) {
    return boundingSize("heightWithConstrainedWidth(_:font:)", text, width, font).height;
}

Size calculatedSize(std::u16string_view text, const Font& withFont, std::optional<double> fixedWidth) {
    return boundingSize("calculatedSize(withFont:fixedWidth:)", text, fixedWidth, withFont);
}

}  // namespace ZORFoundation::StringExtension
