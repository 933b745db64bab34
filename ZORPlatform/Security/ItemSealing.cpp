// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/ItemSealingInternal.h>

#include <ZORPlatform/CommonCrypto/ErrorQueueMarkInternal.h>
#include <ZORPlatform/Foundation/Arc4Random.h>
#include <ZORPlatform/Foundation/Wiping.h>
#include <ZORPlatform/Security/ItemAttributesInternal.h>

#include <openssl/evp.h>

#include <climits>
#include <new>

namespace ZORPlatform {
namespace {

constexpr std::size_t kVectorBytes = 12;
constexpr std::size_t kTagBytes = 16;
constexpr std::size_t kLengthBytes = 4;
// The cryptography library counts in int.
constexpr std::size_t kLongest = INT_MAX - kVectorBytes - kTagBytes;

// What no identity begins with, in the place of one.
constexpr std::string_view kMarkOfKey = "key";

const EVP_CIPHER* cipher() {
    static const EVP_CIPHER* const fetched = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
    return fetched;
}

const unsigned char* unsignedBytes(std::string_view bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

// What is authenticated beside the value. The length in front tells where the identity ends and the attributes begin.
// In one piece: each more that is handed over takes as long as the value does.
std::string authenticatedBytes(std::string_view identity, std::string_view attributes) {
    std::string bytes;
    bytes.reserve(kLengthBytes + identity.size() + attributes.size());
    appendBigEndian(bytes, identity.size(), kLengthBytes);
    bytes.append(identity).append(attributes);
    return bytes;
}

bool begin(EVP_CIPHER_CTX* context, const unsigned char* vector, std::string_view authenticated) {
    int length = 0;
    return EVP_CipherInit_ex2(context, nullptr, nullptr, vector, -1, nullptr) == 1 &&
           EVP_CipherUpdate(context, nullptr, &length, unsignedBytes(authenticated),
                            static_cast<int>(authenticated.size())) == 1;
}

}  // namespace

void ItemSealing::Free::operator()(evp_cipher_ctx_st* context) const noexcept { EVP_CIPHER_CTX_free(context); }

ItemSealing::Context ItemSealing::keyed(std::span<const std::uint8_t, kKeyBytes> key, bool encrypts) {
    const ErrorQueueMark mark;
    Context context(EVP_CIPHER_CTX_new());
    if (!context || cipher() == nullptr ||
        EVP_CipherInit_ex2(context.get(), cipher(), key.data(), nullptr, encrypts ? 1 : 0, nullptr) != 1) {
        throw std::bad_alloc();
    }
    return context;
}

ItemSealing::ItemSealing(std::span<const std::uint8_t, kKeyBytes> key)
    : sealing_(keyed(key, /*encrypts=*/true)), opening_(keyed(key, /*encrypts=*/false)) {}

ItemSealing::~ItemSealing() = default;

std::optional<std::string> ItemSealing::seal(std::string_view identity, std::string_view attributes,
                                             std::span<const std::uint8_t> value) {
    const std::string authenticated = authenticatedBytes(identity, attributes);
    if (value.size() > kLongest || authenticated.size() > kLongest) return std::nullopt;
    std::string sealed(kVectorBytes + value.size() + kTagBytes, '\0');
    auto* vector = reinterpret_cast<unsigned char*>(sealed.data());
    arc4random_buf(vector, kVectorBytes);
    unsigned char* ciphertext = vector + kVectorBytes;
    int length = 0;
    const ErrorQueueMark mark;
    const bool succeeded =
        begin(sealing_.get(), vector, authenticated) &&
        (value.empty() ||
         EVP_CipherUpdate(sealing_.get(), ciphertext, &length, value.data(), static_cast<int>(value.size())) == 1) &&
        EVP_CipherFinal_ex(sealing_.get(), ciphertext + value.size(), &length) == 1 &&
        EVP_CIPHER_CTX_ctrl(sealing_.get(), EVP_CTRL_AEAD_GET_TAG, kTagBytes, ciphertext + value.size()) == 1;
    if (!succeeded) {
        // Data cannot make the cryptography library fail here, only want of memory can.
        throw std::bad_alloc();
    }
    return sealed;
}

std::optional<std::vector<std::uint8_t>> ItemSealing::open(std::string_view identity, std::string_view attributes,
                                                           std::string_view sealed) {
    if (sealed.size() < kVectorBytes + kTagBytes || sealed.size() > kLongest) return std::nullopt;
    const std::string authenticated = authenticatedBytes(identity, attributes);
    if (authenticated.size() > kLongest) return std::nullopt;
    const std::size_t size = sealed.size() - kVectorBytes - kTagBytes;
    const unsigned char* vector = unsignedBytes(sealed);
    // The call takes a pointer to bytes that it does not change.
    auto* tag =
        const_cast<unsigned char*>(vector + kVectorBytes + size);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
    std::vector<std::uint8_t> value(size);
    int length = 0;
    const ErrorQueueMark mark;
    unsigned char none = 0;
    const bool succeeded = begin(opening_.get(), vector, authenticated) &&
                           (size == 0 || EVP_CipherUpdate(opening_.get(), value.data(), &length, vector + kVectorBytes,
                                                          static_cast<int>(size)) == 1) &&
                           EVP_CIPHER_CTX_ctrl(opening_.get(), EVP_CTRL_AEAD_SET_TAG, kTagBytes, tag) == 1 &&
                           EVP_CipherFinal_ex(opening_.get(), &none, &length) == 1;
    if (succeeded) return value;
    wipe(value.data(), value.size());
    return std::nullopt;
}

std::string ItemSealing::mark() { return *seal(kMarkOfKey, {}, {}); }

bool ItemSealing::isMark(std::string_view bytes) { return open(kMarkOfKey, {}, bytes).has_value(); }

}  // namespace ZORPlatform
