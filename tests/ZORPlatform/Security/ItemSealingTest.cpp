// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/ItemSealingInternal.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using ZORPlatform::ItemSealing;
using Bytes = std::vector<std::uint8_t>;
using namespace std::string_view_literals;

constexpr auto kKey = [] {
    std::array<std::uint8_t, ItemSealing::kKeyBytes> key{};
    for (std::size_t i = 0; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(i);
    return key;
}();
constexpr std::string_view kIdentity = "genpservice";
constexpr std::string_view kAttributes = "attributes";

// Sealed by another implementation, as docs/item-store.md has the layout: the vector 00 to 0b, "a value" under
// AES-256-GCM with 00 00 00 0b "genpserviceattributes" as associated data, the tag.
constexpr std::string_view kSealed =
    "\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b"
    "\x26\x22\xa0\x7a\xa9\x90\xa7"
    "\xfa\xc9\x3f\x67\x6a\x77\xe9\x68\x54\x93\x2e\x20\xce\xa0\x9f\x68"sv;

Bytes bytes(std::string_view text) { return {text.begin(), text.end()}; }

TEST(ItemSealing, OpensWhatTheDocumentedLayoutSays) {
    EXPECT_EQ(ItemSealing(kKey).open(kIdentity, kAttributes, kSealed), bytes("a value"));
}

TEST(ItemSealing, OpensNothingOfWhichOneByteIsAnother) {
    ItemSealing sealing(kKey);
    for (std::size_t i = 0; i < kSealed.size(); ++i) {
        std::string changed(kSealed);
        changed[i] = static_cast<char>(changed[i] ^ 1);
        EXPECT_FALSE(sealing.open(kIdentity, kAttributes, changed)) << i;
    }
    EXPECT_EQ(sealing.open(kIdentity, kAttributes, kSealed), bytes("a value"));
}

TEST(ItemSealing, IdentityAndAttributesAreToldApart) {
    ItemSealing sealing(kKey);
    EXPECT_FALSE(sealing.open("genpservic", "eattributes", kSealed));
    EXPECT_FALSE(sealing.open("genpserviceattributes", "", kSealed));
    EXPECT_FALSE(sealing.open("", "genpserviceattributes", kSealed));
}

TEST(ItemSealing, OpensWhatItSealedWithoutIdentityAttributesOrValue) {
    ItemSealing sealing(kKey);
    for (const std::string_view identity : {""sv, kIdentity}) {
        for (const std::string_view attributes : {""sv, kAttributes}) {
            for (const Bytes& value : {Bytes(), Bytes(1), Bytes(1000, 7)}) {
                const auto sealed = sealing.seal(identity, attributes, value);
                ASSERT_TRUE(sealed);
                EXPECT_EQ(sealed->size(), value.size() + 28);
                EXPECT_EQ(sealing.open(identity, attributes, *sealed), value);
            }
        }
    }
}

}  // namespace
