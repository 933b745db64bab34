// SPDX-License-Identifier: Apache-2.0

#include <ZORFoundation/Security/ZORSecurity.h>
#include <ZORFoundation/Text.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Security/SecItem.h>

#include <iostream>

using namespace ZORFoundation;
using ZORPlatform::HostEnvironment;
using Bytes = std::vector<std::uint8_t>;

// Two arguments: the folder that holds "phnios.pub64", and a file for the item store.
int main(int count, char** arguments) {
    if (count != 3) return 2;
    HostEnvironment::setLibraryResourceDirectory(arguments[1]);
    HostEnvironment::setItemStorePath(arguments[2]);
    std::optional<NSError> error;

    // The back end gets a fresh key, sealed so that only its private key opens it.
    const Bytes key = ZORSecurity::generateRandomKeyWithByteCount(16);
    const std::optional<SecKey> backEnd = ZORSecurity::zorPublicKey(&error);
    if (!backEnd) {
        std::cerr << (error ? utf8(error->localizedDescription().value_or(u"")) : "no RSA key in the file") << '\n';
        return 1;
    }
    const std::optional<Bytes> sealedKey = ZORSecurity::rsaEncrypt(key, *backEnd, &error);
    if (!sealedKey) return 1;
    std::cout << "sealed key: " << sealedKey->size() << " bytes\n";

    // The message travels behind its random vector.
    const Bytes message(25, 'm');
    constexpr bool kPrefixed = true;
    const auto sealed = ZORSecurity::encrypt_AES128_CBC_PKCS7(message, key, std::nullopt, kPrefixed, &error);
    if (!sealed) return 1;
    std::cout << "sealed message: " << sealed->size() << " bytes\n";

    // The application keeps the key, in place of an older one, under the attributes that the library looks for.
    ZORSecurity::removeFpKeyFromKeyChain();
    SecItemDictionary item = ZORSecurity::fpKeychainItem();
    item.set(ZORPlatform::kSecValueData, key);
    if (ZORPlatform::SecItemAdd(item) != ZORPlatform::errSecSuccess) return 1;

    const std::optional<Bytes> kept = ZORSecurity::fpKey_regular();
    const auto opened = ZORSecurity::decrypt_AES128_CBC_PKCS7(*sealed, kept.value_or(Bytes()), std::nullopt, &error);
    std::cout << "opened with the key kept: " << (opened == message ? "the same" : "another") << '\n';
    ZORSecurity::removeFpKeyFromKeyChain();
    std::cout << "key left: " << (ZORSecurity::fpKey_regular() ? "yes" : "no") << '\n';
}
