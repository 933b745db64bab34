// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Encryption/ZORKeychain.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSCoding.h>
#include <ZORPlatform/Foundation/NSKeyedArchiver.h>
#include <ZORPlatform/Security/SecItem.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <gtest/gtest.h>

#include <support/TemporaryDirectory.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

using enum KeychainItemAccessibility;
using Bytes = ZORKeychain::Bytes;
using support::bytesOf;
using namespace ZORPlatform;

class ZORKeychainTest : public testing::Test {
protected:
    ZORKeychainTest() { HostEnvironment::setItemStorePath(directory_ / "store" / "items.sqlite"); }
    ~ZORKeychainTest() override {
        HostEnvironment::setItemStorePath(std::nullopt);
        SecItemStore::close();
    }

    [[nodiscard]] const support::TemporaryDirectory& directory() const { return directory_; }
    /// The attributes that the item store holds for the only item of a service.
    static SecItemDictionary attributesOf(std::u16string_view service) {
        SecItemResult result;
        EXPECT_EQ(SecItemCopyMatching(
                      {{kSecClass, kSecClassGenericPassword}, {kSecAttrService, service}, {kSecReturnAttributes, true}},
                      &result),
                  errSecSuccess);
        return result.isEmpty() ? SecItemDictionary() : *result.as<SecItemDictionary>();
    }

    ZORKeychain keychain{u"be.example.bank"};

private:
    support::TemporaryDirectory directory_;
};

TEST_F(ZORKeychainTest, FieldsAreThoseGiven) {
    EXPECT_EQ(keychain.serviceName(), u"be.example.bank");
    EXPECT_EQ(keychain.accessGroup(), std::nullopt);
    EXPECT_EQ(ZORKeychain(u"service", u"group").accessGroup(), u"group");
}

TEST_F(ZORKeychainTest, BytesComeBackUnchanged) {
    for (const Bytes& value : {Bytes{}, Bytes{0}, Bytes{0, 255, 128}, Bytes(100'000, 7)}) {
        EXPECT_TRUE(keychain.set(value, u"key"));
        EXPECT_EQ(keychain.data(u"key"), value);
    }
}

TEST_F(ZORKeychainTest, ATextIsStoredAsUtf8) {
    EXPECT_TRUE(keychain.set(u"caf\u00E9 \U0001F600", u"key"));
    EXPECT_EQ(keychain.data(u"key"), bytesOf("caf\xC3\xA9 \xF0\x9F\x98\x80"));
    EXPECT_EQ(keychain.string(u"key"), u"caf\u00E9 \U0001F600");
    EXPECT_TRUE(keychain.set(std::u16string(), u"key"));
    EXPECT_EQ(keychain.string(u"key"), u"");
    EXPECT_TRUE(keychain.set(std::u16string_view(u"view"), u"key"));
    EXPECT_EQ(keychain.string(u"key"), u"view");
}

TEST_F(ZORKeychainTest, ATextThatHasNoUtf8IsNotStored) {
    EXPECT_FALSE(keychain.set(std::u16string(1, u'\xD800'), u"key"));
    EXPECT_FALSE(keychain.hasValue(u"key"));
}

TEST_F(ZORKeychainTest, BytesThatAreNoUtf8AreNoText) {
    EXPECT_TRUE(keychain.set(Bytes{0xFF, 0xFE}, u"key"));
    EXPECT_EQ(keychain.string(u"key"), std::nullopt);
    EXPECT_EQ(keychain.stringValue(u"key"), u"");
}

TEST_F(ZORKeychainTest, NumbersComeBack) {
    for (const std::int64_t value :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{4294967296}, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_TRUE(keychain.set(value, u"integer"));
        EXPECT_EQ(keychain.integer(u"integer"), value);
    }
    for (const float value : {0.0F, -2.5F, std::numeric_limits<float>::max()}) {
        EXPECT_TRUE(keychain.set(value, u"float"));
        EXPECT_EQ(keychain.float_(u"float"), value);
    }
    for (const double value : {0.1, -1e300, std::numeric_limits<double>::infinity()}) {
        EXPECT_TRUE(keychain.set(value, u"double"));
        EXPECT_EQ(keychain.double_(u"double"), value);
    }
    for (const bool value : {true, false}) {
        EXPECT_TRUE(keychain.set(value, u"bool"));
        EXPECT_EQ(keychain.bool_(u"bool"), value);
    }
}

TEST_F(ZORKeychainTest, EachTypeIsArchivedAsItsOwnKindOfNumber) {
    const auto archived = [](const NSNumber& number) { return *NSKeyedArchiver::archivedDataWithRootObject(number); };
    EXPECT_TRUE(keychain.set(1, u"key"));
    EXPECT_EQ(keychain.data(u"key"), archived(NSNumber(1)));
    EXPECT_TRUE(keychain.set(std::uint8_t{1}, u"key"));
    EXPECT_EQ(keychain.data(u"key"), archived(NSNumber(1)));
    EXPECT_TRUE(keychain.set(true, u"key"));
    EXPECT_EQ(keychain.data(u"key"), archived(NSNumber(true)));
    EXPECT_TRUE(keychain.set(1.0F, u"key"));
    EXPECT_EQ(keychain.data(u"key"), archived(NSNumber(1.0F)));
    EXPECT_TRUE(keychain.set(1.0, u"key"));
    EXPECT_EQ(keychain.data(u"key"), archived(NSNumber(1.0)));
}

TEST_F(ZORKeychainTest, ANumberIsReadAsWhateverIsAskedFor) {
    EXPECT_TRUE(keychain.set(2.75, u"key"));
    EXPECT_EQ(keychain.integer(u"key"), 2);
    EXPECT_EQ(keychain.float_(u"key"), 2.75F);
    EXPECT_EQ(keychain.bool_(u"key"), true);
    EXPECT_TRUE(keychain.set(true, u"key"));
    EXPECT_EQ(keychain.double_(u"key"), 1.0);
    EXPECT_EQ(keychain.integerValue(u"key"), 1);
}

using ZORKeychainDeathTest = ZORKeychainTest;

TEST_F(ZORKeychainDeathTest, AnIntegerThatNoPhoneCanReadStopsTheProcess) {
    EXPECT_DEATH(static_cast<void>(keychain.set(std::numeric_limits<std::uint64_t>::max(), u"key")),
                 "an integer is at most 2\\^63-1");
}

TEST_F(ZORKeychainTest, ArchivableValuesComeBack) {
    const ArchivedValue value = ArchivedValue::Dictionary{{u"numbers", ArchivedValue::Array{1, 2.5, true}},
                                                          {u"date", NSDate::sinceReferenceDate(5)},
                                                          {u"null", NSNull()}};
    EXPECT_TRUE(keychain.set(value, u"key"));
    EXPECT_EQ(keychain.object(u"key"), value);
    EXPECT_TRUE(keychain.set(NSDate::sinceReferenceDate(7), u"key"));
    EXPECT_EQ(keychain.object(u"key"), ArchivedValue(NSDate::sinceReferenceDate(7)));
    EXPECT_EQ(keychain.integer(u"key"), std::nullopt) << "a date is no number";
    EXPECT_TRUE(keychain.set(ArchivedValue(u"text"), u"key"));
    EXPECT_EQ(keychain.object(u"key"), ArchivedValue(u"text"));
}

class Account : public NSCoding {
public:
    explicit Account(std::u16string name) : name_(std::move(name)) {}
    explicit Account(const KeyedDecoder& decoder) : name_(*decoder.decode(u"name")->as<std::u16string>()) {}
    void encodeWithCoder(KeyedEncoder& encoder) const override { encoder.encode(u"name", name_); }
    [[nodiscard]] const std::u16string& name() const { return name_; }

private:
    std::u16string name_;
};

TEST_F(ZORKeychainTest, ObjectsOfRegisteredClassesComeBack) {
    {
        const NSCodingRegistration<Account> registration(u"Account");
        EXPECT_TRUE(keychain.set(std::make_shared<Account>(u"savings"), u"key"));
        const std::optional<ArchivedValue> object = keychain.object(u"key");
        ASSERT_TRUE(object && object->as<ArchivedValue::Object>() != nullptr);
        const auto account = std::dynamic_pointer_cast<Account>(*object->as<ArchivedValue::Object>());
        ASSERT_NE(account, nullptr);
        EXPECT_EQ(account->name(), u"savings");
    }
    EXPECT_EQ(keychain.object(u"key"), std::nullopt) << "a class that is not known any more";
    EXPECT_FALSE(keychain.set(std::make_shared<Account>(u"savings"), u"other"));
}

TEST_F(ZORKeychainTest, ForeignBytesAreNoObjectAndNoNumber) {
    for (const Bytes& bytes : {Bytes{}, bytesOf("bplist00"), bytesOf("text"), Bytes(1000, 0xFF)}) {
        EXPECT_TRUE(keychain.set(bytes, u"key"));
        EXPECT_EQ(keychain.object(u"key"), std::nullopt);
        EXPECT_EQ(keychain.integer(u"key"), std::nullopt);
        EXPECT_EQ(keychain.float_(u"key"), std::nullopt);
        EXPECT_EQ(keychain.double_(u"key"), std::nullopt);
        EXPECT_EQ(keychain.bool_(u"key"), std::nullopt);
        EXPECT_TRUE(keychain.hasValue(u"key"));
    }
}

TEST_F(ZORKeychainTest, AMissingKeyHasDefaultValues) {
    EXPECT_EQ(keychain.data(u"none"), std::nullopt);
    EXPECT_EQ(keychain.dataRef(u"none"), std::nullopt);
    EXPECT_EQ(keychain.string(u"none"), std::nullopt);
    EXPECT_EQ(keychain.object(u"none"), std::nullopt);
    EXPECT_EQ(keychain.accessibilityOfKey(u"none"), std::nullopt);
    EXPECT_FALSE(keychain.hasValue(u"none"));
    EXPECT_FALSE(keychain.boolValue(u"none"));
    EXPECT_EQ(keychain.integerValue(u"none"), 0);
    EXPECT_EQ(keychain.stringValue(u"none"), u"");
    EXPECT_FALSE(keychain.removeObject(u"none"));
    EXPECT_FALSE(keychain.remove(u"none"));
    EXPECT_FALSE(keychain.removeAllKeys());
}

TEST_F(ZORKeychainTest, AKeyIsStoredAsUtf8InAccountAndGenericValue) {
    EXPECT_TRUE(keychain.set(1, u"cl\u00E9"));
    const SecItemDictionary attributes = attributesOf(u"be.example.bank");
    EXPECT_EQ(*attributes.find(kSecAttrAccount), SecItemValue(bytesOf("cl\xC3\xA9")));
    EXPECT_EQ(*attributes.find(kSecAttrGeneric), SecItemValue(bytesOf("cl\xC3\xA9")));
    EXPECT_EQ(*attributes.find(kSecAttrAccessGroup), SecItemValue(u""));
}

TEST_F(ZORKeychainTest, AKeyThatHasNoUtf8IsStoredWithoutAccount) {
    const std::u16string key(1, u'\xDC00');
    EXPECT_TRUE(keychain.set(1, key));
    EXPECT_EQ(keychain.integer(key), 1);
    EXPECT_EQ(attributesOf(u"be.example.bank").find(kSecAttrAccount), nullptr);
    EXPECT_EQ(keychain.integer(u""), std::nullopt) << "the empty key has a generic value";
}

TEST_F(ZORKeychainTest, AnItemOfTheApplicationsWithAnotherGenericValueIsNotTheKeys) {
    EXPECT_EQ(SecItemAdd({{kSecClass, kSecClassGenericPassword},
                          {kSecAttrService, u"be.example.bank"},
                          {kSecAttrAccount, bytesOf("key")},
                          {kSecValueData, Bytes{1}}}),
              errSecSuccess);
    EXPECT_FALSE(keychain.hasValue(u"key"));
    EXPECT_FALSE(keychain.set(Bytes{2}, u"key")) << "the add is a duplicate, the update finds nothing";
}

TEST_F(ZORKeychainTest, ServicesAreApart) {
    ZORKeychain other(u"be.example.shop");
    EXPECT_TRUE(keychain.set(1, u"key"));
    EXPECT_TRUE(other.set(2, u"key"));
    EXPECT_EQ(keychain.integer(u"key"), 1);
    EXPECT_TRUE(other.removeAllKeys());
    EXPECT_EQ(other.integer(u"key"), std::nullopt);
    EXPECT_EQ(keychain.integer(u"key"), 1);
}

TEST_F(ZORKeychainTest, AccessGroupsAreApartExceptForAStoreWithout) {
    ZORKeychain grouped(u"be.example.bank", u"group");
    ZORKeychain other(u"be.example.bank", u"other");
    EXPECT_TRUE(grouped.set(1, u"key"));
    EXPECT_EQ(attributesOf(u"be.example.bank").find<std::u16string>(kSecAttrAccessGroup)->compare(u"group"), 0);
    EXPECT_FALSE(other.hasValue(u"key"));
    EXPECT_EQ(keychain.integer(u"key"), 1) << "all groups are searched";
    EXPECT_FALSE(other.removeAllKeys());
    EXPECT_TRUE(keychain.removeAllKeys());
    EXPECT_FALSE(grouped.hasValue(u"key"));
}

TEST_F(ZORKeychainTest, ANewValueIsReadableWhenUnlockedUnlessSaidOtherwise) {
    EXPECT_TRUE(keychain.set(1, u"first"));
    EXPECT_EQ(keychain.accessibilityOfKey(u"first"), whenUnlocked);
    EXPECT_TRUE(keychain.set(1, u"second", always));
    EXPECT_EQ(keychain.accessibilityOfKey(u"second"), always);
}

TEST_F(ZORKeychainTest, EveryAccessibilityIsKept) {
    for (const KeychainItemAccessibility accessibility :
         {afterFirstUnlock, afterFirstUnlockThisDeviceOnly, always, whenPasscodeSetThisDeviceOnly, alwaysThisDeviceOnly,
          whenUnlocked, whenUnlockedThisDeviceOnly}) {
        static_cast<void>(keychain.remove(u"key"));
        EXPECT_TRUE(keychain.set(1, u"key", accessibility));
        EXPECT_EQ(keychain.accessibilityOfKey(u"key"), accessibility);
        EXPECT_TRUE(keychain.hasValue(u"key", accessibility));
    }
}

TEST_F(ZORKeychainTest, ASetWithoutAccessibilityUpdatesWhateverIsThereAndKeepsIt) {
    EXPECT_TRUE(keychain.set(1, u"key", always));
    EXPECT_TRUE(keychain.set(2, u"key"));
    EXPECT_EQ(keychain.integer(u"key"), 2);
    EXPECT_EQ(keychain.accessibilityOfKey(u"key"), always);
}

TEST_F(ZORKeychainTest, ASetWithAnotherAccessibilityFailsAndChangesNothing) {
    EXPECT_TRUE(keychain.set(1, u"key", always));
    EXPECT_FALSE(keychain.set(2, u"key", whenUnlocked));
    EXPECT_EQ(keychain.integer(u"key"), 1);
    EXPECT_TRUE(keychain.set(3, u"key", always));
    EXPECT_EQ(keychain.integer(u"key"), 3);
}

TEST_F(ZORKeychainTest, AnAccessibilityGivenToReadOrRemoveHasToBeTheStoredOne) {
    EXPECT_TRUE(keychain.set(u"x", u"key", always));
    EXPECT_EQ(keychain.string(u"key", always), u"x");
    EXPECT_EQ(keychain.string(u"key", whenUnlocked), std::nullopt);
    EXPECT_EQ(keychain.stringValue(u"key", whenUnlocked), u"");
    EXPECT_EQ(keychain.dataRef(u"key", whenUnlocked), std::nullopt);
    EXPECT_FALSE(keychain.remove(u"key", whenUnlocked));
    EXPECT_TRUE(keychain.remove(u"key", always));
}

TEST_F(ZORKeychainTest, AReferenceLeadsToTheItem) {
    EXPECT_TRUE(keychain.set(Bytes{1, 2}, u"key"));
    const std::optional<Bytes> reference = keychain.dataRef(u"key");
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->size(), 12U);
    SecItemResult result;
    EXPECT_EQ(SecItemCopyMatching({{kSecValuePersistentRef, *reference}, {kSecReturnData, true}}, &result),
              errSecSuccess);
    EXPECT_EQ(result, SecItemResult(Bytes{1, 2}));
}

TEST_F(ZORKeychainTest, RemovingAllKeysTakesThoseOfTheService) {
    EXPECT_TRUE(keychain.set(1, u"first"));
    EXPECT_TRUE(keychain.set(2, u"second", always));
    EXPECT_TRUE(keychain.removeAllKeys());
    EXPECT_FALSE(keychain.hasValue(u"first"));
    EXPECT_FALSE(keychain.hasValue(u"second"));
    EXPECT_FALSE(keychain.removeAllKeys());
}

TEST_F(ZORKeychainTest, WipingTakesItemsOfAllClassesNotOnlyOurs) {
    EXPECT_TRUE(keychain.set(1, u"key"));
    const auto classes = {kSecClassGenericPassword, kSecClassInternetPassword, kSecClassCertificate, kSecClassKey,
                          kSecClassIdentity};
    for (const std::u16string_view itemClass : classes) {
        EXPECT_EQ(SecItemAdd({{kSecClass, itemClass}, {kSecAttrLabel, u"mine"}}), errSecSuccess);
    }
    ZORKeychain::wipeKeychain();
    for (const std::u16string_view itemClass : classes) {
        EXPECT_EQ(SecItemCopyMatching({{kSecClass, itemClass}}), errSecItemNotFound);
    }
}

TEST_F(ZORKeychainTest, AStoreThatCannotBeOpenedIsFalseAndAbsent) {
    HostEnvironment::setItemStorePath("/proc/nowhere/items.sqlite");
    EXPECT_FALSE(keychain.set(1, u"key"));
    EXPECT_FALSE(keychain.hasValue(u"key"));
    EXPECT_EQ(keychain.accessibilityOfKey(u"key"), std::nullopt);
    EXPECT_FALSE(keychain.removeObject(u"key"));
    EXPECT_FALSE(keychain.removeAllKeys());
    ZORKeychain::wipeKeychain();
}

TEST_F(ZORKeychainTest, OperationsCallEachOtherThroughTheObjectsClass) {
    class Logging : public ZORKeychain {
    public:
        Logging() : ZORKeychain(u"logging") {}
        mutable std::vector<std::string> log;

        [[nodiscard]] std::optional<Bytes> data(std::u16string_view, Accessibility) const override {
            log.emplace_back("data");
            return std::nullopt;
        }
        [[nodiscard]] std::optional<ArchivedValue> object(std::u16string_view key, Accessibility a) const override {
            log.emplace_back("object");
            return ZORKeychain::object(key, a);
        }
        [[nodiscard]] std::optional<std::int64_t> integer(std::u16string_view key, Accessibility a) const override {
            log.emplace_back("integer");
            return ZORKeychain::integer(key, a);
        }
        [[nodiscard]] std::optional<bool> bool_(std::u16string_view key, Accessibility a) const override {
            log.emplace_back("bool");
            return ZORKeychain::bool_(key, a);
        }
        [[nodiscard]] std::optional<std::u16string> string(std::u16string_view key, Accessibility a) const override {
            log.emplace_back("string");
            return ZORKeychain::string(key, a);
        }
        bool removeObject(std::u16string_view, Accessibility) override {
            log.emplace_back("removeObject");
            return true;
        }

    protected:
        [[nodiscard]] bool setInteger(std::int64_t value, std::u16string_view key, Accessibility a) override {
            log.emplace_back("setInteger");
            return ZORKeychain::setInteger(value, key, a);
        }
        [[nodiscard]] bool setObject(const ArchivedValue& value, std::u16string_view key, Accessibility a) override {
            log.emplace_back("setObject");
            return ZORKeychain::setObject(value, key, a);
        }
        [[nodiscard]] bool setString(std::u16string_view value, std::u16string_view key, Accessibility a) override {
            log.emplace_back("setString");
            return ZORKeychain::setString(value, key, a);
        }
        [[nodiscard]] bool setData(std::span<const std::uint8_t>, std::u16string_view, Accessibility) override {
            log.emplace_back("setData");
            return true;
        }
    };
    Logging logging;
    ZORKeychain& base = logging;
    const auto logged = [&logging] { return std::exchange(logging.log, {}); };
    using Log = std::vector<std::string>;

    EXPECT_FALSE(base.hasValue(u"key"));
    EXPECT_EQ(logged(), (Log{"data"}));
    EXPECT_EQ(base.integerValue(u"key"), 0);
    EXPECT_EQ(logged(), (Log{"integer", "object", "data"}));
    EXPECT_FALSE(base.boolValue(u"key"));
    EXPECT_EQ(logged(), (Log{"bool", "object", "data"}));
    EXPECT_EQ(base.float_(u"key"), std::nullopt);
    EXPECT_EQ(logged(), (Log{"object", "data"}));
    EXPECT_EQ(base.stringValue(u"key"), u"");
    EXPECT_EQ(logged(), (Log{"string", "data"}));
    EXPECT_TRUE(base.remove(u"key"));
    EXPECT_EQ(logged(), (Log{"removeObject"}));
    EXPECT_TRUE(base.set(1, u"key"));
    EXPECT_EQ(logged(), (Log{"setInteger", "setData"})) << "a number is read as an object, but not written as one";
    EXPECT_TRUE(base.set(1.0F, u"key"));
    EXPECT_EQ(logged(), (Log{"setData"}));
    EXPECT_TRUE(base.set(NSDate::sinceReferenceDate(7), u"key"));
    EXPECT_EQ(logged(), (Log{"setObject", "setData"}));
    EXPECT_TRUE(base.set(u"text", u"key"));
    EXPECT_EQ(logged(), (Log{"setString", "setData"}));
    EXPECT_TRUE(base.set(Bytes{1}, u"key"));
    EXPECT_EQ(logged(), (Log{"setData"}));
}

// The shared instances are made once a process, so each of these runs in a process of its own.
using ZORKeychainSharedDeathTest = ZORKeychainTest;

TEST_F(ZORKeychainSharedDeathTest, WithoutABundleThePrivateStoreStopsTheProcess) {
    const char* message =
        "No bundle/bundleIdentifier. Configure bundle via setup method before using the private keychain";
    EXPECT_DEATH(static_cast<void>(ZORKeychain::private_()), message);
    EXPECT_DEATH(static_cast<void>(ZORKeychain::standard()), message);
    EXPECT_DEATH(
        {
            ZORKeychain::setup(NSBundle(std::nullopt, {}));
            static_cast<void>(ZORKeychain::private_());
        },
        message);
}

TEST_F(ZORKeychainSharedDeathTest, TheFirstBundleCountsEvenWhenItHasNoIdentifier) {
    EXPECT_DEATH(
        {
            ZORKeychain::setup(NSBundle(std::nullopt, {}));
            ZORKeychain::setup(NSBundle(u"be.example.second", {}));
            static_cast<void>(ZORKeychain::private_());
        },
        "No bundle/bundleIdentifier");
}

TEST_F(ZORKeychainSharedDeathTest, StandardIsThePrivateStoreOfTheFirstBundle) {
    EXPECT_EXIT(
        {
            ZORKeychain::setup(NSBundle(u"be.example.first", {}));
            ZORKeychain::setup(NSBundle(u"be.example.second", {}));
            const bool isRight = &ZORKeychain::standard() == &ZORKeychain::private_() &&
                                 ZORKeychain::standard().serviceName() == u"be.example.first" &&
                                 !ZORKeychain::standard().accessGroup();
            ZORKeychain::setup(NSBundle(u"be.example.third", {}));
            ::_exit(isRight && ZORKeychain::private_().serviceName() == u"be.example.first" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ZORKeychainTest, ThePublicStoreNeedsNoSetup) {
    EXPECT_EQ(ZORKeychain::public_().serviceName(), u"ZorKeychainWrapper");
    EXPECT_EQ(ZORKeychain::public_().accessGroup(), std::nullopt);
    EXPECT_EQ(&ZORKeychain::public_(), &ZORKeychain::public_());
    EXPECT_TRUE(ZORKeychain::public_().set(u"x", u"key"));
    EXPECT_EQ(ZORKeychain(u"ZorKeychainWrapper").string(u"key"), u"x");
}

}  // namespace
}  // namespace ZORFoundation
