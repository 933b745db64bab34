// SPDX-License-Identifier: Apache-2.0
#pragma once

// AES under a key given as text, for byte buffers and for texts, with the Base64 codec that the text forms use.
//
//     const auto sealed = ZORAESCrypt::zor_AES256EncryptWithKey(u"amount 25", key);   // Base64
//     const auto opened = ZORAESCrypt::zor_AES256DecryptWithKey(*sealed, key);        // u"amount 25"
//
// The formats are fixed by data that exists: AES-256 is in CBC mode with a vector of zeros, AES-128 in ECB mode, and
// nothing authenticates the ciphertext. Equal beginnings show as equal ciphertext, and a changed ciphertext may decrypt
// to something else. docs/security.md says how a text becomes a key and what else to know.
//
// The group's other codec is ZORBase64: its decoder does not end at "=" and keeps an incomplete last group.

#include <ZORPlatform/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Operations on byte buffers and texts, all pure. Prepared keys and plaintext copies are wiped; results are the
/// caller's.
namespace ZORFoundation::ZORAESCrypt {

/// `zor_AES256EncryptWithKey:` on a byte buffer
///
/// AES-256-CBC with a vector of 16 zero bytes and PKCS#7 padding, without any header.
///
/// @param key  the UTF-8 form of its first 32 UTF-16 units, filled up with zero bytes to 32; of a longer key, the first
///             byte becomes zero. Of what does not fit 32 bytes, the whole characters that do are used, and nothing
///             from a lone surrogate on
/// @return a whole number of 16-byte blocks, one at least; absent only when the system lacks the cipher or memory
[[nodiscard]] ZOR_EXPORT std::optional<std::vector<std::uint8_t>> zor_AES256EncryptWithKey(
    std::span<const std::uint8_t> data, std::u16string_view key);

/// `zor_AES256DecryptWithKey:` on a byte buffer
///
/// Undoes `zor_AES256EncryptWithKey:` with the same key.
///
/// @return absent for a length that is no multiple of 16 or is 0, and wherever the padding is not what it must be,
///         which shows most wrong keys and damage to the last blocks, but not all
[[nodiscard]] ZOR_EXPORT std::optional<std::vector<std::uint8_t>> zor_AES256DecryptWithKey(
    std::span<const std::uint8_t> data, std::u16string_view key);

/// `zor_legacyAES256DecryptWithKey:`
///
/// As `zor_AES256DecryptWithKey:`, for data of earlier releases: a key of more than 32 units is not shortened and keeps
/// its first byte. For keys of at most 32 ASCII characters the two agree.
[[nodiscard]] ZOR_EXPORT std::optional<std::vector<std::uint8_t>> zor_legacyAES256DecryptWithKey(
    std::span<const std::uint8_t> data, std::u16string_view key);

/// `zor_AES128EncryptWithKey:` on a byte buffer
///
/// AES-128-ECB with PKCS#7 padding: equal blocks give equal ciphertext. The key as in `zor_AES256EncryptWithKey:`, with
/// 16 bytes for 32; the limit of 32 units is the same.
[[nodiscard]] ZOR_EXPORT std::optional<std::vector<std::uint8_t>> zor_AES128EncryptWithKey(
    std::span<const std::uint8_t> data, std::u16string_view key);

/// `zor_AES128DecryptWithKey:` on a byte buffer
///
/// Undoes `zor_AES128EncryptWithKey:`; absent as in `zor_AES256DecryptWithKey:`.
[[nodiscard]] ZOR_EXPORT std::optional<std::vector<std::uint8_t>> zor_AES128DecryptWithKey(
    std::span<const std::uint8_t> data, std::u16string_view key);

/// `zor_AES256EncryptWithKey:` on a text
///
/// The UTF-8 form of `text`, encrypted as a buffer, as `zor_base64Encoding` of the result.
///
/// @return absent for a text with a lone surrogate, which has no UTF-8 form, and where the buffer form is
[[nodiscard]] ZOR_EXPORT std::optional<std::u16string> zor_AES256EncryptWithKey(std::u16string_view text,
                                                                                std::u16string_view key);

/// `zor_AES256DecryptWithKey:` on a text
///
/// `zor_dataWithBase64EncodedString:` of `text`, decrypted as a buffer and read as UTF-8.
///
/// @return absent when the decryption fails or its result is not well-formed UTF-8
[[nodiscard]] ZOR_EXPORT std::optional<std::u16string> zor_AES256DecryptWithKey(std::u16string_view text,
                                                                                std::u16string_view key);

/// `zor_AES128EncryptWithKey:` on a text: as its AES-256 namesake, with the AES-128 buffer form.
[[nodiscard]] ZOR_EXPORT std::optional<std::u16string> zor_AES128EncryptWithKey(std::u16string_view text,
                                                                                std::u16string_view key);

/// `zor_AES128DecryptWithKey:` on a text: as its AES-256 namesake, with the AES-128 buffer form.
[[nodiscard]] ZOR_EXPORT std::optional<std::u16string> zor_AES128DecryptWithKey(std::u16string_view text,
                                                                                std::u16string_view key);

/// `zor_base64Encoding`: `zor_base64EncodingWithLineLength:` with 0.
[[nodiscard]] ZOR_EXPORT std::u16string zor_base64Encoding(std::span<const std::uint8_t> data);

/// `zor_base64EncodingWithLineLength:`
///
/// The Base64 text of `data` (RFC 4648, the standard alphabet, "=" as padding). Empty for no bytes.
///
/// @param lineLength  characters a line, rounded up to a multiple of 4; 0 for one line. A line feed follows every line
///                    that is full, the last one included
[[nodiscard]] ZOR_EXPORT std::u16string zor_base64EncodingWithLineLength(std::span<const std::uint8_t> data,
                                                                         std::size_t lineLength);

/// `zor_dataWithBase64EncodedString:`: a new buffer made by `initWithBase64EncodedString:`.
[[nodiscard]] ZOR_EXPORT std::vector<std::uint8_t> zor_dataWithBase64EncodedString(std::u16string_view string);

/// `initWithBase64EncodedString:`
///
/// The bytes of a Base64 text up to its first "=", at which a group of two characters gives one byte and of three two.
/// Other characters outside the alphabet are skipped. A last group that is not full and has no "=" is dropped: the
/// difference from `zor_dataFromBase64String:` is on purpose.
///
/// @param string  absent counts as empty
/// @return the bytes; none for a text with any character outside ASCII, wherever it stands
[[nodiscard]] ZOR_EXPORT std::vector<std::uint8_t> initWithBase64EncodedString(std::u16string_view string);

/// `zor_hasPrefixBytes:length:`
///
/// Whether `data` begins with `bytes`. No bytes, or absent ones, are never a prefix.
[[nodiscard]] ZOR_EXPORT bool zor_hasPrefixBytes(std::span<const std::uint8_t> data,
                                                 std::span<const std::uint8_t> bytes) noexcept;

/// `zor_hasSuffixBytes:length:`
///
/// Whether `data` ends with `bytes`. No bytes, or absent ones, are never a suffix.
[[nodiscard]] ZOR_EXPORT bool zor_hasSuffixBytes(std::span<const std::uint8_t> data,
                                                 std::span<const std::uint8_t> bytes) noexcept;

}  // namespace ZORFoundation::ZORAESCrypt
