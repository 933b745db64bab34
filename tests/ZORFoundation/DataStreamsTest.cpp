// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DataStreams.h>

#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORFoundation/ZORBase64.h>
#include <ZORFoundation/ZORMD5Hash.h>

#include <gtest/gtest.h>

#include <support/Base64Model.h>

#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Direction = TextCipherStream::Direction;

constexpr std::size_t kPieces[] = {1, 3, 16, 17, 64, 1000};

TEST(DigestStream, PiecesGiveTheDigestOfTheWhole) {
    const Bytes bytes(300, 0);
    for (const std::size_t piece : kPieces) {
        DigestStream digest(ZORHashType::MD5);
        for (std::size_t at = 0; at < bytes.size(); at += piece) {
            digest.update(std::span(bytes).subspan(at, std::min(piece, bytes.size() - at)));
        }
        EXPECT_EQ(digest.final(), ZORMD5Hash::zor_md5(bytes));
    }
}

std::optional<Bytes> decodedInPieces(Base64Codec codec, std::u16string_view text, std::size_t piece) {
    Base64DecodingStream stream(codec);
    Bytes whole;
    for (std::size_t at = 0; at < text.size(); at += piece) {
        const auto bytes = stream.update(text.substr(at, piece));
        if (!bytes) return std::nullopt;
        whole.insert(whole.end(), bytes->begin(), bytes->end());
    }
    const auto rest = stream.final();
    if (!rest) return std::nullopt;
    whole.insert(whole.end(), rest->begin(), rest->end());
    return whole;
}

TEST(Base64DecodingStream, PiecesGiveWhatTheWholeGives) {
    std::vector<std::u16string> texts = {
        u"",       u"Q",    u"QQ",      u"QUI",  u"QUJD",           u"QUJD\n",      u"QUJD====",
        u"QUJDR=", u"====", u"QU=JDRE", u"\r\n", u"QUJDREVG\r\nQQ", u"Q\nU\nJ\nD\n"};
    for (unsigned seed = 0; seed < 40; ++seed)
        texts.push_back(support::dirtyBase64(std::size_t{seed} * 9, 1 + seed % 30, seed));
    for (const std::u16string& text : texts) {
        for (const std::size_t piece : kPieces) {
            EXPECT_EQ(decodedInPieces(Base64Codec::ZORBase64, text, piece), ZORBase64::zor_dataFromBase64String(text));
            EXPECT_EQ(decodedInPieces(Base64Codec::ZORAESCrypt, text, piece),
                      ZORAESCrypt::zor_dataWithBase64EncodedString(text));
        }
    }
}

TEST(Base64DecodingStream, TextThatIsNotAsciiFailsEvenBehindThePadding) {
    for (const std::size_t piece : kPieces) {
        EXPECT_FALSE(decodedInPieces(Base64Codec::ZORAESCrypt, u"QUJD=abc\u00E9", piece));
        EXPECT_FALSE(decodedInPieces(Base64Codec::ZORBase64, u"QUJDQUJD\u00E9", piece));
    }
    Base64DecodingStream stream(Base64Codec::ZORBase64);
    EXPECT_FALSE(stream.update(u"\u00E9"));
    EXPECT_FALSE(stream.update(u"QUJD"));
    EXPECT_FALSE(stream.final());
}

std::optional<Bytes> cryptInPieces(TextCipherStream&& stream, const Bytes& bytes, std::size_t piece) {
    Bytes whole;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        const auto part = stream.update(std::span(bytes).subspan(at, std::min(piece, bytes.size() - at)));
        if (!part) return std::nullopt;
        whole.insert(whole.end(), part->begin(), part->end());
    }
    const auto rest = stream.final();
    if (!rest) return std::nullopt;
    whole.insert(whole.end(), rest->begin(), rest->end());
    return whole;
}

TEST(TextCipherStream, PiecesGiveWhatTheWholeGives) {
    const std::u16string key = u"a key of more than thirty-two characters";
    for (const std::size_t length : {0U, 1U, 15U, 16U, 17U, 64U, 300U}) {
        const Bytes bytes(length, 0x21);
        const Bytes cbc = ZORAESCrypt::zor_AES256EncryptWithKey(bytes, key).value();
        const Bytes ecb = ZORAESCrypt::zor_AES128EncryptWithKey(bytes, key).value();
        for (const std::size_t piece : kPieces) {
            EXPECT_EQ(cryptInPieces({TextCipher::AES256, Direction::encrypt, key}, bytes, piece), cbc);
            EXPECT_EQ(cryptInPieces({TextCipher::AES128, Direction::encrypt, key}, bytes, piece), ecb);
            EXPECT_EQ(cryptInPieces({TextCipher::AES256, Direction::decrypt, key}, cbc, piece), bytes);
            EXPECT_EQ(cryptInPieces({TextCipher::AES128, Direction::decrypt, key}, ecb, piece), bytes);
            EXPECT_EQ(cryptInPieces({TextCipher::AES256, Direction::legacyDecrypt, key}, cbc, piece),
                      ZORAESCrypt::zor_legacyAES256DecryptWithKey(cbc, key));
        }
    }
}

TEST(TextCipherStream, OverlongKeysCanBeTakenForZeros) {
    // AES-128 with a key of 17 characters: phones encrypted under 16 zero bytes, which the empty text gives too.
    const std::u16string key = u"0123456789abcdefg";
    const Bytes bytes(20, 0x21);
    const Bytes sealed = ZORAESCrypt::zor_AES128EncryptWithKey(bytes, u"").value();
    using KeyOverflow = TextCipherStream::KeyOverflow;
    EXPECT_EQ(cryptInPieces({TextCipher::AES128, Direction::decrypt, key, KeyOverflow::zeros}, sealed, 16), bytes);
    EXPECT_NE(cryptInPieces({TextCipher::AES128, Direction::decrypt, key}, sealed, 16), bytes);
}

}  // namespace
}  // namespace ZORFoundation
