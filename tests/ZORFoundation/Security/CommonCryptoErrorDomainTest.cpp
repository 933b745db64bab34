// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Security/CommonCryptoErrorDomain.h>

#include <gtest/gtest.h>

#include <support/TranslationCatalogue.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace ZORFoundation {
namespace {

using CommonCryptoErrorDomain::errorWithCCCryptorStatus;
using CommonCryptoErrorDomain::securityErrorWith;

TEST(CommonCryptoErrorDomain, KnownFailuresHaveADescriptionAndAReason) {
    struct Row {
        std::int32_t status;
        std::u16string description;
        std::u16string reason;
    };
    for (const Row& row : {
             Row{-4300, u"Parameter Error", u"Illegal parameter supplied to encryption/decryption algorithm"},
             Row{-4301, u"Buffer Too Small", u"Insufficient buffer provided for specified operation"},
             Row{-4302, u"Memory Failure", u"Failed to allocate memory"},
             Row{-4303, u"Alignment Error", u"Input size to encryption algorithm was not aligned correctly"},
             Row{-4304, u"Decode Error", u"Input data did not decode or decrypt correctly"},
             Row{-4305, u"Unimplemented Function", u"Function not implemented for the current algorithm"},
         }) {
        const NSError error = errorWithCCCryptorStatus(row.status);
        EXPECT_EQ(error.domain(), kCommonCryptoErrorDomain);
        EXPECT_EQ(error.code(), row.status);
        EXPECT_EQ(error.localizedDescription(), row.description);
        EXPECT_EQ(error.localizedFailureReason(), row.reason);
    }
}

TEST(CommonCryptoErrorDomain, OtherStatusesHaveNoReason) {
    for (const std::int32_t status : {-4299, -4306, -1, 1, 4304, std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max()}) {
        const NSError error = errorWithCCCryptorStatus(status);
        EXPECT_EQ(error.code(), status);
        EXPECT_EQ(error.localizedDescription(), u"Unknown Error");
        EXPECT_EQ(error.localizedFailureReason(), std::nullopt);
    }
}

TEST(CommonCryptoErrorDomain, SuccessIsAnErrorValueToo) {
    const NSError error = errorWithCCCryptorStatus(0);
    EXPECT_EQ(error.code(), 0);
    EXPECT_EQ(error.localizedDescription(), u"Success");
    EXPECT_EQ(error.userInfo().size(), 1U);
}

TEST(CommonCryptoErrorDomain, CipherTextsAreTranslatedAndSecurityMessagesAreNot) {
    const support::TranslationCatalogue dutch("UTF-8",
                                              {{"Decode Error", "Leesfout"},
                                               {"Input data did not decode or decrypt correctly", "Onleesbaar"},
                                               {"No key", "Geen sleutel"}});
    EXPECT_EQ(errorWithCCCryptorStatus(-4304).localizedDescription(), u"Leesfout");
    EXPECT_EQ(errorWithCCCryptorStatus(-4304).localizedFailureReason(), u"Onleesbaar");
    EXPECT_EQ(errorWithCCCryptorStatus(-4303).localizedDescription(), u"Alignment Error");
    EXPECT_EQ(securityErrorWith(u"No key").localizedDescription(), u"No key");
}

TEST(CommonCryptoErrorDomain, SecurityErrorsShareCodeZeroAndDifferInTheirMessage) {
    EXPECT_EQ(securityErrorWith(u"No key"),
              NSError(kSecurityErrorDomain, 0, NSError::UserInfo{{u"NSLocalizedDescription", u"No key"}}));
    EXPECT_NE(securityErrorWith(u""), securityErrorWith(u"No key"));
}

TEST(CommonCryptoErrorDomain, TheDomainsAreFixedTexts) {
    EXPECT_EQ(kCommonCryptoErrorDomain, u"CommonCryptoErrorDomain");
    EXPECT_EQ(kSecurityErrorDomain, u"ZorSecurityErrorDomain");
}

TEST(CommonCryptoErrorDomainDeathTest, AMissingMessageStopsWithTheOperationsName) {
    EXPECT_DEATH((void)securityErrorWith(std::nullopt), "^securityErrorWith: ");
}

}  // namespace
}  // namespace ZORFoundation
