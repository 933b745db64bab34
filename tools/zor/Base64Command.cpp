// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/ByteInput.h>
#include <tools/zor/NumberArgument.h>
#include <tools/zor/filter/Output.h>

#include <ZORFoundation/DataStreams.h>
#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORFoundation/ZORBase64.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

using ZORFoundation::Base64Codec;

constexpr std::size_t kPieceBytes = std::size_t{48} * 1024;
// A piece holds whole lines, so lines have a limit.
constexpr std::size_t kLongestLine = std::size_t{1} << 20;

constexpr std::array kOptions{
    Option{"--codec", "NAME", "zoraescrypt (default), or zorbase64 with CR LF"},
    Option{"--line-length", "N", "of zoraescrypt; without it one line"},
};

Base64Codec codec(const Arguments& arguments) {
    const std::string_view name = arguments.value("--codec").value_or("zoraescrypt");
    if (name == "zoraescrypt") return Base64Codec::ZORAESCrypt;
    if (name == "zorbase64") return Base64Codec::ZORBase64;
    throw UsageError("--codec: zoraescrypt or zorbase64 is needed");
}

std::size_t lineLength(const Arguments& arguments) {
    const auto given = arguments.value("--line-length");
    return given ? numberArgument("--line-length", *given, 0, kLongestLine) : 0;
}

void encodeLines(const std::string& path, std::size_t lineLength) {
    const std::size_t lineBytes = lineLength == 0 ? 3 : (lineLength + 3) / 4 * 3;
    ByteInput input(path, lineBytes * std::max<std::size_t>(1, kPieceBytes / lineBytes));
    for (auto piece = input.next(); !piece.empty(); piece = input.next()) {
        const auto text = ZORFoundation::ZORAESCrypt::zor_base64EncodingWithLineLength(piece, lineLength);
        writeAll(STDOUT_FILENO, ZORPlatform::utf8(text));
    }
}

// A line break stands between two lines only, so the next piece has to be known before it is written.
void encodeJoinedLines(const std::string& path) {
    ByteInput input(path, kPieceBytes);
    std::string_view lineBreak;
    for (auto piece = input.next(); !piece.empty(); piece = input.next()) {
        writeAll(STDOUT_FILENO, lineBreak);
        writeAll(STDOUT_FILENO, ZORPlatform::utf8(ZORFoundation::ZORBase64::zor_base64EncodedString(piece)));
        lineBreak = "\r\n";
    }
}

ExitCode decode(const std::string& path, Base64Codec codec) {
    ByteInput input(path, kPieceBytes);
    ZORFoundation::Base64DecodingStream stream(codec);
    std::u16string text;
    std::optional<std::vector<std::uint8_t>> bytes;
    const auto writeBytes = [&bytes] {
        writeAll(STDOUT_FILENO, {reinterpret_cast<const char*>(bytes->data()), bytes->size()});
    };
    for (auto piece = input.next(); !piece.empty(); piece = input.next()) {
        text.assign(piece.begin(), piece.end());
        bytes = stream.update(text);
        if (!bytes) break;
        writeBytes();
    }
    bytes = stream.final();
    if (!bytes) {
        writeAll(STDERR_FILENO, "zor: base64: the text is not ASCII, so it has no bytes\n");
        return ExitCode::someInvalid;
    }
    writeBytes();
    return ExitCode::success;
}

constexpr std::array kActions{
    Action{"encode", "data as text"},
    Action{"decode", "text back to data"},
};

ExitCode run(const Arguments& arguments) {
    const std::vector<std::string>& words = arguments.words;
    const bool isDecoding = words[0] == kActions[1].name;
    if (words.size() > 2) throw UsageError("base64: there is more than one FILE");
    const Base64Codec chosen = codec(arguments);
    if (arguments.has("--line-length") && (isDecoding || chosen == Base64Codec::ZORBase64)) {
        throw UsageError("--line-length: only for encoding with zoraescrypt");
    }
    const std::string path = words.size() == 2 ? words[1] : "";
    if (isDecoding) return decode(path, chosen);
    if (chosen == Base64Codec::ZORBase64) {
        encodeJoinedLines(path);
    } else {
        encodeLines(path, lineLength(arguments));
    }
    return ExitCode::success;
}

}  // namespace

const Command kBase64Command{.name = "base64",
                             .synopsis = "ACTION [FILE]",
                             .help = "data as Base64 text and back",
                             .actions = kActions,
                             .options = kOptions,
                             .run = run};

}  // namespace zor
