// SPDX-License-Identifier: Apache-2.0
//
// Laws of characters: whatever the text, its characters end where ICU's do, and counting, indexing and cutting by
// characters go with those ends.
#include <fuzz/support/FuzzText.h>
#include <tests/support/CharacterModel.h>

#include <ZORFoundation/StringExtension.h>
#include <ZORPlatform/Foundation/Text.h>

#include <array>
#include <string>

using namespace ZORFoundation;
using fuzz::require;

namespace {

// What bytes below 0x40 stand for: what joins and what separates, and plain units for long stretches of them.
constexpr std::array<char32_t, 24> kScalars{u'a',    u'\r',   u'\n',   0xAD,   0xA9,   0x301,   0x94D,    0x915,
                                            0x903,   0x600,   0x1100,  0x1161, 0x11A8, 0xAC00,  0xAC01,   0x200D,
                                            0x1F1E7, 0x1F469, 0x1F3FD, 0xD83D, 0xDE00, 0xE0020, 0x10FFFF, u'z'};

std::u16string enlarged(std::u16string_view text) {
    std::u16string result;
    for (const char16_t unit : text) {
        if (unit < kScalars.size()) {
            ZORPlatform::appendScalar(result, kScalars[unit]);
        } else if (unit < 0x40) {
            result.append(unit, u'x');
        } else {
            result.push_back(unit);
        }
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    thread_local support::CharacterModel model;
    const std::u16string text = enlarged(fuzz::Text(data, size).view());
    const std::vector<std::size_t> ends = model.ends(text);

    std::size_t at = 0;
    for (const std::size_t end : ends) require((at = ZORPlatform::characterEnd(text, at)) == end);
    require(StringExtension::length(text) == static_cast<std::int64_t>(ends.size()));
    for (std::size_t index = 0; index <= ends.size() + 1; ++index) {
        const auto position = ZORPlatform::characterPosition(text, index);
        require(position == support::CharacterModel::position(ends, index));
        if (!position) continue;
        const auto characters = static_cast<std::int64_t>(index);
        require(StringExtension::substringToIndex(text, characters) +
                    StringExtension::substringFromIndex(text, characters) ==
                text);
        if (*position == text.size()) continue;
        require(StringExtension::subscript(text, characters) ==
                StringExtension::substringWithRange(text, {characters, characters + 1}));
    }
    for (std::size_t position = 0; position <= text.size(); ++position) {
        require(ZORPlatform::characterIndex(text, position) == support::CharacterModel::index(ends, position));
    }
    return 0;
}
