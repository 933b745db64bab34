// SPDX-License-Identifier: Apache-2.0
//
// The ciphers keyed by text. The floor is OpenSSL as an expert uses it without leaving the key behind: cipher fetched
// once, context reused and reset after each use, a fresh vector for the result. The key is prepared beforehand.

#include <benchmarks/Comparison.h>

#include <ZORFoundation/ZORAESCrypt.h>

#include <openssl/evp.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace ZORFoundation;
using benchmarks::Comparison;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMegabyte = 1'000'000;
const std::u16string kKey = u"0123456789abcdef";
const Bytes kKeyBytes = [] {
    Bytes key(kKey.begin(), kKey.end());
    key.resize(32);
    return key;
}();

const Bytes& plaintext(std::size_t size) {
    static const Bytes small(16, 'a');
    static const Bytes large(kMegabyte, 'a');
    return size == small.size() ? small : large;
}

struct Settings {
    const char* name;
    std::optional<Bytes> (*encrypt)(std::span<const std::uint8_t>, std::u16string_view);
    std::optional<Bytes> (*decrypt)(std::span<const std::uint8_t>, std::u16string_view);
};

constexpr Settings kSettings[] = {
    {"AES-256-CBC", ZORAESCrypt::zor_AES256EncryptWithKey, ZORAESCrypt::zor_AES256DecryptWithKey},
    {"AES-128-ECB", ZORAESCrypt::zor_AES128EncryptWithKey, ZORAESCrypt::zor_AES128DecryptWithKey},
};

const Bytes& ciphertext(std::size_t settings, std::size_t size) {
    static const Bytes texts[2][2] = {
        {*kSettings[0].encrypt(plaintext(16), kKey), *kSettings[0].encrypt(plaintext(kMegabyte), kKey)},
        {*kSettings[1].encrypt(plaintext(16), kKey), *kSettings[1].encrypt(plaintext(kMegabyte), kKey)}};
    return texts[settings][size == 16 ? 0 : 1];
}

Bytes evp(std::size_t settings, bool encrypts, const Bytes& in) {
    static EVP_CIPHER* const ciphers[] = {EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr),
                                          EVP_CIPHER_fetch(nullptr, "AES-128-ECB", nullptr)};
    static EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    static constexpr std::uint8_t kZeroVector[16] = {};
    Bytes out(in.size() + 16);
    int moved = 0;
    int last = 0;
    EVP_CipherInit_ex2(context, ciphers[settings], kKeyBytes.data(), kZeroVector, encrypts ? 1 : 0, nullptr);
    EVP_CipherUpdate(context, out.data(), &moved, in.data(), static_cast<int>(in.size()));
    EVP_CipherFinal_ex(context, out.data() + moved, &last);
    EVP_CIPHER_CTX_reset(context);
    out.resize(static_cast<std::size_t>(moved) + static_cast<std::size_t>(last));
    return out;
}

Comparison encryption(std::size_t settings, std::size_t size, double limit) {
    const char* const name = kSettings[settings].name;
    return Comparison(std::string(name) + " encryption of " + std::to_string(size) + " bytes")
        .candidate([=] { benchmark::DoNotOptimize(kSettings[settings].encrypt(plaintext(size), kKey)); })
        .floor("context reused and reset", [=] { benchmark::DoNotOptimize(evp(settings, true, plaintext(size))); })
        .atMost(limit, "context reused and reset")
        .add();
}

Comparison decryption(std::size_t settings, std::size_t size, double limit) {
    const char* const name = kSettings[settings].name;
    return Comparison(std::string(name) + " decryption to " + std::to_string(size) + " bytes")
        .candidate([=] { benchmark::DoNotOptimize(kSettings[settings].decrypt(ciphertext(settings, size), kKey)); })
        .floor("context reused and reset",
               [=] { benchmark::DoNotOptimize(evp(settings, false, ciphertext(settings, size))); })
        .atMost(limit, "context reused and reset")
        .add();
}

const Comparison encryptFewCbc = encryption(0, 16, 1.25);
const Comparison decryptFewCbc = decryption(0, 16, 1.25);
const Comparison encryptFewEcb = encryption(1, 16, 1.25);
const Comparison decryptFewEcb = decryption(1, 16, 1.25);
const Comparison encryptManyCbc = encryption(0, kMegabyte, 1.10);
const Comparison decryptManyCbc = decryption(0, kMegabyte, 1.10);
const Comparison encryptManyEcb = encryption(1, kMegabyte, 1.10);
const Comparison decryptManyEcb = decryption(1, kMegabyte, 1.10);

// A failing input: the padding is wrong, so the whole decryption was in vain.
const Comparison wrongKey =
    Comparison("AES-256-CBC decryption of 1 MB under a wrong key")
        .candidate([] {
            benchmark::DoNotOptimize(ZORAESCrypt::zor_AES256DecryptWithKey(ciphertext(0, kMegabyte), u"another key"));
        })
        .floor("the right key", [] { benchmark::DoNotOptimize(evp(0, false, ciphertext(0, kMegabyte))); })
        .add();

}  // namespace
