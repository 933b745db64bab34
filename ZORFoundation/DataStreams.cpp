// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DataStreams.h>

#include <ZORFoundation/Base64CodingInternal.h>
#include <ZORFoundation/HashTypeInternal.h>
#include <ZORFoundation/TextKeyInternal.h>

#include <ZORPlatform/CommonCrypto/CommonCryptor.h>
#include <ZORPlatform/CommonCrypto/CommonDigest.h>

#include <array>

namespace ZORFoundation {

using Bytes = std::vector<std::uint8_t>;

struct DigestStream::State {
    explicit State(const DigestKind& kind) : running(kind.algorithm), length(kind.length) {}
    ZORPlatform::CCDigest running;
    std::size_t length;
};

DigestStream::DigestStream(ZORHashType type) : state_(std::make_unique<State>(recognizedDigest(type))) {}
DigestStream::~DigestStream() = default;

void DigestStream::update(std::span<const std::uint8_t> data) { state_->running.update(data); }

std::u16string DigestStream::final() {
    std::array<std::uint8_t, ZORPlatform::kLongestDigest> digest{};
    state_->running.final(digest);
    return ZORHash::hexDigest(std::span(digest).first(state_->length));
}

struct Base64DecodingStream::State {
    explicit State(Base64Codec of)
        : codec(of), reader(of == Base64Codec::ZORBase64 ? Base64Padding::kIsSkipped : Base64Padding::kEnds) {}
    [[nodiscard]] Base64End end() const noexcept {
        return codec == Base64Codec::ZORBase64 ? endOfSkippingText(reader) : endOfPaddedText(reader, isAtPadding);
    }

    Base64Codec codec;
    Base64Reader reader;
    bool isAtPadding = false;
    bool isAsciiSoFar = true;
    // The end of the text may take a byte off, so the last one waits.
    std::optional<std::uint8_t> last;
};

Base64DecodingStream::Base64DecodingStream(Base64Codec codec) : state_(std::make_unique<State>(codec)) {}
Base64DecodingStream::~Base64DecodingStream() = default;

std::optional<Bytes> Base64DecodingStream::update(std::u16string_view text) {
    State& state = *state_;
    Bytes bytes;
    if (!state.isAtPadding && state.isAsciiSoFar) {
        if (state.last) bytes.push_back(*state.last);
        const std::size_t begin = bytes.size();
        bytes.resize(begin + (state.reader.heldCount() + text.size()) / 4 * 3);
        const Base64Reader::Progress progress = state.reader.read(text, bytes.data() + begin);
        text.remove_prefix(progress.units);
        state.isAtPadding = progress.stop == Base64Stop::kPadding;
        bytes.resize(begin + progress.bytes);
        if (!bytes.empty()) {
            state.last = bytes.back();
            bytes.pop_back();
        }
    }
    state.isAsciiSoFar = state.isAsciiSoFar && isAscii(text);
    if (!state.isAsciiSoFar) return std::nullopt;
    return bytes;
}

std::optional<Bytes> Base64DecodingStream::final() {
    const State& state = *state_;
    if (!state.isAsciiSoFar) return std::nullopt;
    Bytes bytes;
    const Base64End end = state.end();
    if (state.last && end.count >= 0) bytes.push_back(*state.last);
    if (end.count > 0) bytes.insert(bytes.end(), end.bytes.begin(), end.bytes.begin() + end.count);
    return bytes;
}

namespace {

constexpr ZORPlatform::CCOptions optionsOf(TextCipher cipher) noexcept {
    return cipher == TextCipher::AES256 ? ZORPlatform::kCCOptionPKCS7Padding
                                        : ZORPlatform::kCCOptionPKCS7Padding | ZORPlatform::kCCOptionECBMode;
}

constexpr std::size_t keyBytesOf(TextCipher cipher) noexcept {
    return cipher == TextCipher::AES256 ? ZORPlatform::kCCKeySizeAES256 : ZORPlatform::kCCKeySizeAES128;
}

}  // namespace

struct TextCipherStream::State {
    State(ZORPlatform::CCOperation operation, TextCipher cipher, std::span<const std::uint8_t> key)
        : cryptor(operation, optionsOf(cipher), key) {}
    ZORPlatform::CCCryptor cryptor;
};

TextCipherStream::TextCipherStream(TextCipher cipher, Direction direction, std::u16string_view key,
                                   KeyOverflow overflow) {
    const auto form = direction == Direction::legacyDecrypt ? TextKeyForm::kLegacy : TextKeyForm::kCurrent;
    const auto rule = overflow == KeyOverflow::zeros ? TextKeyOverflow::kGivesZeros : TextKeyOverflow::kKeepsWhatFits;
    ZORPlatform::WipingArray<std::uint8_t, ZORPlatform::kCCKeySizeAES256> longestKey;
    const auto keyBytes = longestKey.span().first(keyBytesOf(cipher));
    prepareTextKey(key, form, keyBytes, rule);
    state_ = std::make_unique<State>(
        direction == Direction::encrypt ? ZORPlatform::kCCEncrypt : ZORPlatform::kCCDecrypt, cipher, keyBytes);
}

TextCipherStream::~TextCipherStream() = default;

std::optional<Bytes> TextCipherStream::update(std::span<const std::uint8_t> data) {
    Bytes bytes;
    bytes.reserve(data.size() + 2 * ZORPlatform::kCCBlockSizeAES128);  // Grown, it would leave plaintext behind.
    if (state_->cryptor.update(data, bytes) != ZORPlatform::kCCSuccess) return std::nullopt;
    return bytes;
}

std::optional<Bytes> TextCipherStream::final() {
    Bytes bytes;
    if (state_->cryptor.final(bytes) != ZORPlatform::kCCSuccess) return std::nullopt;
    return bytes;
}

}  // namespace ZORFoundation
