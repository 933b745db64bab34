// SPDX-License-Identifier: Apache-2.0
#pragma once

// Property lists as people and scripts read them, in UTF-8.

#include <ZORPlatform/Foundation/PropertyListValue.h>

#include <optional>
#include <string>

namespace zor {

/// An XML property list; nothing for a value that XML cannot hold.
[[nodiscard]] std::optional<std::string> propertyListXml(const ZORPlatform::PropertyListValue& value);

/// JSON (RFC 8259) without a line end behind it, an entry a line. What JSON lacks becomes a string: dates as XML writes
/// them, data in Base64, reals that are no numbers as XML names them. Nothing for a date that XML cannot hold.
[[nodiscard]] std::optional<std::string> propertyListJson(const ZORPlatform::PropertyListValue& value);

/// The bare text of a value that is neither a dictionary nor an array, as in JSON but without quotes and escapes.
/// Nothing for the others, and for a date that XML cannot hold.
[[nodiscard]] std::optional<std::string> bareText(const ZORPlatform::PropertyListValue& value);

}  // namespace zor
