// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORHash.h>

#include <ZORFoundation/HashTypeInternal.h>

#include <ZORPlatform/Foundation/Hexadecimal.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <algorithm>
#include <array>

namespace ZORFoundation {
namespace {

using ZORPlatform::CCDigest;
using ZORPlatform::CCDigestAlgorithm;

// In the order of ZORHashType, which begins with 1.
constexpr std::array<DigestKind, 6> kDigests{{{CCDigestAlgorithm::kMD5, ZORPlatform::CC_MD5_DIGEST_LENGTH},
                                              {CCDigestAlgorithm::kSHA1, ZORPlatform::CC_SHA1_DIGEST_LENGTH},
                                              {CCDigestAlgorithm::kSHA224, ZORPlatform::CC_SHA224_DIGEST_LENGTH},
                                              {CCDigestAlgorithm::kSHA256, ZORPlatform::CC_SHA256_DIGEST_LENGTH},
                                              {CCDigestAlgorithm::kSHA384, ZORPlatform::CC_SHA384_DIGEST_LENGTH},
                                              {CCDigestAlgorithm::kSHA512, ZORPlatform::CC_SHA512_DIGEST_LENGTH}}};

}  // namespace

const DigestKind& recognizedDigest(ZORHashType type) {
    const auto number = static_cast<std::uint64_t>(type);
    if (number < 1 || number > kDigests.size()) {
        throw ZORPlatform::NSException(
            u"InvalidHashTypeException",
            u"Hash type [" + ZORPlatform::utf16(std::to_string(number)) + u"] was not recognized");
    }
    return kDigests[number - 1];
}

namespace ZORHash {
namespace {

// The text's UTF-8 form is made in pieces, so short that the processor reads the next one while it digests this one,
// and whole blocks of every digest as long as the text is ASCII.
constexpr std::size_t kPieceBytes = 512;

void update(CCDigest& digest, std::u16string_view text) {
    ZORPlatform::WipingScratch<char, kPieceBytes> scratch;
    while (!text.empty()) {
        const std::size_t room = text.size() < kPieceBytes / 3 ? 3 * text.size() : kPieceBytes;
        const std::span<char> piece = scratch.first(room);
        const ZORPlatform::Utf8Prefix step = ZORPlatform::utf8Prefix(text, piece);
        const std::string_view bytes(piece.data(), step.bytes);
        const std::size_t end = bytes.find('\0');
        digest.update({reinterpret_cast<const std::uint8_t*>(bytes.data()), std::min(end, bytes.size())});
        if (end != std::string_view::npos) return;
        text.remove_prefix(step.units);
    }
}

}  // namespace

std::u16string zor_md5(std::u16string_view text) { return zor_hash(text, ZORHashType::MD5); }

std::u16string zor_sha256(std::u16string_view text) { return zor_hash(text, ZORHashType::SHA256); }

std::u16string zor_hash(std::u16string_view text, ZORHashType type) {
    const DigestKind& chosen = recognizedDigest(type);
    CCDigest running(chosen.algorithm);
    update(running, text);
    std::array<std::uint8_t, ZORPlatform::kLongestDigest> digest{};
    running.final(digest);
    return hexDigest(std::span(digest).first(chosen.length));
}

std::size_t hashLength(ZORHashType type) { return recognizedDigest(type).length; }

std::u16string hexDigest(std::span<const std::uint8_t> bytes) {
    return ZORPlatform::hexText(bytes, ZORPlatform::HexDigits::kLowerCase);
}

}  // namespace ZORHash
}  // namespace ZORFoundation
