// SPDX-License-Identifier: Apache-2.0
#pragma once

// The line that tells a user what went wrong: a message and the short code to quote.

#include <ZORPlatform/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZORFoundation::ErrorFormatting {

/// `errorMessageWith:errorCode:`
///
/// Writes "MESSAGE (CODE)": the message, one blank, the code in parentheses. Nothing in either is interpreted.
///
/// @param message    absent is written "(null)"
/// @param errorCode  for example from `ZORErrorHandler::mappedErrorCodeFromError`; absent is written "(null)"
///
/// Pure.
[[nodiscard]] ZOR_EXPORT std::u16string errorMessageWith(std::optional<std::u16string_view> message,
                                                         std::optional<std::u16string_view> errorCode);

}  // namespace ZORFoundation::ErrorFormatting
