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

}  // namespace

std::u16string zor_base64Encoding(std::span<const std::uint8_t> data) { return base64Line(data); }

std::u16string zor_base64EncodingWithLineLength(std::span<const std::uint8_t> data, std::size_t lineLength) {
    const std::size_t units = base64Units(data.size());
    if (lineLength == 0 || lineLength > units) return base64Line(data);
    const std::size_t lineGroups = (lineLength + 3) / 4;
    const std::size_t lineBytes = 3 * lineGroups;
    Base64Writer writer(units + units / (4 * lineGroups));
    const std::size_t wholeLines = data.size() / lineBytes;
    writer.appendLines(data.data(), wholeLines, lineBytes, kLineBreak);
    const auto rest = data.subspan(wholeLines * lineBytes);
    writer.append(rest);
    // A line is full by its characters, so one byte or two and their padding may fill it.
    if (base64Units(rest.size()) == 4 * lineGroups) writer.append(kLineBreak);
    return writer.finish();
}

std::vector<std::uint8_t> zor_dataWithBase64EncodedString(std::u16string_view string) {
    return initWithBase64EncodedString(string);
}

std::vector<std::uint8_t> initWithBase64EncodedString(std::u16string_view string) {
    std::vector<std::uint8_t> bytes(string.size() / 4 * 3 + 2);
    if (const auto length = decodePlainText(string, bytes.data())) {
        bytes.resize(*length);
        return bytes;
    }
    Base64Reader reader(Base64Padding::kEnds);
    const Base64Reader::Progress progress = reader.read(string, bytes.data());
    if (progress.stop == Base64Stop::kNotAscii || !isAscii(string.substr(progress.units))) {
        bytes.clear();
        return bytes;
    }

    const Base64End end = endOfPaddedText(reader, progress.stop == Base64Stop::kPadding);
    std::copy_n(end.bytes.begin(), end.count, bytes.data() + progress.bytes);
    bytes.resize(progress.bytes + static_cast<std::size_t>(end.count));
    return bytes;
}

}  // namespace ZORAESCrypt
}  // namespace ZORFoundation
