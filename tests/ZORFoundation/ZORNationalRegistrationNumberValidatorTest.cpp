// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>

#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

TEST(ZORNationalRegistrationNumberValidator, AcceptsNumbersOfBothCenturies) {
    using Validator = ZORNationalRegistrationNumberValidator;
    EXPECT_TRUE(Validator::isValidNationalRegistrationNumber(u"90011775352"));
    EXPECT_TRUE(Validator::isValidNationalRegistrationNumber(u"03090368163"));
    EXPECT_TRUE(Validator::isValidNationalRegistrationNumber(u"00000000097"));
    EXPECT_FALSE(Validator::isValidNationalRegistrationNumber(u"00000000000"));
    EXPECT_FALSE(Validator::isValidNationalRegistrationNumber(u"90.01.17-753.52"));
}

TEST(ZORNationalRegistrationNumberValidator, KeepsARemainderOfZeroInADocumentNumber) {
    using Validator = ZORNationalRegistrationNumberValidator;
    EXPECT_TRUE(Validator::isValidNationalDocumentNumber(u"000000000000"));
    EXPECT_FALSE(Validator::isValidNationalDocumentNumber(u"000000000097"));
}

}  // namespace
}  // namespace ZORFoundation
