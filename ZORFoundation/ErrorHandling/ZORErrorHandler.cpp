// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ZORErrorHandler.h>

#include <ZORFoundation/ErrorHandling/ErrorMappers/XUNErrorMapper.h>
#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORUrlDomainErrorMapper.h>
#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORWebSealErrorMapper.h>
#include <ZORFoundation/ErrorHandling/ZORError.h>

#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Foundation/Precondition.h>

namespace ZORFoundation {
namespace {

constexpr std::u16string_view kResponseSerialisationErrorDomain = u"com.alamofire.error.serialization.response";

template <class Mapper>
std::unique_ptr<ZORErrorMapper> make() {
    return std::make_unique<Mapper>();
}

ErrorMapping& mappingWithDefaults() {
    ErrorMapping& mapping = *new ErrorMapping;
    mapping.set(ZorXUNErrorDomain, {u"GEN", make<XUNErrorMapper>});
    mapping.set(ZorWebSealErrorDomain, {u"WS", make<ZORWebSealErrorMapper>});
    mapping.set(ZORPlatform::NSURLErrorDomain, {u"UR", make<ZORUrlDomainErrorMapper>});
    mapping.set(kResponseSerialisationErrorDomain, {u"UR", make<ZORUrlDomainErrorMapper>});
    return mapping;
}

std::u16string mappedCode(const ErrorMapperFactory& makeMapper, const NSError& error) {
    if (makeMapper) {
        if (const std::unique_ptr<ZORErrorMapper> mapper = makeMapper()) return mapper->mapErrorCodeFromError(error);
    }
    return std::u16string(ZORPlatform::kAbsentObjectText);
}

}  // namespace

ErrorMapping& ZORErrorHandler::errorMapping() {
    // Never destroyed: threads may still map errors while the process exits.
    static ErrorMapping& mapping = mappingWithDefaults();
    return mapping;
}

void ZORErrorHandler::registerErrorMapper(ErrorMapperFactory mapper, std::optional<std::u16string_view> withPrefix,
                                          std::optional<std::u16string_view> forErrorDomain) {
    if (!mapper) ZORPlatform::preconditionFailure("registerErrorMapper: the mapper is missing");
    if (!withPrefix) ZORPlatform::preconditionFailure("registerErrorMapper: the prefix is missing");
    if (!forErrorDomain) ZORPlatform::preconditionFailure("registerErrorMapper: the error domain is missing");
    errorMapping().set(*forErrorDomain, {std::u16string(*withPrefix), std::move(mapper)});
}

bool ZORErrorHandler::isErrorDomainMappedForError(const std::optional<NSError>& error) {
    return error && errorMapping().contains(error->domain());
}

std::u16string ZORErrorHandler::mappedErrorCodeFromError(const std::optional<NSError>& error) {
    std::optional<ErrorMapping::Entry> entry;
    if (error) entry = errorMapping().find(error->domain());
    if (!entry) return u"(null)(null)";
    std::u16string code = entry->prefix ? std::move(*entry->prefix) : std::u16string(ZORPlatform::kAbsentObjectText);
    return code += mappedCode(entry->mapper, *error);
}

}  // namespace ZORFoundation
