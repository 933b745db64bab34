// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/Security/ZORSecurity.h>

#include <optional>
#include <vector>

using namespace ZORFoundation;
using fuzz::require;

namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

void requireOneOutcome(const std::optional<Bytes>& result, const std::optional<NSError>& error) {
    require(result.has_value() != error.has_value());
    if (error) require(error->domain() == u"CommonCryptoErrorDomain" && error->code() < 0);
}

// What decrypts is what encryption makes of the result, since all of the padding is checked.
template <class Encrypt, class Decrypt>
void requireDecryptionUndoes(View data, Encrypt encrypt, Decrypt decrypt) {
    std::optional<NSError> error;
    const std::optional<Bytes> opened = decrypt(data, &error);
    requireOneOutcome(opened, error);
    if (opened) require(encrypt(*opened, &error) == Bytes(data.begin(), data.end()));
    const std::optional<Bytes> sealed = encrypt(data, &error);
    requireOneOutcome(sealed, error);
    require(sealed->size() == data.size() / 16 * 16 + 16);
    require(decrypt(*sealed, &error) == Bytes(data.begin(), data.end()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first byte says how much of the input is the key.
    if (size == 0) return 0;
    const std::size_t keySize = std::min<std::size_t>(data[0] % 20, size - 1);
    const Bytes key(data + 1, data + 1 + keySize);
    const Bytes bytes(data + 1 + keySize, data + size);
    Bytes vector = key;
    vector.resize(16 + keySize % 3);
    using Slot = std::optional<NSError>*;

    requireDecryptionUndoes(
        bytes, [&](View in, Slot error) { return ZORSecurity::encrypt_AES128_ECB_PKCS7(in, key, error); },
        [&](View in, Slot error) { return ZORSecurity::decrypt_AES128_ECB_PKCS7(in, key, error); });
    requireDecryptionUndoes(
        bytes,
        [&](View in, Slot error) { return ZORSecurity::encrypt_AES128_CBC_PKCS7(in, key, vector, false, error); },
        [&](View in, Slot error) { return ZORSecurity::decrypt_AES128_CBC_PKCS7(in, key, vector, error); });

    // A vector in front of the data and one beside it are the same vector.
    std::optional<NSError> error;
    const std::optional<Bytes> opened = ZORSecurity::decrypt_AES128_CBC_PKCS7(bytes, key, std::nullopt, &error);
    requireOneOutcome(opened, error);
    if (bytes.size() >= 16) {
        const View all = bytes;
        require(opened == ZORSecurity::decrypt_AES128_CBC_PKCS7(all.subspan(16), key, all.first(16)));
    } else {
        require(!opened);
    }
    const std::optional<Bytes> sealed = ZORSecurity::encrypt_AES128_CBC_PKCS7(bytes, key, std::nullopt, true);
    require(ZORSecurity::decrypt_AES128_CBC_PKCS7(*sealed, key, std::nullopt) == bytes);
    return 0;
}
