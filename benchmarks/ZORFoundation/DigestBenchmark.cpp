// SPDX-License-Identifier: Apache-2.0
//
// Digests with their hexadecimal text. The floor is OpenSSL as an expert uses it, an algorithm fetched once and a
// context reused, with a table of digits; the naive peer is its one-call interface.

#include <benchmarks/Comparison.h>

#include <ZORFoundation/DataExtension.h>
#include <ZORFoundation/ZORHash.h>
#include <ZORFoundation/ZORMD5Hash.h>

#include <openssl/evp.h>

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace ZORFoundation;
using benchmarks::Comparison;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMegabyte = 1'000'000;

const Bytes& bytesOf(std::size_t size) {
    static const Bytes small(16, 'a');
    static const Bytes large(kMegabyte, 'a');
    return size == small.size() ? small : large;
}

const std::u16string& textOf(std::size_t size) {
    static const std::u16string small(16, u'a');
    static const std::u16string large(kMegabyte, u'a');
    return size == small.size() ? small : large;
}

std::u16string hexByTable(std::span<const std::uint8_t> bytes) {
    static constexpr char16_t kDigits[] = u"0123456789abcdef";
    std::u16string text(2 * bytes.size(), u'\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text[2 * i] = kDigits[bytes[i] >> 4];
        text[2 * i + 1] = kDigits[bytes[i] & 0xF];
    }
    return text;
}

std::u16string reusedContext(const char* name, std::size_t size) {
    static EVP_MD* const md5 = EVP_MD_fetch(nullptr, "MD5", nullptr);
    static EVP_MD* const sha256 = EVP_MD_fetch(nullptr, "SHA2-256", nullptr);
    static EVP_MD* const sha512 = EVP_MD_fetch(nullptr, "SHA2-512", nullptr);
    static EVP_MD_CTX* const contexts[] = {EVP_MD_CTX_new(), EVP_MD_CTX_new(), EVP_MD_CTX_new()};
    const int index = name[0] == 'M' ? 0 : name[3] == '2' ? 1 : 2;
    EVP_MD* const algorithms[] = {md5, sha256, sha512};
    std::uint8_t digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    EVP_DigestInit_ex2(contexts[index], algorithms[index], nullptr);
    EVP_DigestUpdate(contexts[index], bytesOf(size).data(), size);
    EVP_DigestFinal_ex(contexts[index], digest, &length);
    return hexByTable({digest, length});
}

std::u16string oneCall(const char* name, std::size_t size) {
    std::uint8_t digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    EVP_Digest(bytesOf(size).data(), size, digest, &length, EVP_get_digestbyname(name), nullptr);
    return hexByTable({digest, length});
}

Comparison digest(const char* name, ZORHashType type, std::size_t size, double limit) {
    return Comparison("zor_hash: " + std::string(name) + " of " + std::to_string(size) + " ASCII characters")
        .candidate([=] { benchmark::DoNotOptimize(ZORHash::zor_hash(textOf(size), type)); })
        .floor("context reused, table", [=] { benchmark::DoNotOptimize(reusedContext(name, size)); })
        .peer("one call", [=] { benchmark::DoNotOptimize(oneCall(name, size)); })
        .atMost(limit, "context reused, table")
        .add();
}

const Comparison md5Small = digest("MD5", ZORHashType::MD5, 16, 1.25);
const Comparison sha256Small = digest("SHA256", ZORHashType::SHA256, 16, 1.25);
const Comparison sha512Small = digest("SHA512", ZORHashType::SHA512, 16, 1.25);
const Comparison md5Large = digest("MD5", ZORHashType::MD5, kMegabyte, 1.10);
const Comparison sha256Large = digest("SHA256", ZORHashType::SHA256, kMegabyte, 1.10);
const Comparison sha512Large = digest("SHA512", ZORHashType::SHA512, kMegabyte, 1.10);

Comparison md5OfBytes(std::size_t size, double limit) {
    return Comparison("zor_md5 of " + std::to_string(size) + " bytes")
        .candidate([=] { benchmark::DoNotOptimize(ZORMD5Hash::zor_md5(bytesOf(size))); })
        .floor("context reused, table", [=] { benchmark::DoNotOptimize(reusedContext("MD5", size)); })
        .atMost(limit, "context reused, table")
        .add();
}

const Comparison md5OfFewBytes = md5OfBytes(16, 1.25);
const Comparison md5OfManyBytes = md5OfBytes(kMegabyte, 1.10);

const Comparison hexadecimal =
    Comparison("hexString() of 1 MB")
        .candidate([] { benchmark::DoNotOptimize(DataExtension::hexString(bytesOf(kMegabyte))); })
        .peer("table, a digit at a time", [] { benchmark::DoNotOptimize(hexByTable(bytesOf(kMegabyte))); })
        .atMost(0.25, "table, a digit at a time")
        .atMostNanoseconds(kMegabyte / 1.6)
        .add();

}  // namespace
