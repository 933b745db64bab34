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

constexpr std::size_t kLineBytes = 48;
constexpr std::u16string_view kLineBreak = u"\r\n";

}  // namespace

std::u16string zor_base64EncodedString(std::span<const std::uint8_t> data) {
    const std::size_t lineBreaks = data.empty() ? 0 : (data.size() - 1) / kLineBytes;
    return base64Lines(data, lineBreaks, kLineBytes, kLineBreak);
}

std::vector<std::uint8_t> zor_dataFromBase64String(std::u16string_view string) {
    std::vector<std::uint8_t> bytes(string.size() / 4 * 3 + 2);
    if (const auto length = decodePlainText(string, bytes.data())) {
        bytes.resize(*length);
        return bytes;
    }
    Base64Reader reader(Base64Padding::kIsSkipped);
    const Base64Reader::Progress progress = reader.read(string, bytes.data());
    if (progress.stop != Base64Stop::kEndOfText) {
        bytes.clear();
        return bytes;
    }

    const Base64End end = endOfSkippingText(reader);
    std::size_t length = progress.bytes;
    if (end.count > 0) std::copy_n(end.bytes.begin(), end.count, bytes.data() + length);
    // A count below zero is the caller's to avoid; there is no such buffer.
    if (end.count > 0 || length != 0) length += static_cast<std::size_t>(end.count);
    bytes.resize(length);
    return bytes;
}

}  // namespace ZORBase64
}  // namespace ZORFoundation
