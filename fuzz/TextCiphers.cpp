// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/ZORAESCrypt.h>

#include <optional>
#include <vector>

using namespace ZORFoundation;
using fuzz::require;

namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;
using Operation = std::optional<Bytes> (*)(View, std::u16string_view);

// What decrypts is what encryption makes of the result, since the vector is fixed and all of the padding is checked.
void requireDecryptionUndoes(Operation encrypt, Operation decrypt, View data, std::u16string_view key) {
    const std::optional<Bytes> opened = decrypt(data, key);
    if (opened) {
        require(data.size() % 16 == 0 && opened->size() < data.size() && data.size() - opened->size() <= 16);
        require(encrypt(*opened, key) == Bytes(data.begin(), data.end()));
    }
    const std::optional<Bytes> sealed = encrypt(data, key);
    require(sealed && sealed->size() == data.size() / 16 * 16 + 16);
    require(decrypt(*sealed, key) == Bytes(data.begin(), data.end()));
}

void requireTextsFollowBuffers(View data, std::u16string_view key) {
    const std::u16string base64 = ZORAESCrypt::zor_base64Encoding(data);
    const std::optional<std::u16string> text = ZORAESCrypt::zor_AES256DecryptWithKey(base64, key);
    if (!text) return;
    require(ZORAESCrypt::zor_AES256DecryptWithKey(data, key).has_value());
    require(ZORAESCrypt::zor_AES256EncryptWithKey(*text, key) == base64);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first byte says how much of the input is the key.
    if (size == 0) return 0;
    const std::size_t keySize = std::min<std::size_t>(data[0] % 80, size - 1);
    const fuzz::Text key(data + 1, keySize);
    const Bytes bytes(data + 1 + keySize, data + size);

    requireDecryptionUndoes(ZORAESCrypt::zor_AES256EncryptWithKey, ZORAESCrypt::zor_AES256DecryptWithKey, bytes,
                            key.view());
    requireDecryptionUndoes(ZORAESCrypt::zor_AES128EncryptWithKey, ZORAESCrypt::zor_AES128DecryptWithKey, bytes,
                            key.view());
    if (key.view().size() <= 32) {
        require(ZORAESCrypt::zor_legacyAES256DecryptWithKey(bytes, key.view()) ==
                ZORAESCrypt::zor_AES256DecryptWithKey(bytes, key.view()));
    }
    requireTextsFollowBuffers(bytes, key.view());

    // Arbitrary text as ciphertext.
    const fuzz::Text text(bytes.data(), bytes.size());
    static_cast<void>(ZORAESCrypt::zor_AES128DecryptWithKey(text.view(), key.view()));
    return 0;
}
