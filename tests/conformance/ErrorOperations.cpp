// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/ErrorHandling/Extensions/ErrorFormatting.h>
#include <ZORFoundation/ErrorHandling/ZORError.h>
#include <ZORFoundation/ErrorHandling/ZORErrorHandler.h>
#include <ZORFoundation/Security/CommonCryptoErrorDomain.h>
#include <ZORFoundation/ZORApplicationCode.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <array>
#include <optional>
#include <string_view>

namespace conformance {

using namespace ZORFoundation;

namespace {

constexpr std::array<std::u16string_view, 10> kApplicationCodeNames{
    u"alpha", u"bravo", u"charlie", u"delta", u"echo", u"foxtrot", u"golf", u"hotel", u"india", u"juliett"};

Value nameOf(std::optional<ZORApplicationCode> code) {
    if (!code) return std::nullopt;
    return kApplicationCodeNames[static_cast<std::size_t>(*code)];
}

ZORApplicationCode applicationCode(std::u16string_view name) {
    for (std::size_t ordinal = 0; ordinal < kApplicationCodeNames.size(); ++ordinal) {
        if (kApplicationCodeNames[ordinal] == name) return static_cast<ZORApplicationCode>(ordinal);
    }
    throw WrongKind("no case of ZORApplicationCode: " + ZORPlatform::utf8(name));
}

std::optional<TypeDescriptor> typeNamed(const Value& name) {
    if (name.isAbsent()) return std::nullopt;
    return TypeDescriptor(name.text());
}

}  // namespace

void registerErrorOperations(Operations& operations) {
    operations.add("ZORError.generalErrorWithMessage:",
                   [](const Arguments& a) { return ZORError::generalErrorWithMessage(a[0].optionalText()); });
    operations.add("ZORError.undefinedPropertyErrorWithMessage:",
                   [](const Arguments& a) { return ZORError::undefinedPropertyErrorWithMessage(a[0].optionalText()); });
    operations.add("ZORError.invalidTypeErrorWithType:expectedClass:", [](const Arguments& a) {
        return ZORError::invalidTypeErrorWithType(typeNamed(a[0]), typeNamed(a[1]));
    });
    operations.add("ZORError.errorWithErrorCode:",
                   [](const Arguments& a) { return ZORError::errorWithErrorCode(a[0].integer()); });
    operations.add("ZORError.errorWithErrorCode:userInfo:", [](const Arguments& a) {
        return ZORError::errorWithErrorCode(a[0].integer(), a[1].optionalUserInfo());
    });
    operations.add("ZORError.xunErrorWithErrorCode:",
                   [](const Arguments& a) { return ZORError::xunErrorWithErrorCode(a[0].integer()); });
    operations.add("ZORError.webSealErrorWithErrorCode:",
                   [](const Arguments& a) { return ZORError::webSealErrorWithErrorCode(a[0].optionalText()); });
    operations.add("ErrorFormatting.errorMessageWith:errorCode:", [](const Arguments& a) {
        return ErrorFormatting::errorMessageWith(a[0].optionalText(), a[1].optionalText());
    });
    operations.add("CommonCryptoErrorDomain.errorWithCCCryptorStatus:", [](const Arguments& a) {
        return CommonCryptoErrorDomain::errorWithCCCryptorStatus(a[0].integer<std::int32_t>());
    });
    operations.add("CommonCryptoErrorDomain.securityErrorWith:",
                   [](const Arguments& a) { return CommonCryptoErrorDomain::securityErrorWith(a[0].optionalText()); });
    operations.add("ZORApplicationCode.init(rawValue:)",
                   [](const Arguments& a) { return nameOf(fromRawValue<ZORApplicationCode>(a[0].text())); });
    operations.add("ZORApplicationCode.rawValue",
                   [](const Arguments& a) { return rawValue(applicationCode(a[0].text())); });
    operations.add("ZORErrorHandler.isErrorDomainMappedForError:", [](const Arguments& a) {
        return ZORErrorHandler::isErrorDomainMappedForError(a[0].optionalError());
    });
    operations.add("ZORErrorHandler.mappedErrorCodeFromError:",
                   [](const Arguments& a) { return ZORErrorHandler::mappedErrorCodeFromError(a[0].optionalError()); });
}

}  // namespace conformance
