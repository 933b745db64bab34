// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/ByteInput.h>
#include <tools/zor/KeyText.h>
#include <tools/zor/filter/Output.h>

#include <ZORFoundation/DataStreams.h>

#include <unistd.h>

#include <array>

namespace zor {
namespace {

using ZORFoundation::TextCipher;
using ZORFoundation::TextCipherStream;
using Direction = TextCipherStream::Direction;
using KeyOverflow = TextCipherStream::KeyOverflow;

constexpr std::size_t kPieceBytes = std::size_t{64} * 1024;

constexpr Option kCipher{"--cipher", "NAME", "aes256 or aes128"};
constexpr Option kKeyFile{"--key-file", "FILE", "the key's text (default: asked at the terminal)"};
constexpr Option kKeyFileExact{"--key-file-exact", "", "a final line end belongs to the key"};

constexpr std::array kEncryptOptions{kCipher, kKeyFile, kKeyFileExact};
constexpr std::array kDecryptOptions{
    kCipher,
    kKeyFile,
    kKeyFileExact,
    Option{"--key-overflow", "RULE", "zero: keys too long are zeros, as phones had them"},
    Option{"--legacy", "", "aes256 data of earlier releases"},
};

TextCipher cipher(const Arguments& arguments) {
    const auto name = arguments.value("--cipher");
    if (name == "aes256") return TextCipher::AES256;
    if (name == "aes128") return TextCipher::AES128;
    throw UsageError("--cipher: aes256 or aes128 is needed");
}

KeyOverflow keyOverflow(const Arguments& arguments) {
    const auto rule = arguments.value("--key-overflow");
    if (!rule) return KeyOverflow::keepsWhatFits;
    if (rule == "zero") return KeyOverflow::zeros;
    throw UsageError("--key-overflow: zero is the only rule to ask for");
}

KeyText key(const Arguments& arguments, Direction direction) {
    const auto path = arguments.value("--key-file");
    const bool exactly = arguments.has("--key-file-exact");
    if (path) return KeyText::fromFile(std::string(*path), exactly);
    if (exactly) throw UsageError("--key-file-exact: --key-file is missing");
    return KeyText::fromTerminal(/*twice=*/direction == Direction::encrypt);
}

// @return whether there were bytes to write
bool writeAndWipe(std::optional<std::vector<std::uint8_t>> bytes) {
    if (!bytes) return false;
    writeAll(STDOUT_FILENO, {reinterpret_cast<const char*>(bytes->data()), bytes->size()});
    ZORPlatform::wipe(bytes->data(), bytes->size());
    return true;
}

ExitCode run(const Arguments& arguments, Direction direction) {
    if (arguments.words.size() > 1) throw UsageError("one FILE at most; a key is never a word of the command line");
    const TextCipher chosen = cipher(arguments);
    if (direction == Direction::legacyDecrypt && chosen != TextCipher::AES256) {
        throw UsageError("--legacy: only for aes256");
    }
    TextCipherStream stream(chosen, direction, key(arguments, direction).view(), keyOverflow(arguments));
    ByteInput input(arguments.words.empty() ? "" : arguments.words[0], kPieceBytes);
    bool succeeds = true;
    for (auto piece = input.next(); succeeds && !piece.empty(); piece = input.next()) {
        succeeds = writeAndWipe(stream.update(piece));
    }
    if (succeeds && writeAndWipe(stream.final())) return ExitCode::success;
    writeAll(STDERR_FILENO, "zor: the key or the data is wrong; nothing that was written is to be trusted\n");
    return ExitCode::someInvalid;
}

ExitCode encrypt(const Arguments& arguments) { return run(arguments, Direction::encrypt); }

ExitCode decrypt(const Arguments& arguments) {
    return run(arguments, arguments.has("--legacy") ? Direction::legacyDecrypt : Direction::decrypt);
}

}  // namespace

const Command kEncryptCommand{.name = "encrypt",
                              .synopsis = "--cipher=NAME [FILE]",
                              .help = "data under a key text",
                              .options = kEncryptOptions,
                              .run = encrypt};
const Command kDecryptCommand{.name = "decrypt",
                              .synopsis = "--cipher=NAME [FILE]",
                              .help = "what encrypt wrote",
                              .options = kDecryptOptions,
                              .run = decrypt};

}  // namespace zor
