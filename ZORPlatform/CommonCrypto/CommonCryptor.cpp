// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/CommonCrypto/CommonCryptor.h>

#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace ZORPlatform {
namespace {

constexpr std::size_t kBlock = kCCBlockSizeAES128;

// The cryptography library counts in int. A multiple of the block.
constexpr std::size_t kPieceBytes = std::size_t{1} << 30;

constexpr std::array<std::size_t, 3> kKeySizes = {kCCKeySizeAES128, kCCKeySizeAES192, kCCKeySizeAES256};
constexpr std::array<const char*, 2 * kKeySizes.size()> kNames = {"AES-128-CBC", "AES-192-CBC", "AES-256-CBC",
                                                                  "AES-128-ECB", "AES-192-ECB", "AES-256-ECB"};

// A fetch costs more than encrypting a short text, so its result is kept for life.
template <std::size_t kIndex>
const EVP_CIPHER* fetched() {
    static const EVP_CIPHER* const cipher = [] {
        const ErrorQueueMark mark;
        return EVP_CIPHER_fetch(nullptr, kNames[kIndex], nullptr);
    }();
    return cipher;
}

// @return nullptr when the system has no such cipher
const EVP_CIPHER* fetchedFor(std::size_t keySize, bool isEcb) {
    constexpr std::array<const EVP_CIPHER* (*)(), kNames.size()> kFetches = {fetched<0>, fetched<1>, fetched<2>,
                                                                             fetched<3>, fetched<4>, fetched<5>};
    const auto found = std::find(kKeySizes.begin(), kKeySizes.end(), keySize);
    const auto index = static_cast<std::size_t>(found - kKeySizes.begin());
    return kFetches[index + (isEcb ? kKeySizes.size() : 0)]();
}

/// What padded ciphertext must look like. Data that fails it is refused by every operation, so a change of the rule is
/// a change here and nowhere else.
struct PaddingRule {
    static CCCryptorStatus checkLength(std::size_t ciphertextBytes) {
        return ciphertextBytes == 0 || ciphertextBytes % kBlock != 0 ? kCCAlignmentError : kCCSuccess;
    }
    /// PKCS#7 (RFC 5652, section 6.3): the last byte counts the padding, 1 to 16, and all of it has that value. Takes
    /// the same time for every block.
    static CCCryptorStatus remove(std::span<const std::uint8_t, kBlock> lastBlock, std::size_t& length) {
        // Read from `count` on: which bytes of the block are padding.
        alignas(2 * kBlock) static constexpr std::array<std::uint8_t, 2 * kBlock> kIsPadding = [] {
            std::array<std::uint8_t, 2 * kBlock> masks{};
            std::fill(masks.begin() + kBlock, masks.end(), std::uint8_t{0xFF});
            return masks;
        }();
        const std::size_t count = lastBlock[kBlock - 1];
        std::array<std::uint64_t, 2> block;
        std::array<std::uint64_t, 2> isPadding;
        std::memcpy(block.data(), lastBlock.data(), kBlock);
        std::memcpy(isPadding.data(), kIsPadding.data() + count % (kBlock + 1), kBlock);
        const std::uint64_t expected = count * 0x0101010101010101U;
        const std::uint64_t wrong = ((block[0] ^ expected) & isPadding[0]) | ((block[1] ^ expected) & isPadding[1]);
        if (wrong != 0 || count - 1 >= kBlock) return kCCDecodeError;
        length -= count;
        return kCCSuccess;
    }
};

bool beginCipher(EVP_CIPHER_CTX* context, const EVP_CIPHER* cipher, CCOperation operation,
                 std::span<const std::uint8_t> key, const std::uint8_t* iv, bool pads) {
    return EVP_CipherInit_ex2(context, cipher, key.data(), iv, operation == kCCEncrypt ? 1 : 0, nullptr) == 1 &&
           (pads || EVP_CIPHER_CTX_set_padding(context, 0) == 1);
}

bool updateCipher(EVP_CIPHER_CTX* context, std::span<const std::uint8_t> in, std::uint8_t* out, std::size_t& moved) {
    while (!in.empty()) {
        const auto piece = in.first(std::min(in.size(), kPieceBytes));
        int written = 0;
        if (EVP_CipherUpdate(context, out + moved, &written, piece.data(), static_cast<int>(piece.size())) != 1) {
            return false;
        }
        moved += static_cast<std::size_t>(written);
        in = in.subspan(piece.size());
    }
    return true;
}

bool finishCipher(EVP_CIPHER_CTX* context, std::uint8_t* out, std::size_t& moved) {
    int written = 0;
    if (EVP_CipherFinal_ex(context, out + moved, &written) != 1) return false;
    moved += static_cast<std::size_t>(written);
    return true;
}

// Data cannot make the cryptography library fail here, only want of memory can, so its error queue is cleared then and
// not watched on every call.
CCCryptorStatus failedUnexpectedly() {
    ERR_clear_error();
    return kCCUnspecifiedError;
}

CCCryptorStatus checkRequest(CCOperation operation, CCAlgorithm algorithm, CCOptions options, std::size_t keySize) {
    const bool isKnown = (operation == kCCEncrypt || operation == kCCDecrypt) && algorithm == kCCAlgorithmAES128 &&
                         (options & ~(kCCOptionPKCS7Padding | kCCOptionECBMode)) == 0;
    if (!isKnown) return kCCParamError;
    const bool isKeySize = std::find(kKeySizes.begin(), kKeySizes.end(), keySize) != kKeySizes.end();
    return isKeySize ? kCCSuccess : kCCKeySizeError;
}

constexpr std::array<std::uint8_t, kBlock> kZeroVector{};

struct Request {
    CCOperation operation;
    bool pads;
    const EVP_CIPHER* cipher;
    std::span<const std::uint8_t> key;
    const std::uint8_t* iv;
    std::span<const std::uint8_t> in;
};

CCCryptorStatus encrypt(const Request& request, std::uint8_t* out, std::size_t& moved) {
    const ThreadContext<CipherContextTraits> context;
    const bool succeeded =
        beginCipher(context.get(), request.cipher, kCCEncrypt, request.key, request.iv, request.pads) &&
        updateCipher(context.get(), request.in, out, moved) && finishCipher(context.get(), out, moved);
    return succeeded ? kCCSuccess : failedUnexpectedly();
}

CCCryptorStatus decrypt(const Request& request, std::uint8_t* out, std::size_t& moved) {
    const ThreadContext<CipherContextTraits> context;
    const bool succeeded =
        beginCipher(context.get(), request.cipher, kCCDecrypt, request.key, request.iv, /*pads=*/false) &&
        updateCipher(context.get(), request.in, out, moved);
    if (!succeeded) return failedUnexpectedly();
    if (!request.pads) return kCCSuccess;
    return PaddingRule::remove(std::span<const std::uint8_t, kBlock>(out + moved - kBlock, kBlock), moved);
}

// @return the status of a request that cannot be met whatever the room for its result
CCCryptorStatus checkLength(const Request& request) {
    if (request.operation == kCCDecrypt && request.pads) return PaddingRule::checkLength(request.in.size());
    return request.pads || request.in.size() % kBlock == 0 ? kCCSuccess : kCCAlignmentError;
}

std::size_t roomNeeded(const Request& request) {
    const bool addsPadding = request.operation == kCCEncrypt && request.pads;
    return request.in.size() + (addsPadding ? kBlock - request.in.size() % kBlock : 0);
}

CCCryptorStatus run(const Request& request, std::uint8_t* out, std::size_t& moved) noexcept try {
    return request.operation == kCCEncrypt ? encrypt(request, out, moved) : decrypt(request, out, moved);
} catch (const std::bad_alloc&) {
    return kCCMemoryFailure;
}

}  // namespace

EVP_CIPHER_CTX* CipherContextTraits::create() noexcept { return EVP_CIPHER_CTX_new(); }

// The key schedule and the last block go with the reset.
bool CipherContextTraits::clean(EVP_CIPHER_CTX* context) noexcept { return EVP_CIPHER_CTX_reset(context) == 1; }

void CipherContextTraits::destroy(EVP_CIPHER_CTX* context) noexcept { EVP_CIPHER_CTX_free(context); }

CCCryptor::CCCryptor(CCOperation operation, CCOptions options, std::span<const std::uint8_t> key)
    : operation_(operation), status_(checkRequest(operation, kCCAlgorithmAES128, options, key.size())) {
    if (status_ == kCCSuccess && (options & kCCOptionPKCS7Padding) == 0) status_ = kCCParamError;
    if (status_ != kCCSuccess) return;
    const EVP_CIPHER* cipher = fetchedFor(key.size(), (options & kCCOptionECBMode) != 0);
    if (cipher == nullptr) {
        status_ = kCCUnimplemented;
    } else if (!beginCipher(context_.get(), cipher, operation, key, kZeroVector.data(), operation == kCCEncrypt)) {
        status_ = failedUnexpectedly();
    }
}

CCCryptorStatus CCCryptor::update(std::span<const std::uint8_t> dataIn, std::vector<std::uint8_t>& dataOut) {
    if (status_ != kCCSuccess || dataIn.empty()) return status_;
    const std::size_t begin = dataOut.size();
    const std::size_t held = holdsBlock_ ? kBlock : 0;
    dataOut.resize(begin + held + dataIn.size() + kBlock);
    std::copy_n(block_.data(), held, dataOut.data() + begin);
    std::size_t moved = 0;
    if (!updateCipher(context_.get(), dataIn, dataOut.data() + begin + held, moved)) status_ = failedUnexpectedly();
    inputBytes_ += dataIn.size();
    std::size_t end = begin + held + moved;
    holdsBlock_ = operation_ == kCCDecrypt && held + moved != 0;
    if (holdsBlock_) {
        end -= kBlock;
        std::copy_n(dataOut.data() + end, kBlock, block_.data());
        wipe(dataOut.data() + end, kBlock);
    }
    dataOut.resize(end);
    return status_;
}

CCCryptorStatus CCCryptor::final(std::vector<std::uint8_t>& dataOut) {
    if (status_ != kCCSuccess) return status_;
    if (operation_ == kCCEncrypt) {
        const std::size_t begin = dataOut.size();
        dataOut.resize(begin + kBlock);
        std::size_t moved = 0;
        if (!finishCipher(context_.get(), dataOut.data() + begin, moved)) status_ = failedUnexpectedly();
        dataOut.resize(begin + moved);
        return status_;
    }
    status_ = PaddingRule::checkLength(inputBytes_);
    std::size_t length = kBlock;
    if (status_ == kCCSuccess) status_ = PaddingRule::remove(block_.span(), length);
    if (status_ == kCCSuccess) dataOut.insert(dataOut.end(), block_.data(), block_.data() + length);
    return status_;
}

CCCryptorStatus CCCrypt(CCOperation operation, CCAlgorithm algorithm, CCOptions options,
                        std::span<const std::uint8_t> key, std::optional<std::span<const std::uint8_t, kBlock>> iv,
                        std::span<const std::uint8_t> dataIn, std::span<std::uint8_t> dataOut,
                        std::size_t& dataOutMoved) noexcept {
    dataOutMoved = 0;
    if (const CCCryptorStatus status = checkRequest(operation, algorithm, options, key.size()); status != kCCSuccess) {
        return status;
    }
    Request request{operation, (options & kCCOptionPKCS7Padding) != 0, nullptr, key, kZeroVector.data(), dataIn};
    if (const CCCryptorStatus status = checkLength(request); status != kCCSuccess) return status;
    if (const std::size_t needed = roomNeeded(request); dataOut.size() < needed) {
        dataOutMoved = needed;
        return kCCBufferTooSmall;
    }
    if (iv) request.iv = iv->data();
    request.cipher = fetchedFor(key.size(), (options & kCCOptionECBMode) != 0);
    if (request.cipher == nullptr) return kCCUnimplemented;

    std::size_t moved = 0;
    const CCCryptorStatus status = run(request, dataOut.data(), moved);
    if (status == kCCSuccess) {
        dataOutMoved = moved;
    } else {
        wipe(dataOut.data(), dataOut.size());
    }
    return status;
}

}  // namespace ZORPlatform
