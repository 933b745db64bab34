// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Base64CodingInternal.h>
#include <ZORFoundation/ZORAESCrypt.h>

#include <algorithm>

namespace ZORFoundation {

// Deliberate: without "=" the group is dropped; with it, one value gives a byte as two do.
Base64End endOfPaddedText(const Base64Reader& reader, bool isAtPadding) noexcept {
    const std::size_t held = reader.heldCount();
    const std::ptrdiff_t count = held == 3 ? 2 : held == 0 ? 0 : 1;
    return {reader.heldBytes(), isAtPadding ? count : 0};
}

namespace ZORAESCrypt {
namespace {

constexpr std::u16string_view kLineBreak = u"\n";

std::size_t decodeToPadding(std::u16string_view string, std::uint8_t* bytes) {
    Base64Reader reader(Base64Padding::kEnds);
    const Base64Reader::Progress progress = reader.read(string, bytes);
    if (progress.stop == Base64Stop::kNotAscii || !isAscii(string.substr(progress.units))) return 0;
    const Base64End end = endOfPaddedText(reader, progress.stop == Base64Stop::kPadding);
    std::copy_n(end.bytes.begin(), end.count, bytes + progress.bytes);
    return progress.bytes + static_cast<std::size_t>(end.count);
}

}  // namespace

std::u16string zor_base64Encoding(std::span<const std::uint8_t> data) { return base64Text(data); }

std::u16string zor_base64EncodingWithLineLength(std::span<const std::uint8_t> data, std::size_t lineLength) {
    const std::size_t units = base64Units(data.size());
    if (lineLength == 0 || lineLength > units) return base64Text(data);
    const std::size_t lineGroups = (lineLength + 3) / 4;
    const std::size_t wholeLines = data.size() / (3 * lineGroups);
    // A line is full by its characters, so one byte or two and their padding may fill it.
    const bool isLastFull = base64Units(data.size() - wholeLines * 3 * lineGroups) == 4 * lineGroups;
    return base64Text(data, {wholeLines, lineGroups, kLineBreak, isLastFull});
}

std::vector<std::uint8_t> zor_dataWithBase64EncodedString(std::u16string_view string) {
    return initWithBase64EncodedString(string);
}

std::vector<std::uint8_t> initWithBase64EncodedString(std::u16string_view string) {
    std::vector<std::uint8_t> bytes(string.size() / 4 * 3 + 2);
    std::size_t length = decodePlainText(string, bytes.data());
    if (length == 0) length = decodeToPadding(string, bytes.data());
    bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(length), bytes.end());
    return bytes;
}

}  // namespace ZORAESCrypt
}  // namespace ZORFoundation
