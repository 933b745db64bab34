// SPDX-License-Identifier: Apache-2.0
#pragma once

// The way from a public key as files hold it to the form that the item store takes.

#include <cstdint>
#include <optional>
#include <span>

namespace ZORFoundation {

/// The RSAPublicKey (RFC 8017, appendix A.1.1) in a SubjectPublicKeyInfo (RFC 5280, section 4.1) with the algorithm
/// rsaEncryption. Deliberate: this is a walk to the place where such a key must be, not a parser. Of the algorithm the
/// first byte is looked at and fifteen are passed over; lengths are passed over, too, and what follows the key is part
/// of it.
///
/// @return at least one byte of `info`; absent where a byte on the way is not what it must be. Pure.
[[nodiscard]] std::optional<std::span<const std::uint8_t>> rsaPublicKeyIn(std::span<const std::uint8_t> info) noexcept;

}  // namespace ZORFoundation
