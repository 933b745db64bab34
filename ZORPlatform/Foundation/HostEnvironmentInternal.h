// SPDX-License-Identifier: Apache-2.0
#pragma once

// For services that keep what they derived from a setting.

#include <cstdint>

namespace ZORPlatform {

/// Another number after each change of a setting. Thread-safe.
[[nodiscard]] std::uint64_t hostEnvironmentRevision() noexcept;

/// Counts as a change: what was derived from the machine's own settings is derived anew.
void reviseHostEnvironment() noexcept;

}  // namespace ZORPlatform
