// SPDX-License-Identifier: Apache-2.0
//
// Both Base64 codecs, both directions. Texts are UTF-16 here, so the candidates read or write twice the bytes of their
// peer, OpenSSL's block functions on plain characters into memory that is there already.

#include <benchmarks/Comparison.h>

#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORFoundation/ZORBase64.h>

#include <openssl/evp.h>

#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

namespace {

using namespace ZORFoundation;
using benchmarks::Comparison;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMegabyte = 1'000'000;
constexpr const char* kBlocks = "block functions";

// A multiple of 48 would hide the padding, and 1,000,000 is none.
const Bytes kBytes = [] {
    Bytes bytes(kMegabyte);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}();
const Bytes kFewBytes(kBytes.begin(), kBytes.begin() + 64);
const std::u16string kText = ZORAESCrypt::zor_base64Encoding(kBytes);
const std::u16string kFewCharacters = ZORAESCrypt::zor_base64Encoding(kFewBytes);
const std::string kPlainText(kText.begin(), kText.end());

void encodeBlocks() {
    static Bytes out(4 * kMegabyte);
    benchmark::DoNotOptimize(EVP_EncodeBlock(out.data(), kBytes.data(), static_cast<int>(kBytes.size())));
}

void decodeBlocks() {
    static Bytes out(2 * kMegabyte);
    benchmark::DoNotOptimize(EVP_DecodeBlock(out.data(), reinterpret_cast<const std::uint8_t*>(kPlainText.data()),
                                             static_cast<int>(kPlainText.size())));
}

template <typename Operation>
Comparison encoding(const char* name, Operation operation) {
    return Comparison(std::string(name) + " of 1 MB")
        .candidate([operation] { benchmark::DoNotOptimize(operation(kBytes)); })
        .peer(kBlocks, encodeBlocks)
        .atMost(1.0 / 3, kBlocks)
        .add();
}

template <typename Operation>
Comparison decoding(const char* name, Operation operation) {
    return Comparison(std::string(name) + " to 1 MB")
        .candidate([operation] { benchmark::DoNotOptimize(operation(kText)); })
        .peer(kBlocks, decodeBlocks)
        .atMost(1.0 / 3, kBlocks)
        .add();
}

const Comparison encodeLines = encoding("zor_base64EncodedString", ZORBase64::zor_base64EncodedString);
const Comparison encodeOneLine = encoding("zor_base64Encoding", ZORAESCrypt::zor_base64Encoding);
const Comparison decodeSkipping = decoding("zor_dataFromBase64String:", ZORBase64::zor_dataFromBase64String);
const Comparison decodeToPadding =
    decoding("zor_dataWithBase64EncodedString:", ZORAESCrypt::zor_dataWithBase64EncodedString);

// The floor is the result alone: memory, and one copy of what it holds.
template <typename Operation>
Comparison few(const char* name, double nanoseconds, Operation operation) {
    return Comparison(std::string(name) + ", 64 bytes")
        .candidate([operation] { benchmark::DoNotOptimize(operation()); })
        .floor("a copy of the result",
               [result = operation()] {
                   auto copy = result;
                   benchmark::DoNotOptimize(copy);
               })
        .expectedNanoseconds(nanoseconds)
        .add();
}

const Comparison encodeFewLines =
    few("zor_base64EncodedString", 25, [] { return ZORBase64::zor_base64EncodedString(kFewBytes); });
const Comparison encodeFew = few("zor_base64Encoding", 25, [] { return ZORAESCrypt::zor_base64Encoding(kFewBytes); });
const Comparison decodeFewSkipping =
    few("zor_dataFromBase64String:", 30, [] { return ZORBase64::zor_dataFromBase64String(kFewCharacters); });
const Comparison decodeFewToPadding = few("zor_dataWithBase64EncodedString:", 30,
                                          [] { return ZORAESCrypt::zor_dataWithBase64EncodedString(kFewCharacters); });

// The clean text with a stray character after every so many of its own, at places that cannot be predicted.
std::u16string dirty(std::size_t every) {
    std::u16string text;
    std::size_t next = every;
    std::uint32_t random = 1;
    for (std::size_t i = 0; i + 2 < kText.size(); ++i) {
        text += kText[i];
        if (--next != 0) continue;
        text += u"\n -_"[random >> 30];
        random = random * 1664525 + 1013904223;
        next = 1 + (random >> 8) % (2 * every);
    }
    return text;
}

template <typename Operation>
Comparison dirtyDecoding(const char* name, std::size_t every, Operation operation) {
    const std::u16string text = dirty(every);
    return Comparison(std::string(name) + " to 1 MB, a stray character after about " + std::to_string(every))
        .candidate([operation, text] { benchmark::DoNotOptimize(operation(text)); })
        .peer("block functions, clean text", decodeBlocks)
        .atMost(2, "block functions, clean text")
        .add();
}

const Comparison dirty2 = dirtyDecoding("zor_dataFromBase64String:", 2, ZORBase64::zor_dataFromBase64String);
const Comparison dirty16 = dirtyDecoding("zor_dataFromBase64String:", 16, ZORBase64::zor_dataFromBase64String);
const Comparison dirty75 =
    dirtyDecoding("zor_dataWithBase64EncodedString:", 75, ZORAESCrypt::zor_dataWithBase64EncodedString);
const Comparison dirty2ToPadding =
    dirtyDecoding("zor_dataWithBase64EncodedString:", 2, ZORAESCrypt::zor_dataWithBase64EncodedString);

const Comparison ownLines = Comparison("zor_dataFromBase64String: to 1 MB, lines of 64 characters")
                                .candidate([text = ZORBase64::zor_base64EncodedString(kBytes)] {
                                    benchmark::DoNotOptimize(ZORBase64::zor_dataFromBase64String(text));
                                })
                                .peer("block functions, clean text", decodeBlocks)
                                .atMost(2, "block functions, clean text")
                                .add();

}  // namespace
