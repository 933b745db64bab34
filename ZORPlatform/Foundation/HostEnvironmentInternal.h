// SPDX-License-Identifier: Apache-2.0
#pragma once

// For services that keep what they derived from a setting.

#include <cstdint>
#include <filesystem>

namespace ZORPlatform {

/// Another number after each change of a setting. Thread-safe.
[[nodiscard]] std::uint64_t hostEnvironmentRevision() noexcept;

/// Counts as a change: what was derived from the machine's own settings is derived anew.
void reviseHostEnvironment() noexcept;

/// Whether `HostEnvironment::itemStorePath()` would give this very path, letter by letter. Thread-safe.
[[nodiscard]] bool isItemStorePath(const std::filesystem::path& path);

}  // namespace ZORPlatform
