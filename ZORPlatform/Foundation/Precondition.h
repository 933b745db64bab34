// SPDX-License-Identifier: Apache-2.0
#pragma once

// How the library stops when its caller has made a programming error.

#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORPlatform {

/// Writes `message` and a line end to standard error and ends the process with `std::abort`. For mistakes of the
/// caller's code only, never for bad data.
///
/// @param message  UTF-8; names the operation and the condition it needs
///
/// Thread-safe.
[[noreturn]] ZOR_EXPORT void preconditionFailure(std::string_view message) noexcept;

}  // namespace ZORPlatform
