// SPDX-License-Identifier: Apache-2.0
//
// The ciphers keyed by text and by bytes. The floor is OpenSSL as an expert uses it without leaving the key behind:
// cipher fetched once, context reused and reset after each use, a fresh vector for the result. The key is prepared
// beforehand.

#include <benchmarks/Comparison.h>

#include <ZORFoundation/Security/ZORSecurity.h>
#include <ZORFoundation/ZORAESCrypt.h>

#include <openssl/evp.h>

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
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

using View = std::span<const std::uint8_t>;

struct Settings {
    const char* name;
    const char* cipher;
    std::optional<Bytes> (*encrypt)(View);
    std::optional<Bytes> (*decrypt)(View);
};

const View kKeyOf128Bits = View(kKeyBytes).first(16);
const Bytes kVector(16);

const Settings kSettings[] = {
    {"AES-256-CBC with a text", "AES-256-CBC",
     [](View data) { return ZORAESCrypt::zor_AES256EncryptWithKey(data, kKey); },
     [](View data) { return ZORAESCrypt::zor_AES256DecryptWithKey(data, kKey); }},
    {"AES-128-ECB with a text", "AES-128-ECB",
     [](View data) { return ZORAESCrypt::zor_AES128EncryptWithKey(data, kKey); },
     [](View data) { return ZORAESCrypt::zor_AES128DecryptWithKey(data, kKey); }},
    {"AES-128-ECB with bytes", "AES-128-ECB",
     [](View data) { return ZORSecurity::encrypt_AES128_ECB_PKCS7(data, kKeyOf128Bits); },
     [](View data) { return ZORSecurity::decrypt_AES128_ECB_PKCS7(data, kKeyOf128Bits); }},
    {"AES-128-CBC with bytes", "AES-128-CBC",
     [](View data) { return ZORSecurity::encrypt_AES128_CBC_PKCS7(data, kKeyOf128Bits, kVector, false); },
     [](View data) { return ZORSecurity::decrypt_AES128_CBC_PKCS7(data, kKeyOf128Bits, kVector); }},
};

const Bytes& ciphertext(const Settings& settings, std::size_t size) {
    static std::map<std::pair<const char*, std::size_t>, Bytes> texts;
    const auto [entry, isNew] = texts.try_emplace({settings.name, size});
    if (isNew) entry->second = settings.encrypt(plaintext(size)).value();
    return entry->second;
}

const EVP_CIPHER* fetched(const char* name) {
    static std::map<const char*, const EVP_CIPHER*> ciphers;
    const auto [entry, isNew] = ciphers.try_emplace(name);
    if (isNew) entry->second = EVP_CIPHER_fetch(nullptr, name, nullptr);
    return entry->second;
}

Bytes evp(const EVP_CIPHER* cipher, bool encrypts, const Bytes& in) {
    static EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    Bytes out(in.size() + 16);
    int moved = 0;
    int last = 0;
    EVP_CipherInit_ex2(context, cipher, kKeyBytes.data(), kVector.data(), encrypts ? 1 : 0, nullptr);
    EVP_CipherUpdate(context, out.data(), &moved, in.data(), static_cast<int>(in.size()));
    EVP_CipherFinal_ex(context, out.data() + moved, &last);
    EVP_CIPHER_CTX_reset(context);
    out.resize(static_cast<std::size_t>(moved) + static_cast<std::size_t>(last));
    return out;
}

constexpr const char* kFloor = "context reused and reset";

double limitFor(std::size_t size) { return size == kMegabyte ? 1.10 : 1.25; }

Comparison encryption(const Settings& settings, std::size_t size) {
    return Comparison(std::string(settings.name) + ": encryption of " + std::to_string(size) + " bytes")
        .candidate([=, &in = plaintext(size)] { benchmark::DoNotOptimize(settings.encrypt(in)); })
        .floor(kFloor, [cipher = fetched(settings.cipher),
                        &in = plaintext(size)] { benchmark::DoNotOptimize(evp(cipher, true, in)); })
        .atMost(limitFor(size), kFloor)
        .add();
}

Comparison decryption(const Settings& settings, std::size_t size) {
    return Comparison(std::string(settings.name) + ": decryption to " + std::to_string(size) + " bytes")
        .candidate([=, &in = ciphertext(settings, size)] { benchmark::DoNotOptimize(settings.decrypt(in)); })
        .floor(kFloor, [cipher = fetched(settings.cipher),
                        &in = ciphertext(settings, size)] { benchmark::DoNotOptimize(evp(cipher, false, in)); })
        .atMost(limitFor(size), kFloor)
        .add();
}

const std::vector<Comparison> bothWays = [] {
    std::vector<Comparison> all;
    for (const std::size_t size : {std::size_t{16}, kMegabyte}) {
        for (const Settings& settings : kSettings) {
            all.push_back(encryption(settings, size));
            all.push_back(decryption(settings, size));
        }
    }
    return all;
}();

// A failing input: the padding is wrong, so the whole decryption was in vain.
const Comparison wrongKey = Comparison("AES-256-CBC with a text: decryption of 1 MB under a wrong key")
                                .candidate([&in = ciphertext(kSettings[0], kMegabyte)] {
                                    benchmark::DoNotOptimize(ZORAESCrypt::zor_AES256DecryptWithKey(in, u"another key"));
                                })
                                .floor("the right key",
                                       [cipher = fetched("AES-256-CBC"), &in = ciphertext(kSettings[0], kMegabyte)] {
                                           benchmark::DoNotOptimize(evp(cipher, false, in));
                                       })
                                .add();

}  // namespace
