// SPDX-License-Identifier: Apache-2.0
#pragma once

// The values of the item store under AES-256-GCM (NIST SP 800-38D): a fresh random vector of 12 bytes, the ciphertext,
// the tag of 16 bytes. Identity and attributes are bound to it, so that a row cannot be changed in parts or given
// another's value.

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct evp_cipher_ctx_st;

namespace ZORPlatform {

/// Holds the key, ready for use, until it goes. Used by one thread at a time.
class ItemSealing {
public:
    static constexpr std::size_t kKeyBytes = 32;

    /// @throws std::bad_alloc
    explicit ItemSealing(std::span<const std::uint8_t, kKeyBytes> key);
    ItemSealing(ItemSealing&&) noexcept = default;
    ItemSealing& operator=(ItemSealing&&) noexcept = default;
    ~ItemSealing();

    /// @return absent for a value of 2 GiB or more
    [[nodiscard]] std::optional<std::string> seal(std::string_view identity, std::string_view attributes,
                                                  std::span<const std::uint8_t> value);
    /// @return the value, which is the caller's to wipe; absent when anything of the row is not what was sealed, or was
    ///         sealed under another key
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> open(std::string_view identity, std::string_view attributes,
                                                                std::string_view sealed);

    /// A mark that `isMark` knows again under the same key only.
    [[nodiscard]] std::string mark();
    [[nodiscard]] bool isMark(std::string_view bytes);

private:
    struct Free {
        void operator()(evp_cipher_ctx_st* context) const noexcept;
    };
    using Context = std::unique_ptr<evp_cipher_ctx_st, Free>;

    static Context keyed(std::span<const std::uint8_t, kKeyBytes> key, bool encrypts);

    Context sealing_;
    Context opening_;
};

}  // namespace ZORPlatform
