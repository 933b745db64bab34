// SPDX-License-Identifier: Apache-2.0
//
// Each macro brings in one call that must not compile.
#include <ZORFoundation/Encryption/ZORKeychain.h>

[[maybe_unused]] static void misuse(ZORFoundation::ZORKeychain& keychain) {
    keychain.set(u"text", u"key");
#ifdef NARROW_TEXT
    keychain.set("text", u"key");
#endif
#ifdef LONG_DOUBLE
    keychain.set(1.0L, u"key");
#endif
#ifdef NULL_POINTER
    keychain.set(nullptr, u"key");
#endif
#ifdef ANY_POINTER
    int number = 1;
    keychain.set(&number, u"key");
#endif
}
