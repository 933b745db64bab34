// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORBase64.h>

#include <ZORFoundation/Base64CodingInternal.h>

#include <algorithm>

namespace ZORFoundation {

// Deliberate: a pass over k characters counts k-1 bytes, and the last pass may find none behind a full group.
Base64End endOfSkippingText(const Base64Reader& reader) noexcept {
    const auto held = static_cast<std::ptrdiff_t>(reader.heldCount());
    const bool hasLastPass = held != 0 || reader.hasSkipped();
    return {reader.heldBytes(), hasLastPass ? held - 1 : 0};
}

namespace ZORBase64 {
namespace {

constexpr std::size_t kLineGroups = 16;
constexpr std::u16string_view kLineBreak = u"\r\n";

std::size_t decodeSkipping(std::u16string_view string, std::uint8_t* bytes) {
    Base64Reader reader(Base64Padding::kIsSkipped);
    const Base64Reader::Progress progress = reader.read(string, bytes);
    if (progress.stop != Base64Stop::kEndOfText) return 0;
    const Base64End end = endOfSkippingText(reader);
    if (end.count > 0) std::copy_n(end.bytes.begin(), end.count, bytes + progress.bytes);
    // A count below zero is the caller's to avoid; there is no such buffer.
    if (end.count < 0 && progress.bytes == 0) return 0;
    return progress.bytes + static_cast<std::size_t>(end.count);
}

}  // namespace

std::u16string zor_base64EncodedString(std::span<const std::uint8_t> data) {
    const std::size_t lineBreaks = data.empty() ? 0 : (data.size() - 1) / (3 * kLineGroups);
    return base64Text(data, {lineBreaks, kLineGroups, kLineBreak, /*endsInBreak=*/false});
}

std::vector<std::uint8_t> zor_dataFromBase64String(std::u16string_view string) {
    std::vector<std::uint8_t> bytes(string.size() / 4 * 3 + 2);
    std::size_t length = decodePlainText(string, bytes.data());
    if (length == 0) length = decodeSkipping(string, bytes.data());
    bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(length), bytes.end());
    return bytes;
}

}  // namespace ZORBase64
}  // namespace ZORFoundation
