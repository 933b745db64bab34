// SPDX-License-Identifier: Apache-2.0
#pragma once

// Digests, Base64 and the ciphers keyed by text for data that arrives in pieces: what the pieces give, joined, is what
// the operations of ZORHash, ZORBase64 and ZORAESCrypt give for the whole, in memory that does not grow with it.
//
//     DigestStream digest(ZORHashType::SHA256);
//     while (read(piece)) digest.update(piece);
//     digest.final();   // u"ba7816bf…15ad"
//
// An object is used by one thread at a time. Its last operation is `final`.

#include <ZORFoundation/ZORHash.h>

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ZORFoundation {

/// A digest of bytes, zero bytes included.
class ZOR_EXPORT DigestStream {
public:
    /// @throws NSException as `zor_hash:` does
    explicit DigestStream(ZORHashType type);
    ~DigestStream();

    /// Takes the next bytes.
    void update(std::span<const std::uint8_t> data);
    /// The digest as lower-case hexadecimal digits, as `zor_hash:` writes it.
    [[nodiscard]] std::u16string final();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The library's two Base64 decoders.
enum class Base64Codec : std::uint8_t {
    ZORBase64,    ///< As `zor_dataFromBase64String:`.
    ZORAESCrypt,  ///< As `zor_dataWithBase64EncodedString:`.
};

/// Decodes a Base64 text. Text that is not ASCII has no bytes as a whole, but those before the first such character are
/// given by then.
class ZOR_EXPORT Base64DecodingStream {
public:
    explicit Base64DecodingStream(Base64Codec codec);
    ~Base64DecodingStream();

    /// The bytes that the next characters give, without those that later characters may yet take back.
    ///
    /// @return absent, then and ever after, for a character that is not ASCII
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> update(std::u16string_view text);
    /// The bytes that are left.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> final();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The ciphers of ZORAESCrypt.
enum class TextCipher : std::uint8_t { AES256, AES128 };

/// Encrypts or decrypts bytes under a key given as text.
class ZOR_EXPORT TextCipherStream {
public:
    enum class Direction : std::uint8_t { encrypt, decrypt, legacyDecrypt };
    /// What a key does that does not fit the key buffer: `zeros` reads what phones wrote under such keys, and only
    /// decryption should ask for it. docs/security.md has the story.
    enum class KeyOverflow : std::uint8_t { keepsWhatFits, zeros };

    /// @param key  as in `zor_AES256EncryptWithKey:`, or with `legacyDecrypt` as in `zor_legacyAES256DecryptWithKey:`.
    ///             Not kept
    TextCipherStream(TextCipher cipher, Direction direction, std::u16string_view key,
                     KeyOverflow overflow = KeyOverflow::keepsWhatFits);
    ~TextCipherStream();

    /// The bytes that the next ones give. Decrypted bytes hold only if `final` succeeds.
    ///
    /// @return absent, then and ever after, when the system lacks the cipher
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> update(std::span<const std::uint8_t> data);
    /// The last bytes; absent as `zor_AES256DecryptWithKey:` is.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> final();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace ZORFoundation
