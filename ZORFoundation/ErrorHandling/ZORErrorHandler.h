// SPDX-License-Identifier: Apache-2.0
#pragma once

// Turns any error into the short code by which a user can name it: the prefix of the error's domain, then what the
// domain's mapper makes of the error.
//
//     ZORErrorHandler::mappedErrorCodeFromError(NSError(NSURLErrorDomain, -1009));   // "UR4114"
//
// Registered from the start:
//
// | domain | prefix | mapper |
// |---|---|---|
// | `ZorXUNErrorDomain` | GEN | XUNErrorMapper |
// | `ZorWebSealErrorDomain` | WS | ZORWebSealErrorMapper |
// | `NSURLErrorDomain` | UR | ZORUrlDomainErrorMapper |
// | "com.alamofire.error.serialization.response" | UR | ZORUrlDomainErrorMapper |

#include <ZORFoundation/ErrorHandling/ErrorMapping.h>
#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ZORFoundation {

/// The process-wide registry of error mappers and the mapping itself. Thread-safe: mappers may be registered while
/// other threads map errors.
class ZORErrorHandler {
public:
    ZORErrorHandler() = delete;

    /// `errorMapping`
    ///
    /// The registry itself; what is changed in it counts for all later calls. Holds the four domains above from the
    /// first call on and is never destroyed.
    [[nodiscard]] ZOR_EXPORT static ErrorMapping& errorMapping();

    /// `registerErrorMapper:withPrefix:forErrorDomain:`
    ///
    /// Replaces the whole entry of the domain, one of the first four included. All arguments are required: an empty
    /// factory or `std::nullopt` stops the process with a message that names the operation. An empty text is taken.
    ///
    /// @param mapper          makes a mapper for each error
    /// @param withPrefix      what stands before the codes, two or three capital letters by custom
    /// @param forErrorDomain  compared exactly, unit by unit
    ZOR_EXPORT static void registerErrorMapper(ErrorMapperFactory mapper, std::optional<std::u16string_view> withPrefix,
                                               std::optional<std::u16string_view> forErrorDomain);

    /// `registerErrorMapper:withPrefix:forErrorDomain:` for a mapper type that is made without arguments. A mapper
    /// type of a module that can be unloaded is replaced or removed before that.
    template <std::derived_from<ZORErrorMapper> Mapper>
    requires std::default_initializable<Mapper>
    static void registerErrorMapper(std::optional<std::u16string_view> withPrefix,
                                    std::optional<std::u16string_view> forErrorDomain) {
        registerErrorMapper([]() -> std::unique_ptr<ZORErrorMapper> { return std::make_unique<Mapper>(); }, withPrefix,
                            forErrorDomain);
    }

    /// `isErrorDomainMappedForError:`
    ///
    /// Whether the registry holds an entry for the error's domain. A missing error has none.
    [[nodiscard]] ZOR_EXPORT static bool isErrorDomainMappedForError(const std::optional<NSError>& error);

    /// `mappedErrorCodeFromError:`
    ///
    /// Joins the domain's prefix and the code that a mapper, made for this call, gives.
    ///
    /// @return the short code; "(null)(null)" for a missing error and for one whose domain has no entry. Ask
    ///         `isErrorDomainMappedForError` first to avoid that
    [[nodiscard]] ZOR_EXPORT static std::u16string mappedErrorCodeFromError(const std::optional<NSError>& error);
};

}  // namespace ZORFoundation
