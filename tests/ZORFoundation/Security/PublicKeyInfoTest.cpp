// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Security/PublicKeyInfoInternal.h>

#include <gtest/gtest.h>

#include <support/Certificates.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ZORFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::optional<Bytes> keyIn(const Bytes& info) {
    const auto key = rsaPublicKeyIn(info);
    if (!key) return std::nullopt;
    return Bytes(key->begin(), key->end());
}

Bytes joined(std::initializer_list<Bytes> pieces) {
    Bytes all;
    for (const Bytes& piece : pieces) all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

// Only the first of the algorithm's fifteen bytes matters.
const Bytes kAlgorithm = joined({{0x30}, Bytes(14, 0xEE)});
const Bytes kKey = {0x30, 0x01, 0x02};

TEST(PublicKeyInfo, FindsKeysOfEveryUsualSize) {
    // Lengths in one byte, in two and in three.
    for (const std::size_t bits : {512U, 768U, 1024U, 2048U}) {
        const support::PrivateKey key = support::PrivateKey::rsa(bits);
        EXPECT_EQ(keyIn(key.publicKeyInfo()), key.publicKey()) << bits;
    }
}

TEST(PublicKeyInfo, OfAnotherKindThereIsNoKey) {
    EXPECT_EQ(keyIn(support::PrivateKey::ellipticCurve().publicKeyInfo()), std::nullopt);
    EXPECT_EQ(keyIn(support::PrivateKey::rsa(512).publicKey()), std::nullopt);
}

TEST(PublicKeyInfo, LengthsAreOnlyPassedOver) {
    EXPECT_EQ(keyIn(joined({{0x30, 0x00}, kAlgorithm, {0x03, 0x7F, 0x00}, kKey})), kKey);
    EXPECT_EQ(keyIn(joined({{0x30, 0x80}, kAlgorithm, {0x03, 0x80, 0x00}, kKey})), kKey) << "no bytes follow 0x80";
    EXPECT_EQ(keyIn(joined({{0x30, 0x81, 0xFF}, kAlgorithm, {0x03, 0x83, 1, 2, 3, 0x00}, kKey})), kKey);
    EXPECT_EQ(keyIn(joined({{0x30, 0xFF}, Bytes(0x7F), kAlgorithm, {0x03, 0xFF}, Bytes(0x7F), {0x00}, kKey})), kKey);
}

TEST(PublicKeyInfo, WhatFollowsTheKeyIsPartOfIt) {
    const Bytes longer = joined({kKey, {0xDE, 0xAD}});
    EXPECT_EQ(keyIn(joined({{0x30, 0x15}, kAlgorithm, {0x03, 0x04, 0x00}, longer})), longer);
}

TEST(PublicKeyInfo, EveryByteOnTheWayIsChecked) {
    const Bytes good = joined({{0x30, 0x00}, kAlgorithm, {0x03, 0x00, 0x00}, kKey});
    ASSERT_EQ(keyIn(good), kKey);
    for (const std::size_t checked : {0U, 2U, 17U, 19U}) {
        Bytes bad = good;
        bad[checked] ^= 0x40;
        EXPECT_EQ(keyIn(bad), std::nullopt) << checked;
    }
    for (std::size_t passedOver = 3; passedOver < 17; ++passedOver) {
        Bytes other = good;
        other[passedOver] ^= 0x40;
        EXPECT_EQ(keyIn(other), kKey) << passedOver;
    }
}

TEST(PublicKeyInfo, TheKeyHasOneByteAtLeast) {
    const Bytes good = joined({{0x30, 0x00}, kAlgorithm, {0x03, 0x00, 0x00}, {0x99}});
    EXPECT_EQ(keyIn(good), Bytes{0x99});
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_EQ(keyIn(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length))), std::nullopt);
    }
    EXPECT_EQ(keyIn(joined({{0x30, 0x00}, kAlgorithm, {0x03, 0xFF, 0x00, 0x99}})), std::nullopt)
        << "a length that leads beyond the end";
    EXPECT_EQ(keyIn(joined({{0x30, 0xFF}, kAlgorithm, {0x03, 0x00, 0x00, 0x99}})), std::nullopt);
}

}  // namespace
}  // namespace ZORFoundation
