// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/Security/ZORSecurity.h>

namespace conformance {

using ZORFoundation::ZORSecurity;

void registerSecurityOperations(Operations& operations) {
    using ErrorSlot = Operations::ErrorSlot;
    operations.add("ZORSecurity.generateRandomKeyWithByteCount:", [](const Arguments& a) {
        return ZORSecurity::generateRandomKeyWithByteCount(a[0].integer<std::int32_t>());
    });
    operations.add("ZORSecurity.generateRandomAlphaNumericStringWithLength:", [](const Arguments& a) {
        return ZORSecurity::generateRandomAlphaNumericStringWithLength(a[0].integer());
    });
    operations.add("ZORSecurity.encrypt_AES128_ECB_PKCS7:withKey:error:", [](const Arguments& a, ErrorSlot* error) {
        return ZORSecurity::encrypt_AES128_ECB_PKCS7(a[0].bytes(), a[1].bytes(), error);
    });
    operations.add("ZORSecurity.decrypt_AES128_ECB_PKCS7:withKey:error:", [](const Arguments& a, ErrorSlot* error) {
        return ZORSecurity::decrypt_AES128_ECB_PKCS7(a[0].bytes(), a[1].bytes(), error);
    });
    operations.add("ZORSecurity.encrypt_AES128_CBC_PKCS7:withKey:initVector:shouldPrefixResultWithInitVector:error:",
                   [](const Arguments& a, ErrorSlot* error) {
                       return ZORSecurity::encrypt_AES128_CBC_PKCS7(a[0].bytes(), a[1].bytes(), a[2].optionalBytes(),
                                                                    a[3].boolean(), error);
                   });
    operations.add(
        "ZORSecurity.decrypt_AES128_CBC_PKCS7:withKey:initVector:error:", [](const Arguments& a, ErrorSlot* error) {
            return ZORSecurity::decrypt_AES128_CBC_PKCS7(a[0].bytes(), a[1].bytes(), a[2].optionalBytes(), error);
        });
}

}  // namespace conformance
