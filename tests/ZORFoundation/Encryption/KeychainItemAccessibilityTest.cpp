// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Encryption/KeychainItemAccessibility.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <set>

namespace ZORFoundation {
namespace {

using enum KeychainItemAccessibility;

constexpr std::array<std::pair<KeychainItemAccessibility, std::u16string_view>, 7> kTable{{
    {afterFirstUnlock, u"ck"},
    {afterFirstUnlockThisDeviceOnly, u"cku"},
    {always, u"dk"},
    {whenPasscodeSetThisDeviceOnly, u"akpu"},
    {alwaysThisDeviceOnly, u"dku"},
    {whenUnlocked, u"ak"},
    {whenUnlockedThisDeviceOnly, u"aku"},
}};

static_assert(KeychainAttrRepresentable<KeychainItemAccessibility>);
static_assert(!KeychainAttrRepresentable<int>);

TEST(KeychainItemAccessibility, CasesAreInOrderAndStandForTheirConstants) {
    for (std::size_t i = 0; i < kTable.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(kTable[i].first), i);
        EXPECT_EQ(keychainAttrValue(kTable[i].first), kTable[i].second);
    }
}

TEST(KeychainItemAccessibility, AConstantGivesItsCase) {
    for (const auto& [accessibility, value] : kTable) EXPECT_EQ(accessibilityForAttributeValue(value), accessibility);
}

TEST(KeychainItemAccessibility, AnyOtherTextGivesNone) {
    for (const std::u16string_view value : {u"", u"AK", u"ak ", u"a", u"akux", u"nope"}) {
        EXPECT_EQ(accessibilityForAttributeValue(value), std::nullopt);
    }
}

TEST(KeychainItemAccessibility, CasesCanBeHashed) {
    std::set<std::size_t> hashes;
    for (const auto& [accessibility, value] : kTable) {
        hashes.insert(std::hash<KeychainItemAccessibility>{}(accessibility));
    }
    EXPECT_EQ(hashes.size(), kTable.size());
}

}  // namespace
}  // namespace ZORFoundation
