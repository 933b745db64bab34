// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's error value: a domain, a code within it, and texts for people.
//
//     NSError error(u"be.example.frontend", 17, {{u"NSLocalizedDescription", u"No connection"}});
//     error.code();                   // 17
//     error.localizedDescription();   // "No connection"

#include <ZORPlatform/Export.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// Key of the short title of a failure.
inline constexpr std::u16string_view NSLocalizedDescriptionKey = u"NSLocalizedDescription";
/// Key of the longer explanation of a failure.
inline constexpr std::u16string_view NSLocalizedFailureReasonErrorKey = u"NSLocalizedFailureReason";

/// Domain of URL-loading failures; codes as the platform numbers them, below zero.
inline constexpr std::u16string_view NSURLErrorDomain = u"NSURLErrorDomain";
/// Domain of system-call failures; the code is the value of `errno`.
inline constexpr std::u16string_view NSPOSIXErrorDomain = u"NSPOSIXErrorDomain";
/// Domain of file and property-list failures.
inline constexpr std::u16string_view NSCocoaErrorDomain = u"NSCocoaErrorDomain";

/// An error value. Immutable and cheap to copy: copies share their content. Two errors are equal when domain, code and
/// user information are. One object may be read from several threads.
class ZOR_EXPORT NSError {
public:
    /// User information: texts by key.
    using UserInfo = std::map<std::u16string, std::u16string, std::less<>>;

    /// `initWithDomain:code:userInfo:`. Absent user information counts as empty.
    NSError(std::u16string_view domain, std::int64_t code, std::optional<UserInfo> userInfo = std::nullopt);

    [[nodiscard]] const std::u16string& domain() const noexcept;
    [[nodiscard]] std::int64_t code() const noexcept;
    /// Never absent: empty when the error was made without user information.
    [[nodiscard]] const UserInfo& userInfo() const noexcept;

    /// The text under `NSLocalizedDescriptionKey`, or `std::nullopt` when the error carries none.
    [[nodiscard]] std::optional<std::u16string> localizedDescription() const;
    /// The text under `NSLocalizedFailureReasonErrorKey`, or `std::nullopt` when the error carries none.
    [[nodiscard]] std::optional<std::u16string> localizedFailureReason() const;

    /// UTF-8, for logs: the domain, the code and, where there is one, the description.
    [[nodiscard]] std::string description() const;

    [[nodiscard]] std::size_t hash() const noexcept;

    friend bool operator==(const NSError& left, const NSError& right) noexcept { return left.isEqual(right); }

private:
    struct Content;

    [[nodiscard]] bool isEqual(const NSError& other) const noexcept;

    std::shared_ptr<const Content> content_;
};

}  // namespace ZORPlatform

/// @cond
template <>
struct std::hash<ZORPlatform::NSError> {
    std::size_t operator()(const ZORPlatform::NSError& error) const noexcept { return error.hash(); }
};
/// @endcond
