// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORFoundation/ZORBase64.h>
#include <ZORPlatform/Foundation/Base64.h>
#include <tests/support/Base64Model.h>

#include <vector>

using namespace ZORFoundation;
using fuzz::require;

namespace {

using Bytes = std::span<const std::uint8_t>;

void requireDecodersFollowTheModel(std::u16string_view text) {
    require(ZORBase64::zor_dataFromBase64String(text) == support::literalDataFromBase64String(text));
    require(ZORAESCrypt::zor_dataWithBase64EncodedString(text) == support::literalInitWithBase64EncodedString(text));
}

void requireEncodersFollowTheModelAndComeBack(Bytes bytes, std::size_t lineLength) {
    const std::u16string withLines = ZORBase64::zor_base64EncodedString(bytes);
    require(withLines == support::literalBase64EncodedString(bytes));
    require(ZORBase64::zor_dataFromBase64String(withLines) == std::vector(bytes.begin(), bytes.end()));
    const std::u16string text = ZORAESCrypt::zor_base64EncodingWithLineLength(bytes, lineLength);
    require(text == support::literalBase64EncodingWithLineLength(bytes, lineLength));
    require(ZORAESCrypt::zor_dataWithBase64EncodedString(text) == std::vector(bytes.begin(), bytes.end()));
}

template <typename Unit>
struct Decoded {
    Decoded(ZORPlatform::VectorLevel level, const std::vector<Unit>& text) : bytes(text.size() / 4 * 3) {
        groups = ZORPlatform::base64Functions<Unit>(level).decode(text.data(), text.size() / 4, bytes.data());
    }
    bool operator==(const Decoded&) const = default;
    std::vector<std::uint8_t> bytes;
    std::size_t groups;
};

// Every level that the machine has gives what the portable form gives, byte for byte.
template <typename Unit>
void requireLevelsAgree(const std::vector<Unit>& text, Bytes bytes) {
    using ZORPlatform::VectorLevel;
    const std::size_t groups = bytes.size() / 3;
    std::vector<Unit> portable(4 * groups);
    ZORPlatform::base64Functions<Unit>(VectorLevel::kPortable).encode(bytes.data(), groups, portable.data());
    for (const VectorLevel level : {VectorLevel::kSSSE3, VectorLevel::kAVX2, VectorLevel::kAVX512VBMI}) {
        if (level > ZORPlatform::machineVectorLevel()) break;
        require(Decoded<Unit>(level, text) == Decoded<Unit>(VectorLevel::kPortable, text));
        std::vector<Unit> encoded(4 * groups);
        ZORPlatform::base64Functions<Unit>(level).encode(bytes.data(), groups, encoded.data());
        require(encoded == portable);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Text text(data, size);
    const std::u16string_view view = text.view();
    requireDecodersFollowTheModel(view);
    // Arbitrary bytes are seldom ASCII, which ends both decoders at once.
    std::u16string ascii(view);
    for (char16_t& unit : ascii) unit &= 0x7F;
    requireDecodersFollowTheModel(ascii);
    // A clean text of some length in front brings the rest to every alignment of a vector step.
    const std::u16string behindCleanText = std::u16string(size == 0 ? 0 : data[0] / 2, u'Q') + ascii;
    requireDecodersFollowTheModel(behindCleanText);

    const Bytes bytes(data, size);
    requireEncodersFollowTheModelAndComeBack(bytes, size == 0 ? 0 : data[0]);
    requireLevelsAgree(std::vector<char16_t>(view.begin(), view.end()), bytes);
    requireLevelsAgree(std::vector<char>(bytes.begin(), bytes.end()), bytes);
    return 0;
}
