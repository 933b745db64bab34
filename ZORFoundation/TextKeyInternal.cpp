// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/TextKeyInternal.h>

#include <ZORPlatform/Foundation/Utf.h>

namespace ZORFoundation {
namespace {

// For keys of 16 bytes too.
constexpr std::size_t kLongestCurrentKeyUnits = 32;

}  // namespace

void prepareTextKey(std::u16string_view text, TextKeyForm form, std::span<std::uint8_t> key,
                    TextKeyOverflow overflow) noexcept {
    const bool isShortened = form == TextKeyForm::kCurrent && text.size() > kLongestCurrentKeyUnits;
    if (isShortened) text = text.substr(0, kLongestCurrentKeyUnits);

    const std::u16string_view usable = ZORPlatform::wellFormedPrefix(text);
    const std::span<char> room(reinterpret_cast<char*>(key.data()), key.size());
    const bool fits = ZORPlatform::utf8Prefix(usable, room).units == text.size();
    if (!fits && overflow == TextKeyOverflow::kGivesZeros) ZORPlatform::wipe(key.data(), key.size());

    // Deliberate: data exists that was encrypted under such keys.
    if (isShortened) key[0] = 0;
}

}  // namespace ZORFoundation
