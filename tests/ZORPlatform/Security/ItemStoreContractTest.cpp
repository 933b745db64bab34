// SPDX-License-Identifier: Apache-2.0
//
// The contract of the item store, over each storage that there is.
#include <ZORPlatform/Security/ItemStoreInternal.h>

#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Security/SQLiteItemStorageInternal.h>
#include <ZORPlatform/Security/SecItem.h>

#include <gtest/gtest.h>

#include <support/Certificates.h>
#include <support/TemporaryDirectory.h>

#include <array>
#include <limits>
#include <string>

#include "InMemoryItemStorage.h"

namespace ZORPlatform {
namespace {

using Data = SecItemValue::Data;
using Array = SecItemResult::Array;

enum class Kind { sqlite, memory };

class ItemStoreContract : public testing::TestWithParam<Kind> {
protected:
    ItemStoreContract() {
        std::unique_ptr<ItemStorage> storage = std::make_unique<support::InMemoryItemStorage>();
        if (GetParam() == Kind::sqlite) {
            std::unique_ptr<SQLiteItemStorage> sqlite;
            EXPECT_EQ(SQLiteItemStorage::open(directory_ / "items.sqlite", sqlite), errSecSuccess);
            storage = std::move(sqlite);
        }
        const std::array<std::uint8_t, 32> key{1, 2, 3};
        EXPECT_EQ(ItemStore::open(std::move(storage), SecItemSuppliedKey(key), {}, store_), errSecSuccess);
    }

    ItemStore& store() { return *store_; }

    OSStatus add(SecItemDictionary item, Data value = {}) {
        item.set(kSecValueData, std::move(value));
        return store().add(item, nullptr);
    }
    /// What a query finds, or an empty result.
    SecItemResult found(SecItemDictionary query, std::initializer_list<std::u16string_view> returns) {
        for (const std::u16string_view key : returns) query.set(key, true);
        SecItemResult result;
        status_ = store().copyMatching(query, &result);
        return result;
    }
    SecItemDictionary attributesOf(const SecItemDictionary& query) {
        const SecItemResult result = found(query, {kSecReturnAttributes});
        const auto* dictionary = result.as<SecItemDictionary>();
        return dictionary != nullptr ? *dictionary : SecItemDictionary();
    }
    Data valueOf(const SecItemDictionary& query) {
        const SecItemResult result = found(query, {kSecReturnData});
        const auto* value = result.as<Data>();
        return value != nullptr ? *value : Data();
    }
    std::vector<Data> valuesOf(SecItemDictionary query) {
        query.set(kSecMatchLimit, kSecMatchLimitAll);
        std::vector<Data> values;
        const SecItemResult result = found(query, {kSecReturnData});
        if (const auto* array = result.as<Array>()) {
            for (const SecItemResult& item : *array) values.push_back(*item.as<Data>());
        }
        return values;
    }
    OSStatus statusOf(const SecItemDictionary& query) { return store().copyMatching(query, nullptr); }
    /// Of the last `found`.
    [[nodiscard]] OSStatus status() const { return status_; }

private:
    support::TemporaryDirectory directory_;
    std::optional<ItemStore> store_;
    OSStatus status_ = errSecSuccess;
};

INSTANTIATE_TEST_SUITE_P(Storage, ItemStoreContract, testing::Values(Kind::sqlite, Kind::memory),
                         [](const auto& parameter) { return parameter.param == Kind::sqlite ? "SQLite" : "InMemory"; });

SecItemDictionary password(const char16_t* service, const char16_t* account) {
    return {{u"class", u"genp"}, {u"svce", service}, {u"acct", account}};
}

const SecItemDictionary kPin = password(u"bank", u"pin");

// The short names are what is stored, and what other programs write.
TEST(SecItemConstants, HaveTheNamesOfThePlatform) {
    EXPECT_EQ(kSecClass, u"class");
    EXPECT_EQ(kSecClassGenericPassword, u"genp");
    EXPECT_EQ(kSecClassInternetPassword, u"inet");
    EXPECT_EQ(kSecClassCertificate, u"cert");
    EXPECT_EQ(kSecClassKey, u"keys");
    EXPECT_EQ(kSecClassIdentity, u"idnt");
    EXPECT_EQ(kSecAttrService, u"svce");
    EXPECT_EQ(kSecAttrAccount, u"acct");
    EXPECT_EQ(kSecAttrGeneric, u"gena");
    EXPECT_EQ(kSecAttrAccessGroup, u"agrp");
    EXPECT_EQ(kSecAttrApplicationLabel, u"klbl");
    EXPECT_EQ(kSecAttrApplicationTag, u"atag");
    EXPECT_EQ(kSecAttrKeyClass, u"kcls");
    EXPECT_EQ(kSecAttrKeyType, u"type");
    EXPECT_EQ(kSecAttrKeySizeInBits, u"bsiz");
    EXPECT_EQ(kSecAttrLabel, u"labl");
    EXPECT_EQ(kSecAttrCreationDate, u"cdat");
    EXPECT_EQ(kSecAttrModificationDate, u"mdat");
    EXPECT_EQ(kSecAttrSynchronizable, u"sync");
    EXPECT_EQ(kSecAttrKeyTypeRSA, u"42");
    EXPECT_EQ(kSecAttrAccessible, u"pdmn");
    EXPECT_EQ(kSecAttrAccessibleWhenUnlocked, u"ak");
    EXPECT_EQ(kSecAttrAccessibleWhenUnlockedThisDeviceOnly, u"aku");
    EXPECT_EQ(kSecAttrAccessibleAfterFirstUnlock, u"ck");
    EXPECT_EQ(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, u"cku");
    EXPECT_EQ(kSecAttrAccessibleAlways, u"dk");
    EXPECT_EQ(kSecAttrAccessibleAlwaysThisDeviceOnly, u"dku");
    EXPECT_EQ(kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly, u"akpu");
    EXPECT_EQ(kSecMatchLimit, u"m_Limit");
    EXPECT_EQ(kSecMatchLimitOne, u"m_LimitOne");
    EXPECT_EQ(kSecMatchLimitAll, u"m_LimitAll");
    EXPECT_EQ(kSecReturnData, u"r_Data");
    EXPECT_EQ(kSecReturnAttributes, u"r_Attributes");
    EXPECT_EQ(kSecReturnRef, u"r_Ref");
    EXPECT_EQ(kSecReturnPersistentRef, u"r_PersistentRef");
    EXPECT_EQ(kSecValueData, u"v_Data");
    EXPECT_EQ(kSecValueRef, u"v_Ref");
    EXPECT_EQ(kSecValuePersistentRef, u"v_PersistentRef");
    EXPECT_EQ(kSecAttrKeyClassPublic, u"0");
    EXPECT_EQ(kSecAttrKeyClassPrivate, u"1");
    EXPECT_EQ(kSecAttrKeyClassSymmetric, u"2");
}

TEST(SecItemConstants, StatusesHaveTheNumbersOfThePlatform) {
    EXPECT_EQ(errSecSuccess, 0);
    EXPECT_EQ(errSecUnimplemented, -4);
    EXPECT_EQ(errSecIO, -36);
    EXPECT_EQ(errSecParam, -50);
    EXPECT_EQ(errSecAllocate, -108);
    EXPECT_EQ(errSecNotAvailable, -25291);
    EXPECT_EQ(errSecAuthFailed, -25293);
    EXPECT_EQ(errSecDuplicateItem, -25299);
    EXPECT_EQ(errSecItemNotFound, -25300);
    EXPECT_EQ(errSecNoSuchAttr, -25303);
    EXPECT_EQ(errSecNoSuchClass, -25306);
    EXPECT_EQ(errSecInteractionNotAllowed, -25308);
    EXPECT_EQ(errSecDecode, -26275);
}

TEST_P(ItemStoreContract, WhatIsAddedIsFound) {
    EXPECT_EQ(add(kPin, {1, 2, 3}), errSecSuccess);
    EXPECT_EQ(valueOf(kPin), (Data{1, 2, 3}));
}

TEST_P(ItemStoreContract, AnEmptyValueIsNotAnAbsentItem) {
    EXPECT_EQ(store().add(kPin, nullptr), errSecSuccess);
    const SecItemResult result = found(kPin, {kSecReturnData});
    ASSERT_NE(result.as<Data>(), nullptr);
    EXPECT_TRUE(result.as<Data>()->empty());
}

TEST_P(ItemStoreContract, AValueOfAMegabyteComesBackWhole) {
    Data value(1'000'000);
    for (std::size_t i = 0; i < value.size(); ++i) value[i] = static_cast<std::uint8_t>(i * i >> 7);
    EXPECT_EQ(add(kPin, value), errSecSuccess);
    EXPECT_EQ(valueOf(kPin), value);
}

TEST_P(ItemStoreContract, EveryClassKeepsItems) {
    for (const std::u16string_view name :
         {kSecClassGenericPassword, kSecClassInternetPassword, kSecClassCertificate, kSecClassKey, kSecClassIdentity}) {
        const SecItemDictionary item{{u"class", name}, {u"labl", u"mine"}};
        EXPECT_EQ(add(item, Data(name.begin(), name.end())), errSecSuccess);
        EXPECT_EQ(add(item), errSecDuplicateItem);
        EXPECT_EQ(valueOf(item), Data(name.begin(), name.end()));
        EXPECT_EQ(store().remove({{u"class", name}}), errSecSuccess);
        EXPECT_EQ(statusOf(item), errSecItemNotFound);
    }
}

TEST_P(ItemStoreContract, AFailureLeavesTheResultAsItWas) {
    SecItemResult result(Data{7});
    SecItemDictionary query = kPin;
    query.set(kSecReturnData, true);
    EXPECT_EQ(store().copyMatching(query, &result), errSecItemNotFound);
    EXPECT_EQ(result, SecItemResult(Data{7}));
}

TEST_P(ItemStoreContract, WithoutReturnKeysTheResultIsLeftAsItWas) {
    SecItemResult result(Data{7});
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(store().copyMatching(kPin, &result), errSecSuccess);
    EXPECT_EQ(store().add(password(u"bank", u"other"), &result), errSecSuccess);
    EXPECT_EQ(result, SecItemResult(Data{7}));
}

TEST_P(ItemStoreContract, AccessibilityAndGenericValueAreNoPartOfThePrimaryKey) {
    SecItemDictionary first = kPin;
    first.set(kSecAttrAccessible, kSecAttrAccessibleAlways);
    first.set(kSecAttrGeneric, Data{1});
    SecItemDictionary second = kPin;
    second.set(kSecAttrAccessible, kSecAttrAccessibleWhenUnlocked);
    second.set(kSecAttrGeneric, Data{2});
    EXPECT_EQ(add(first), errSecSuccess);
    EXPECT_EQ(add(second), errSecDuplicateItem);
    EXPECT_EQ(statusOf(second), errSecItemNotFound);
}

TEST_P(ItemStoreContract, NeitherDatesNorDescriptiveTextsArePartOfThePrimaryKey) {
    EXPECT_EQ(add(kPin), errSecSuccess);
    for (const std::u16string_view name : {kSecAttrLabel, kSecAttrComment, kSecAttrDescription}) {
        SecItemDictionary other = kPin;
        other.set(name, u"other");
        EXPECT_EQ(add(other), errSecDuplicateItem);
    }
}

TEST_P(ItemStoreContract, EachPartOfThePrimaryKeyTellsItemsApart) {
    struct Class {
        const char16_t* name;
        std::vector<SecItemDictionary::Entry> key;
    };
    const SecItemValue date = NSDate::sinceReferenceDate(5);
    const std::vector<Class> classes{
        {u"genp", {{u"acct", u"x"}, {u"svce", u"x"}, {u"agrp", u"x"}, {u"sync", 1}}},
        {u"inet",
         {{u"acct", u"x"},
          {u"sdmn", u"x"},
          {u"srvr", u"x"},
          {u"ptcl", u"x"},
          {u"atyp", u"x"},
          {u"port", 443},
          {u"path", u"x"},
          {u"agrp", u"x"},
          {u"sync", 1}}},
        {u"keys",
         {{u"kcls", 1},
          {u"klbl", Data{1}},
          {u"atag", Data{1}},
          {u"crtr", 1},
          {u"type", 42},
          {u"bsiz", 128},
          {u"esiz", 128},
          {u"sdat", date},
          {u"edat", date},
          {u"agrp", u"x"},
          {u"sync", 1}}},
        {u"cert", {{u"ctyp", 1}, {u"issr", Data{1}}, {u"slnr", Data{1}}, {u"agrp", u"x"}, {u"sync", 1}}},
        {u"idnt", {{u"ctyp", 1}, {u"issr", Data{1}}, {u"slnr", Data{1}}, {u"agrp", u"x"}, {u"sync", 1}}},
    };
    for (const Class& itemClass : classes) {
        EXPECT_EQ(add({{u"class", itemClass.name}}, {0}), errSecSuccess);
        for (const auto& [name, value] : itemClass.key) {
            SecItemDictionary item{{u"class", itemClass.name}};
            item.set(name, value);
            EXPECT_EQ(add(item, {1}), errSecSuccess) << utf8(itemClass.name) << " " << utf8(name);
            EXPECT_EQ(add(item), errSecDuplicateItem);
            EXPECT_EQ(valueOf(item), Data{1}) << utf8(name);
        }
        EXPECT_EQ(valuesOf({{u"class", itemClass.name}}).size(), itemClass.key.size() + 1);
    }
}

TEST_P(ItemStoreContract, BoundariesBetweenPartsOfThePrimaryKeyAreKept) {
    EXPECT_EQ(add(password(u"ab", u"c")), errSecSuccess);
    EXPECT_EQ(add(password(u"a", u"bc")), errSecSuccess);
    EXPECT_EQ(add(password(u"abc", u"")), errSecSuccess);
    EXPECT_EQ(statusOf(password(u"a", u"b")), errSecItemNotFound);
    EXPECT_EQ(statusOf(password(u"", u"abc")), errSecItemNotFound);
}

TEST_P(ItemStoreContract, AMissingPartOfThePrimaryKeyCountsAsEmptyOrZero) {
    EXPECT_EQ(add({{u"class", u"inet"}, {u"srvr", u"bank"}}), errSecSuccess);
    EXPECT_EQ(add({{u"class", u"inet"}, {u"srvr", u"bank"}, {u"port", 0}, {u"path", u""}}), errSecDuplicateItem);
    EXPECT_EQ(statusOf({{u"class", u"inet"}, {u"port", 0}}), errSecSuccess);
    EXPECT_EQ(statusOf({{u"class", u"inet"}, {u"path", u""}}), errSecSuccess);
    EXPECT_EQ(statusOf({{u"class", u"inet"}, {u"port", 1}}), errSecItemNotFound);
    EXPECT_EQ(statusOf({{u"class", u"inet"}, {u"labl", u""}}), errSecItemNotFound) << "no part of the key";
}

TEST_P(ItemStoreContract, TextForABytesAttributeStandsForItsUtf8) {
    SecItemDictionary item{{u"class", u"keys"}, {u"klbl", u"fpKey"}};
    EXPECT_EQ(add(item, {1}), errSecSuccess);
    EXPECT_EQ(valueOf({{u"class", u"keys"}, {u"klbl", Data{'f', 'p', 'K', 'e', 'y'}}}), Data{1});
    EXPECT_EQ(*attributesOf(item).find(u"klbl"), SecItemValue(Data{'f', 'p', 'K', 'e', 'y'}));
    SecItemDictionary account{{u"class", u"genp"}, {u"acct", u"caf\u00E9"}};
    EXPECT_EQ(add(account), errSecSuccess);
    EXPECT_EQ(statusOf({{u"class", u"genp"}, {u"acct", Data{'c', 'a', 'f', 0xC3, 0xA9}}}), errSecSuccess);
}

TEST_P(ItemStoreContract, NumbersAreEqualInWhateverForm) {
    EXPECT_EQ(add({{u"class", u"keys"}, {u"kcls", kSecAttrKeyClassSymmetric}, {u"encr", true}}, {1}), errSecSuccess);
    EXPECT_EQ(statusOf({{u"class", u"keys"}, {u"kcls", 2}}), errSecSuccess);
    EXPECT_EQ(statusOf({{u"class", u"keys"}, {u"encr", 1}}), errSecSuccess);
    EXPECT_EQ(statusOf({{u"class", u"keys"}, {u"encr", false}}), errSecItemNotFound);
    EXPECT_EQ(add({{u"class", u"keys"}, {u"kcls", 2}}), errSecDuplicateItem);
}

TEST_P(ItemStoreContract, AttributesComeBackAsTheyWereGiven) {
    const NSDate start = NSDate::sinceReferenceDate(-1.25);
    const SecItemDictionary given{{u"class", u"keys"},     {u"kcls", u"2"},  {u"type", 42},
                                  {u"encr", true},         {u"sdat", start}, {u"atag", Data{0, 255}},
                                  {u"labl", u"caf\u00E9"}, {u"bsiz", -1}};
    EXPECT_EQ(add(given, {1}), errSecSuccess);
    const SecItemDictionary attributes = attributesOf({{u"class", u"keys"}});
    for (const auto& [name, value] : given) {
        if (name == kSecClass) continue;
        ASSERT_NE(attributes.find(name), nullptr) << utf8(name);
        EXPECT_EQ(*attributes.find(name), value) << utf8(name);
    }
}

TEST_P(ItemStoreContract, TheStoreCompletesTheAttributes) {
    const double before = NSDate::date().timeIntervalSinceReferenceDate();
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    const SecItemDictionary attributes = attributesOf(kPin);
    EXPECT_EQ(*attributes.find(u"pdmn"), SecItemValue(u"ak"));
    EXPECT_EQ(*attributes.find(u"agrp"), SecItemValue(u""));
    EXPECT_EQ(*attributes.find(u"sync"), SecItemValue(0));
    ASSERT_NE(attributes.find<NSDate>(u"cdat"), nullptr);
    EXPECT_GE(attributes.find<NSDate>(u"cdat")->timeIntervalSinceReferenceDate(), before);
    EXPECT_EQ(*attributes.find(u"mdat"), *attributes.find(u"cdat"));
    EXPECT_EQ(attributes.find(u"v_Data"), nullptr);
    EXPECT_EQ(attributes.size(), 7U);
    EXPECT_EQ(add({{u"class", u"cert"}}), errSecSuccess);
    EXPECT_EQ(*attributesOf({{u"class", u"cert"}}).find(u"pdmn"), SecItemValue(u"dk"));
}

TEST_P(ItemStoreContract, DatesOfTheApplicationAreNotTaken) {
    SecItemDictionary item = kPin;
    item.set(u"cdat", NSDate::sinceReferenceDate(0));
    item.set(u"mdat", NSDate::sinceReferenceDate(0));
    EXPECT_EQ(add(item), errSecSuccess);
    const SecItemDictionary attributes = attributesOf(kPin);
    EXPECT_GT(attributes.find<NSDate>(u"cdat")->timeIntervalSinceReferenceDate(), 1);
    EXPECT_EQ(store().update(kPin, {{u"cdat", NSDate::sinceReferenceDate(1)}}), errSecSuccess);
    EXPECT_EQ(*attributesOf(kPin).find(u"cdat"), *attributes.find(u"cdat"));
}

TEST_P(ItemStoreContract, OneReturnKeyGivesOneObject) {
    EXPECT_EQ(add(kPin, {1, 2}), errSecSuccess);
    EXPECT_EQ(found(kPin, {kSecReturnData}), SecItemResult(Data{1, 2}));
    EXPECT_EQ(found(kPin, {kSecReturnPersistentRef}), SecItemResult(Data{'g', 'e', 'n', 'p', 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_NE(found(kPin, {kSecReturnAttributes}).as<SecItemDictionary>(), nullptr);
}

TEST_P(ItemStoreContract, SeveralReturnKeysGiveADictionary) {
    EXPECT_EQ(add(kPin, {1, 2}), errSecSuccess);
    SecItemDictionary expected = attributesOf(kPin);
    expected.set(u"v_Data", Data{1, 2});
    EXPECT_EQ(found(kPin, {kSecReturnAttributes, kSecReturnData}), SecItemResult(expected));
    const Data reference{'g', 'e', 'n', 'p', 0, 0, 0, 0, 0, 0, 0, 1};
    expected.set(u"v_PersistentRef", reference);
    EXPECT_EQ(found(kPin, {kSecReturnAttributes, kSecReturnData, kSecReturnPersistentRef}), SecItemResult(expected));
    EXPECT_EQ(found(kPin, {kSecReturnData, kSecReturnPersistentRef}),
              SecItemResult(SecItemDictionary{{u"v_Data", Data{1, 2}}, {u"v_PersistentRef", reference}}));
}

TEST_P(ItemStoreContract, AReturnKeyThatIsFalseAsksForNothing) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemDictionary query = kPin;
    query.set(kSecReturnAttributes, false);
    EXPECT_EQ(found(query, {kSecReturnData}), SecItemResult(Data{1}));
}

TEST_P(ItemStoreContract, AnAddGivesBackWhatItsReturnKeysAskFor) {
    SecItemResult result;
    SecItemDictionary item = kPin;
    item.set(kSecValueData, Data{5});
    item.set(kSecReturnPersistentRef, true);
    EXPECT_EQ(store().add(item, &result), errSecSuccess);
    EXPECT_EQ(result, found(kPin, {kSecReturnPersistentRef}));
    item = password(u"bank", u"second");
    item.set(kSecValueData, Data{5});
    item.set(kSecReturnAttributes, true);
    item.set(kSecReturnData, true);
    EXPECT_EQ(store().add(item, &result), errSecSuccess);
    EXPECT_EQ(result, found(password(u"bank", u"second"), {kSecReturnAttributes, kSecReturnData}));
}

TEST_P(ItemStoreContract, APersistentReferenceFindsItsItemAndNoLaterOne) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    const Data reference = *found(kPin, {kSecReturnPersistentRef}).as<Data>();
    EXPECT_EQ(valueOf({{u"v_PersistentRef", reference}}), Data{1});
    EXPECT_EQ(valueOf({{u"class", u"genp"}, {u"v_PersistentRef", reference}}), Data{1});
    EXPECT_EQ(statusOf({{u"class", u"keys"}, {u"v_PersistentRef", reference}}), errSecItemNotFound);
    EXPECT_EQ(statusOf({{u"v_PersistentRef", reference}, {u"acct", u"other"}}), errSecItemNotFound);
    EXPECT_EQ(store().remove({{u"v_PersistentRef", reference}}), errSecSuccess);
    EXPECT_EQ(add(kPin, {2}), errSecSuccess);
    EXPECT_EQ(statusOf({{u"v_PersistentRef", reference}}), errSecItemNotFound) << "a row number is used once";
}

TEST_P(ItemStoreContract, APersistentReferenceOfAnotherClassFindsNothing) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    Data reference = *found(kPin, {kSecReturnPersistentRef}).as<Data>();
    std::copy_n("keys", 4, reference.begin());
    EXPECT_EQ(statusOf({{u"v_PersistentRef", reference}}), errSecItemNotFound);
}

TEST_P(ItemStoreContract, WhatIsNoPersistentReferenceIsRefused) {
    EXPECT_EQ(statusOf({{u"v_PersistentRef", Data{1, 2, 3}}}), errSecParam);
    EXPECT_EQ(statusOf({{u"v_PersistentRef", Data(12, 'x')}}), errSecParam);
    EXPECT_EQ(statusOf({{u"v_PersistentRef", u"genp00000000"}}), errSecParam);
}

TEST_P(ItemStoreContract, OneIsTheLimitAndTheOldestIsFound) {
    for (const char16_t* account : {u"z", u"a", u"m"}) {
        EXPECT_EQ(add(password(u"bank", account), {static_cast<std::uint8_t>(account[0])}), errSecSuccess);
    }
    const SecItemDictionary query{{u"class", u"genp"}, {u"svce", u"bank"}};
    EXPECT_EQ(valueOf(query), Data{'z'});
    SecItemDictionary one = query;
    one.set(kSecMatchLimit, kSecMatchLimitOne);
    EXPECT_EQ(valueOf(one), Data{'z'});
    EXPECT_EQ(valuesOf(query), (std::vector<Data>{{'z'}, {'a'}, {'m'}}));
    SecItemDictionary two = query;
    two.set(kSecMatchLimit, 2);
    EXPECT_EQ(found(two, {kSecReturnData}), SecItemResult(Array{Data{'z'}, Data{'a'}}));
}

TEST_P(ItemStoreContract, AllGivesAnArrayEvenOfOne) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(valuesOf(kPin), std::vector<Data>{{1}});
    EXPECT_EQ(valuesOf(password(u"bank", u"other")), std::vector<Data>{});
}

TEST_P(ItemStoreContract, AttributesNotGivenMatchAnything) {
    SecItemDictionary grouped = kPin;
    grouped.set(kSecAttrAccessGroup, u"group");
    EXPECT_EQ(add(grouped, {1}), errSecSuccess);
    EXPECT_EQ(valueOf(kPin), Data{1});
    EXPECT_EQ(add(kPin, {2}), errSecSuccess);
    EXPECT_EQ(valuesOf(kPin), (std::vector<Data>{{1}, {2}}));
    EXPECT_EQ(valuesOf(grouped), (std::vector<Data>{{1}}));
}

TEST_P(ItemStoreContract, AnUpdateChangesAllMatches) {
    for (const char16_t* account : {u"a", u"b"}) EXPECT_EQ(add(password(u"bank", account), {1}), errSecSuccess);
    EXPECT_EQ(add(password(u"shop", u"a"), {1}), errSecSuccess);
    const SecItemDictionary bank{{u"class", u"genp"}, {u"svce", u"bank"}};
    EXPECT_EQ(store().update(bank, {{u"v_Data", Data{2}}, {u"labl", u"new"}}), errSecSuccess);
    EXPECT_EQ(valuesOf(bank), (std::vector<Data>{{2}, {2}}));
    EXPECT_EQ(valueOf(password(u"shop", u"a")), Data{1});
    EXPECT_EQ(*attributesOf(bank).find(u"labl"), SecItemValue(u"new"));
    EXPECT_EQ(*attributesOf(bank).find(u"acct"), SecItemValue(u"a"));
}

TEST_P(ItemStoreContract, AnUpdateOfAttributesKeepsTheValue) {
    EXPECT_EQ(add(kPin, {1, 2, 3}), errSecSuccess);
    EXPECT_EQ(store().update(kPin, {{u"pdmn", u"dk"}, {u"svce", u"other"}}), errSecSuccess);
    EXPECT_EQ(statusOf(kPin), errSecItemNotFound);
    EXPECT_EQ(valueOf(password(u"other", u"pin")), (Data{1, 2, 3}));
    EXPECT_EQ(*attributesOf(password(u"other", u"pin")).find(u"pdmn"), SecItemValue(u"dk"));
}

TEST_P(ItemStoreContract, AnUpdateSetsTheModificationDateAndKeepsTheReference) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    const SecItemResult reference = found(kPin, {kSecReturnPersistentRef});
    const SecItemDictionary before = attributesOf(kPin);
    EXPECT_EQ(store().update(kPin, {{u"v_Data", Data{2}}}), errSecSuccess);
    const SecItemDictionary after = attributesOf(kPin);
    EXPECT_EQ(*after.find(u"cdat"), *before.find(u"cdat"));
    EXPECT_GT(after.find<NSDate>(u"mdat")->timeIntervalSinceReferenceDate(),
              before.find<NSDate>(u"mdat")->timeIntervalSinceReferenceDate());
    EXPECT_EQ(found(kPin, {kSecReturnPersistentRef}), reference);
}

TEST_P(ItemStoreContract, AnUpdateThatCollidesChangesNothing) {
    for (const char16_t* account : {u"a", u"b", u"c"}) {
        EXPECT_EQ(add(password(u"bank", account), {static_cast<std::uint8_t>(account[0])}), errSecSuccess);
    }
    const SecItemDictionary bank{{u"class", u"genp"}, {u"svce", u"bank"}};
    EXPECT_EQ(store().update(password(u"bank", u"a"), {{u"acct", u"b"}}), errSecDuplicateItem);
    EXPECT_EQ(store().update(bank, {{u"acct", u"d"}, {u"v_Data", Data{0}}}), errSecDuplicateItem) << "with each other";
    EXPECT_EQ(valuesOf(bank), (std::vector<Data>{{'a'}, {'b'}, {'c'}}));
    EXPECT_EQ(statusOf(password(u"bank", u"a")), errSecSuccess);
    EXPECT_EQ(statusOf(password(u"bank", u"d")), errSecItemNotFound);
}

TEST_P(ItemStoreContract, AnUpdateToTheSameKeyIsNoCollision) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(store().update(kPin, {{u"acct", u"pin"}, {u"v_Data", Data{2}}}), errSecSuccess);
    EXPECT_EQ(valueOf(kPin), Data{2});
}

TEST_P(ItemStoreContract, AnUpdateWithoutMatchesIsNotFound) {
    EXPECT_EQ(store().update(kPin, {{u"v_Data", Data{2}}}), errSecItemNotFound);
    EXPECT_EQ(statusOf(kPin), errSecItemNotFound);
}

TEST_P(ItemStoreContract, AnUpdateTakesNeitherLimitNorReturnKeysNorAnEmptyChange) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    const SecItemDictionary change{{u"v_Data", Data{2}}};
    for (const SecItemDictionary::Entry& extra :
         {SecItemDictionary::Entry{u"m_Limit", u"m_LimitAll"}, {u"r_Data", true}, {u"v_Data", Data{1}}}) {
        SecItemDictionary query = kPin;
        query.set(extra.first, extra.second);
        EXPECT_EQ(store().update(query, change), errSecParam);
    }
    EXPECT_EQ(store().update(kPin, {}), errSecParam);
    EXPECT_EQ(store().update(kPin, {{u"class", u"genp"}}), errSecParam);
    EXPECT_EQ(store().update(kPin, {{u"r_Data", true}}), errSecParam);
    EXPECT_EQ(store().update(kPin, {{u"nope", 1}}), errSecNoSuchAttr);
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_P(ItemStoreContract, ADeletionTakesAllMatches) {
    for (const char16_t* account : {u"a", u"b"}) EXPECT_EQ(add(password(u"bank", account)), errSecSuccess);
    EXPECT_EQ(add(password(u"shop", u"a"), {7}), errSecSuccess);
    const SecItemDictionary bank{{u"class", u"genp"}, {u"svce", u"bank"}};
    EXPECT_EQ(store().remove(bank), errSecSuccess);
    EXPECT_EQ(statusOf(bank), errSecItemNotFound);
    EXPECT_EQ(store().remove(bank), errSecItemNotFound);
    EXPECT_EQ(valueOf(password(u"shop", u"a")), Data{7});
}

TEST_P(ItemStoreContract, ADeletionTakesNeitherLimitNorReturnKeys) {
    EXPECT_EQ(add(kPin), errSecSuccess);
    for (const SecItemDictionary::Entry& extra :
         {SecItemDictionary::Entry{u"m_Limit", u"m_LimitOne"}, {u"r_Attributes", true}, {u"v_Data", Data{1}}}) {
        SecItemDictionary query = kPin;
        query.set(extra.first, extra.second);
        EXPECT_EQ(store().remove(query), errSecParam);
    }
    EXPECT_EQ(statusOf(kPin), errSecSuccess);
}

TEST_P(ItemStoreContract, AClassIsNeededAndHasToBeKnown) {
    const SecItemDictionary none{{u"acct", u"pin"}};
    const SecItemDictionary unknown{{u"class", u"nope"}, {u"acct", u"pin"}};
    const SecItemDictionary bytes{{u"class", Data{'g', 'e', 'n', 'p'}}};
    const SecItemDictionary change{{u"v_Data", Data{1}}};
    for (const auto& [query, status] :
         {std::pair(none, errSecParam), {unknown, errSecNoSuchClass}, {bytes, errSecParam}}) {
        EXPECT_EQ(store().add(query, nullptr), status);
        EXPECT_EQ(statusOf(query), status);
        EXPECT_EQ(store().update(query, change), status);
        EXPECT_EQ(store().remove(query), status);
    }
}

TEST_P(ItemStoreContract, AnAttributeOfAnotherClassIsRefused) {
    for (const SecItemDictionary& item : {SecItemDictionary{{u"class", u"genp"}, {u"klbl", u"x"}},
                                          {{u"class", u"keys"}, {u"acct", u"x"}},
                                          {{u"class", u"genp"}, {u"x", 1}},
                                          {{u"class", u"cert"}, {u"\u00E9\u00E9\u00E9\u00E9", 1}}}) {
        EXPECT_EQ(store().add(item, nullptr), errSecNoSuchAttr);
        EXPECT_EQ(statusOf(item), errSecNoSuchAttr);
    }
}

TEST_P(ItemStoreContract, AValueOfTheWrongKindIsRefused) {
    const std::u16string loneSurrogate(1, u'\xD800');
    for (const SecItemDictionary& item :
         {SecItemDictionary{{u"class", u"genp"}, {u"labl", Data{1}}},
          {{u"class", u"genp"}, {u"labl", 1}},
          {{u"class", u"genp"}, {u"gena", 1}},
          {{u"class", u"genp"}, {u"acct", true}},
          {{u"class", u"genp"}, {u"acct", loneSurrogate}},
          {{u"class", u"genp"}, {u"pdmn", u"nope"}},
          {{u"class", u"genp"}, {u"pdmn", 1}},
          {{u"class", u"keys"}, {u"kcls", u"2x"}},
          {{u"class", u"keys"}, {u"kcls", u""}},
          {{u"class", u"keys"}, {u"kcls", u"9223372036854775808"}},
          {{u"class", u"keys"}, {u"kcls", Data{2}}},
          {{u"class", u"keys"}, {u"sdat", 1}},
          {{u"class", u"keys"}, {u"sdat", u"today"}},
          {{u"class", u"keys"}, {u"sdat", NSDate::sinceReferenceDate(std::numeric_limits<double>::quiet_NaN())}},
          {{u"class", u"genp"}, {u"sync", NSDate()}},
          {{u"class", u"genp"}, {u"r_Data", 1}},
          {{u"class", u"genp"}, {u"m_Limit", u"x"}},
          {{u"class", u"genp"}, {u"m_Limit", 0}},
          {{u"class", u"genp"}, {u"m_Limit", true}}}) {
        EXPECT_EQ(store().add(item, nullptr), errSecParam);
        EXPECT_EQ(statusOf(item), errSecParam);
    }
    EXPECT_EQ(store().add({{u"class", u"genp"}, {u"v_Data", u"text"}}, nullptr), errSecParam);
    EXPECT_EQ(statusOf({{u"class", u"genp"}, {u"v_Data", Data{1}}}), errSecParam);
    EXPECT_EQ(store().add({{u"class", u"genp"}, {u"m_Limit", u"m_LimitOne"}}, nullptr), errSecParam);
}

TEST_P(ItemStoreContract, TheTwoVariantsOfASymmetricKeyShareOnePrimaryKey) {
    const auto variant = [](std::u16string_view accessible) {
        return SecItemDictionary{{u"class", kSecClassKey},
                                 {u"kcls", kSecAttrKeyClassSymmetric},
                                 {u"bsiz", 128},
                                 {u"klbl", u"fpKey"},
                                 {u"pdmn", accessible}};
    };
    const SecItemDictionary phone = variant(kSecAttrAccessibleWhenUnlockedThisDeviceOnly);
    const SecItemDictionary watch = variant(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
    EXPECT_EQ(add(phone, Data(16, 1)), errSecSuccess);
    EXPECT_EQ(add(watch, Data(16, 2)), errSecDuplicateItem);
    EXPECT_EQ(store().remove(watch), errSecItemNotFound);
    EXPECT_EQ(valueOf(phone), Data(16, 1));
    EXPECT_EQ(store().remove(phone), errSecSuccess);
    EXPECT_EQ(add(watch, Data(16, 2)), errSecSuccess);
    EXPECT_EQ(statusOf(phone), errSecItemNotFound);
}

const Data& rsaKeyBytes() {
    static const Data bytes = support::PrivateKey::rsa(1024).publicKey();
    return bytes;
}

TEST_P(ItemStoreContract, AKeyStoredAsBytesComesBackAsAReference) {
    const SecItemDictionary item{{u"class", u"keys"}, {u"type", kSecAttrKeyTypeRSA}, {u"atag", u"peer"}};
    EXPECT_EQ(add(item, rsaKeyBytes()), errSecSuccess);
    const SecItemResult result = found(item, {kSecReturnRef});
    ASSERT_NE(result.as<SecKey>(), nullptr);
    EXPECT_EQ(SecKeyCopyExternalRepresentation(*result.as<SecKey>()), rsaKeyBytes());
    const SecItemResult several = found(item, {kSecReturnRef, kSecReturnData});
    ASSERT_NE(several.as<SecItemDictionary>(), nullptr);
    EXPECT_EQ(several.as<SecItemDictionary>()->size(), 2U);
    EXPECT_NE(several.as<SecItemDictionary>()->find<SecKey>(kSecValueRef), nullptr);
    EXPECT_EQ(*several.as<SecItemDictionary>()->find(kSecValueData), SecItemValue(rsaKeyBytes()));
}

TEST_P(ItemStoreContract, AKeyStoredByReferenceHasItsBytesAndSize) {
    const SecKey key = *SecKeyCreateWithData(rsaKeyBytes());
    EXPECT_EQ(store().add({{u"v_Ref", key}, {u"atag", u"peer"}}, nullptr), errSecSuccess);
    const SecItemDictionary item{{u"class", u"keys"}, {u"atag", u"peer"}};
    EXPECT_EQ(valueOf(item), rsaKeyBytes());
    const SecItemDictionary attributes = attributesOf(item);
    EXPECT_EQ(*attributes.find(u"type"), SecItemValue(kSecAttrKeyTypeRSA));
    EXPECT_EQ(*attributes.find(u"kcls"), SecItemValue(kSecAttrKeyClassPublic));
    EXPECT_EQ(*attributes.find(u"bsiz"), SecItemValue(1024));
}

TEST_P(ItemStoreContract, BytesThatAreNoKeyAreKeptButGiveNoReference) {
    const SecItemDictionary item{{u"class", u"keys"}, {u"atag", u"peer"}};
    EXPECT_EQ(add(item, {1, 2, 3}), errSecSuccess);
    EXPECT_TRUE(found(item, {kSecReturnRef}).isEmpty());
    EXPECT_EQ(status(), errSecDecode);
    EXPECT_EQ(valueOf(item), (Data{1, 2, 3}));
    EXPECT_EQ(store().add({{u"class", u"keys"}, {u"atag", u"x"}, {u"v_Data", Data{1}}, {u"r_Ref", true}}, nullptr),
              errSecDecode);
    EXPECT_EQ(statusOf({{u"class", u"keys"}, {u"atag", u"x"}}), errSecItemNotFound) << "nothing was added";
}

TEST_P(ItemStoreContract, ACertificateBringsItsAttributesAndComesBackAsAReference) {
    const support::PrivateKey issuer = support::PrivateKey::ellipticCurve();
    const Data first = support::certificateOf({.subject = "first"}, issuer);
    const Data second = support::certificateOf({.subject = "second"}, issuer);
    EXPECT_EQ(add({{u"class", u"cert"}}, first), errSecSuccess);
    EXPECT_EQ(add({{u"class", u"cert"}, {u"labl", u"again"}}, first), errSecDuplicateItem);
    EXPECT_EQ(store().add({{u"v_Ref", *SecCertificateCreateWithData(second)}}, nullptr), errSecSuccess);
    EXPECT_EQ(valuesOf({{u"class", u"cert"}}), (std::vector<Data>{first, second}));
    const SecItemDictionary attributes = attributesOf({{u"class", u"cert"}});
    EXPECT_EQ(*attributes.find(u"ctyp"), SecItemValue(3));
    EXPECT_EQ(attributes.find<Data>(u"pkhh")->size(), 20U);
    for (const char16_t* name : {u"issr", u"subj", u"slnr"}) {
        ASSERT_NE(attributes.find<Data>(name), nullptr) << utf8(name);
        EXPECT_FALSE(attributes.find<Data>(name)->empty()) << utf8(name);
        EXPECT_EQ(valueOf({{u"class", u"cert"}, {name, *attributes.find(name)}}), first);
    }
    const SecItemResult reference = found({{u"class", u"cert"}}, {kSecReturnRef});
    ASSERT_NE(reference.as<SecCertificate>(), nullptr);
    EXPECT_EQ(SecCertificateCopyData(*reference.as<SecCertificate>()), first);
}

TEST_P(ItemStoreContract, OnlyKeysAndCertificatesHaveReferences) {
    for (const std::u16string_view name : {kSecClassGenericPassword, kSecClassInternetPassword, kSecClassIdentity}) {
        EXPECT_EQ(add({{u"class", name}}, rsaKeyBytes()), errSecSuccess);
        EXPECT_EQ(statusOf({{u"class", name}, {u"r_Ref", true}}), errSecParam);
        EXPECT_EQ(statusOf({{u"class", name}, {u"r_Ref", false}}), errSecSuccess);
    }
}

TEST_P(ItemStoreContract, AReferenceIsAValueAndNothingElse) {
    const SecKey key = *SecKeyCreateWithData(rsaKeyBytes());
    EXPECT_EQ(store().add({{u"class", u"cert"}, {u"v_Ref", key}}, nullptr), errSecParam);
    EXPECT_EQ(store().add({{u"v_Ref", key}, {u"v_Data", Data{1}}}, nullptr), errSecParam);
    EXPECT_EQ(store().add({{u"v_Ref", Data{1}}}, nullptr), errSecParam);
    EXPECT_EQ(store().add({{u"class", u"keys"}, {u"klbl", key}}, nullptr), errSecParam);
    EXPECT_EQ(statusOf({{u"class", u"keys"}, {u"v_Ref", key}}), errSecParam);
    EXPECT_EQ(add({{u"class", u"keys"}}), errSecSuccess);
    EXPECT_EQ(store().update({{u"class", u"keys"}}, {{u"v_Ref", key}}), errSecParam);
}

TEST_P(ItemStoreContract, ManyItemsStayApart) {
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(add({{u"class", u"genp"},
                       {u"acct", Data{static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i / 256)}}},
                      {static_cast<std::uint8_t>(i)}),
                  errSecSuccess);
    }
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(valueOf({{u"class", u"genp"},
                           {u"acct", Data{static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i / 256)}}}),
                  Data{static_cast<std::uint8_t>(i)});
    }
}

}  // namespace
}  // namespace ZORPlatform
