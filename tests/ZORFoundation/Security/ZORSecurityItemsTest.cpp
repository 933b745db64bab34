// SPDX-License-Identifier: Apache-2.0
//
// The operations of the security service that keep something in the item store.
#include <ZORFoundation/Security/CommonCryptoErrorDomain.h>
#include <ZORFoundation/Security/ZORSecurity.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Wiping.h>
#include <ZORPlatform/Security/SecItem.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <gtest/gtest.h>

#include <support/Certificates.h>
#include <support/OpensslCommand.h>
#include <support/Secret.h>
#include <support/TemporaryDirectory.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;
using ErrorSlot = std::optional<NSError>;
using CommonCryptoErrorDomain::securityErrorWith;
using support::PrivateKey;
using ZORPlatform::errSecSuccess;
using ZORPlatform::HostEnvironment;
using ZORPlatform::SecItemResult;

const std::filesystem::path kKeys = ZOR_TEST_KEYS;
const Bytes kFpKey(16, 0x5A);
const ErrorSlot kOldError = securityErrorWith(u"of an earlier call");

// With an item store of its own.
class ZORSecurityItems : public testing::Test {
protected:
    ZORSecurityItems() { HostEnvironment::setItemStorePath(directory_ / "items.sqlite"); }
    ~ZORSecurityItems() override {
        HostEnvironment::setItemStorePath(std::nullopt);
        HostEnvironment::setLibraryResourceDirectory(std::nullopt);
        ZORPlatform::SecItemStore::close();
    }

    // A store that cannot be made.
    void breakStore() {
        const auto file = directory_.write("file", "");
        HostEnvironment::setItemStorePath(file / "items.sqlite");
    }

    support::TemporaryDirectory directory_;
};

ZORPlatform::OSStatus add(SecItemDictionary item, const Bytes& value) {
    item.set(u"v_Data", value);
    return ZORPlatform::SecItemAdd(item);
}

TEST_F(ZORSecurityItems, TheFpItemOfThePhoneIsASymmetricKeyOf128Bits) {
    const SecItemDictionary expected{
        {u"class", u"keys"}, {u"kcls", u"2"}, {u"bsiz", 128}, {u"klbl", u"fpKey"}, {u"pdmn", u"aku"}};
    EXPECT_EQ(ZORSecurity::fpKeychainItem(), expected);
}

TEST_F(ZORSecurityItems, TheFpItemOfTheWatchDiffersInAccessibilityOnly) {
    SecItemDictionary expected = ZORSecurity::fpKeychainItem();
    expected.set(u"pdmn", u"cku");
    EXPECT_EQ(ZORSecurity::fpKeychainItemWatch(), expected);
}

TEST_F(ZORSecurityItems, FpQueriesAskForOneItemWithAttributesAndData) {
    for (const auto& [item, query] :
         {std::pair(ZORSecurity::fpKeychainItem(), ZORSecurity::fpKeychainQuery()),
          std::pair(ZORSecurity::fpKeychainItemWatch(), ZORSecurity::fpKeychainQueryWatch())}) {
        SecItemDictionary expected = item;
        expected.set(u"m_Limit", u"m_LimitOne");
        expected.set(u"r_Attributes", true);
        expected.set(u"r_Data", true);
        EXPECT_EQ(query, expected);
    }
}

TEST_F(ZORSecurityItems, WithoutAnItemThereIsNoFpKey) {
    EXPECT_EQ(ZORSecurity::fpKey_regular(), std::nullopt);
    EXPECT_EQ(ZORSecurity::fpKey_watch(), std::nullopt);
}

TEST_F(ZORSecurityItems, EachVariantReadsItsOwnItemOnly) {
    ASSERT_EQ(add(ZORSecurity::fpKeychainItem(), kFpKey), errSecSuccess);
    EXPECT_EQ(ZORSecurity::fpKey_regular(), kFpKey);
    EXPECT_EQ(ZORSecurity::fpKey_watch(), std::nullopt);
    ZORSecurity::removeFpKeyFromKeyChain();
    ASSERT_EQ(add(ZORSecurity::fpKeychainItemWatch(), kFpKey), errSecSuccess);
    EXPECT_EQ(ZORSecurity::fpKey_regular(), std::nullopt);
    EXPECT_EQ(ZORSecurity::fpKey_watch(), kFpKey);
}

TEST_F(ZORSecurityItems, EachVariantRemovesItsOwnItemOnly) {
    ASSERT_EQ(add(ZORSecurity::fpKeychainItem(), kFpKey), errSecSuccess);
    ZORSecurity::removeFpKeyFromKeyChainWatch();
    EXPECT_EQ(ZORSecurity::fpKey_regular(), kFpKey);
    ZORSecurity::removeFpKeyFromKeyChain();
    EXPECT_EQ(ZORSecurity::fpKey_regular(), std::nullopt);
    ZORSecurity::removeFpKeyFromKeyChain();
    EXPECT_EQ(ZORSecurity::fpKey_regular(), std::nullopt) << "removing what is not there is no failure";
}

TEST_F(ZORSecurityItems, AStoreHoldsOneOfTheTwoVariantsAtATime) {
    ASSERT_EQ(add(ZORSecurity::fpKeychainItem(), kFpKey), errSecSuccess);
    EXPECT_EQ(add(ZORSecurity::fpKeychainItemWatch(), kFpKey), ZORPlatform::errSecDuplicateItem);
}

TEST_F(ZORSecurityItems, ReadingTheFpKeyLeavesNoOtherCopyOfIt) {
    const support::Secret secret(16);
    Bytes key(secret.size());
    secret.write(key.data());
    ASSERT_EQ(add(ZORSecurity::fpKeychainItem(), key), errSecSuccess);
    ZORPlatform::wipe(key.data(), key.size());
    EXPECT_EQ(secret.copies(), 0U);
    std::optional<Bytes> found = ZORSecurity::fpKey_regular();
    EXPECT_EQ(secret.copies(), 1U) << "the result";
    ZORPlatform::wipe(found.value().data(), found->size());
    EXPECT_EQ(secret.copies(), 0U);
}

TEST_F(ZORSecurityItems, AStoreThatCannotBeReadHoldsNoFpKey) {
    breakStore();
    EXPECT_EQ(ZORSecurity::fpKey_regular(), std::nullopt);
    ZORSecurity::removeFpKeyFromKeyChain();
}

std::optional<Bytes> publicKeyIn(const std::optional<SecKey>& key) {
    return key ? ZORPlatform::SecKeyCopyExternalRepresentation(*key) : std::nullopt;
}

// The Base64 form in lines, as the openssl command writes it.
std::string base64(const Bytes& bytes) {
    std::string armoured = support::pemOf(bytes);
    armoured.erase(0, armoured.find('\n') + 1);
    return armoured.substr(0, armoured.find('-'));
}

TEST_F(ZORSecurityItems, WhatTheResourceKeyEncryptsItsPrivateHalfDecrypts) {
    HostEnvironment::setLibraryResourceDirectory(kKeys);
    ErrorSlot error = kOldError;
    const std::optional<SecKey> key = ZORSecurity::zorPublicKey(&error);
    ASSERT_TRUE(key);
    EXPECT_FALSE(error);
    const Bytes plain = ZORSecurity::generateRandomKeyWithByteCount(116);
    const std::optional<Bytes> sealed = ZORSecurity::rsaEncrypt(plain, *key, &error);
    EXPECT_EQ(support::decryptedByCommand(kKeys / "phnios.private.pem", sealed.value()), plain);
}

TEST_F(ZORSecurityItems, AMissingResourceKeySaysSo) {
    HostEnvironment::setLibraryResourceDirectory(directory_.path());
    ErrorSlot error;
    EXPECT_FALSE(ZORSecurity::zorPublicKey(&error));
    EXPECT_EQ(error, securityErrorWith(u"Cannot find input file"));
}

TEST_F(ZORSecurityItems, AResourceKeyThatIsNoFileCannotBeRead) {
    HostEnvironment::setLibraryResourceDirectory(directory_.path());
    std::filesystem::create_directory(directory_ / "phnios.pub64");
    ErrorSlot error;
    EXPECT_FALSE(ZORSecurity::zorPublicKey(&error));
    EXPECT_EQ(error, securityErrorWith(u"Cannot read from PEM file"));
}

TEST_F(ZORSecurityItems, AKeyFileThatCannotBeReadSaysSo) {
    for (const std::filesystem::path& path :
         {directory_ / "missing", directory_.path(), directory_.write("latin", "caf\xE9")}) {
        ErrorSlot error;
        EXPECT_FALSE(ZORSecurity::getPublicKeyFromPEMFileAtPath(path, u"peer", &error));
        EXPECT_EQ(error, securityErrorWith(u"Cannot read from PEM file")) << path;
    }
}

TEST_F(ZORSecurityItems, AKeyFileOfOtherContentGivesNoKeyAndNoError) {
    const PrivateKey key = PrivateKey::rsa(512);
    for (const std::string& text :
         {std::string(), std::string("no key"), base64(key.publicKey()), "A" + base64(key.publicKeyInfo()),
          "=" + base64(key.publicKeyInfo()), "\xEF\xBB\xBF" + base64(key.publicKeyInfo()),
          support::pemOf(key.publicKeyInfo()), base64(PrivateKey::ellipticCurve().publicKeyInfo())}) {
        ErrorSlot error = kOldError;
        const auto path = directory_.write("file", text);
        EXPECT_FALSE(ZORSecurity::getPublicKeyFromPEMFileAtPath(path, u"peer", &error)) << text;
        EXPECT_FALSE(error) << text;
    }
}

SecItemDictionary itemOfPeer(const Bytes& tag) {
    SecItemResult result;
    EXPECT_EQ(ZORPlatform::SecItemCopyMatching(
                  {{u"class", u"keys"}, {u"type", u"42"}, {u"atag", tag}, {u"r_Attributes", true}, {u"r_Data", true}},
                  &result),
              errSecSuccess);
    return *result.as<SecItemDictionary>();
}

TEST_F(ZORSecurityItems, ALoadedKeyIsKeptUnderThePeersName) {
    const PrivateKey key = PrivateKey::rsa(1024);
    const auto path = directory_.write("key", base64(key.publicKeyInfo()));
    EXPECT_EQ(publicKeyIn(ZORSecurity::getPublicKeyFromPEMFileAtPath(path, u"back end")), key.publicKey());
    const SecItemDictionary item = itemOfPeer(support::bytesOf("back end"));
    EXPECT_EQ(*item.find<Bytes>(u"v_Data"), key.publicKey());
    EXPECT_EQ(*item.find<std::u16string>(u"pdmn"), u"aku");
}

TEST_F(ZORSecurityItems, AKeyLoadedAgainTakesThePlaceOfItsPeersOnly) {
    const PrivateKey first = PrivateKey::rsa(512);
    const PrivateKey second = PrivateKey::rsa(512);
    const auto firstFile = directory_.write("first", base64(first.publicKeyInfo()));
    const auto secondFile = directory_.write("second", base64(second.publicKeyInfo()));
    for (const auto& peer : {u"one", u"two"}) {
        EXPECT_EQ(publicKeyIn(ZORSecurity::getPublicKeyFromPEMFileAtPath(firstFile, peer)), first.publicKey());
    }
    EXPECT_EQ(publicKeyIn(ZORSecurity::getPublicKeyFromPEMFileAtPath(secondFile, u"one")), second.publicKey());
    EXPECT_EQ(*itemOfPeer(support::bytesOf("one")).find<Bytes>(u"v_Data"), second.publicKey());
    EXPECT_EQ(*itemOfPeer(support::bytesOf("two")).find<Bytes>(u"v_Data"), first.publicKey());
}

TEST_F(ZORSecurityItems, OfAPeersNameAsManyBytesCountAsItHasUnits) {
    const PrivateKey key = PrivateKey::rsa(512);
    const auto path = directory_.write("key", base64(key.publicKeyInfo()));
    ASSERT_TRUE(ZORSecurity::getPublicKeyFromPEMFileAtPath(path, u"caf\u00E9"));
    EXPECT_EQ(*itemOfPeer(support::bytesOf("caf\xC3")).find<Bytes>(u"v_Data"), key.publicKey());
    ASSERT_TRUE(ZORSecurity::getPublicKeyFromPEMFileAtPath(path, u""));
    EXPECT_TRUE(itemOfPeer({}).find(u"v_Data"));
}

// A header that leads to something which is no key.
std::string fileOfGarbageKey() {
    Bytes info = {0x30, 0x00, 0x30};
    info.resize(17);
    info.insert(info.end(), {0x03, 0x00, 0x00, 0xDE, 0xAD});
    return base64(info);
}

TEST_F(ZORSecurityItems, BytesThatAreNoKeyAreTakenButNotFoundAsOne) {
    ErrorSlot error;
    const auto path = directory_.write("key", fileOfGarbageKey());
    EXPECT_FALSE(ZORSecurity::getPublicKeyFromPEMFileAtPath(path, u"peer", &error));
    EXPECT_EQ(error, securityErrorWith(u"Error retrieving public key reference from chain"));
    EXPECT_EQ(*itemOfPeer(support::bytesOf("peer")).find<Bytes>(u"v_Data"), (Bytes{0xDE, 0xAD}));
}

TEST_F(ZORSecurityItems, AStoreThatTakesNoKeySaysSo) {
    breakStore();
    HostEnvironment::setLibraryResourceDirectory(kKeys);
    ErrorSlot error;
    EXPECT_FALSE(ZORSecurity::zorPublicKey(&error));
    EXPECT_EQ(error, securityErrorWith(u"Problem adding public key to keychain"));
}

}  // namespace
}  // namespace ZORFoundation
