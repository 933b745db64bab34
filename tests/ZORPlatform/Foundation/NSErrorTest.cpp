// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSError.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

namespace ZORPlatform {
namespace {

using UserInfo = NSError::UserInfo;

TEST(NSError, KeepsDomainCodeAndUserInformation) {
    const UserInfo userInfo{{u"key", u"value"}};
    const NSError error(u"Domain", std::numeric_limits<std::int64_t>::min(), userInfo);
    EXPECT_EQ(error.domain(), u"Domain");
    EXPECT_EQ(error.code(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(error.userInfo(), userInfo);
}

TEST(NSError, UserInformationIsNeverAbsent) {
    EXPECT_TRUE(NSError(u"Domain", 1).userInfo().empty());
    EXPECT_TRUE(NSError(u"Domain", 1, std::nullopt).userInfo().empty());
}

TEST(NSError, TheTwoTextsComeFromTheirKeys) {
    const NSError error(u"Domain", 1, UserInfo{{u"NSLocalizedDescription", u"d"}, {u"NSLocalizedFailureReason", u"r"}});
    EXPECT_EQ(error.localizedDescription(), u"d");
    EXPECT_EQ(error.localizedFailureReason(), u"r");
    EXPECT_EQ(NSError(u"Domain", 1).localizedDescription(), std::nullopt);
    EXPECT_EQ(NSError(u"Domain", 1).localizedFailureReason(), std::nullopt);
}

TEST(NSError, EqualErrorsAgreeOnDomainCodeAndUserInformation) {
    const NSError error(u"Domain", 1, UserInfo{{u"key", u"value"}});
    EXPECT_EQ(error, NSError(u"Domain", 1, UserInfo{{u"key", u"value"}}));
    EXPECT_NE(error, NSError(u"domain", 1, UserInfo{{u"key", u"value"}}));
    EXPECT_NE(error, NSError(u"Domain", 2, UserInfo{{u"key", u"value"}}));
    EXPECT_NE(error, NSError(u"Domain", 1, UserInfo{{u"key", u"other"}}));
    EXPECT_NE(error, NSError(u"Domain", 1));
    EXPECT_EQ(NSError(u"Domain", 1), NSError(u"Domain", 1, UserInfo{}));
}

TEST(NSError, EqualErrorsHaveEqualHashes) {
    const NSError error(u"Domain", 1, UserInfo{{u"key", u"value"}});
    EXPECT_EQ(error.hash(), NSError(u"Domain", 1, UserInfo{{u"key", u"value"}}).hash());
    const std::unordered_set<NSError> set{error, error, NSError(u"Domain", 1), NSError(u"Domain", 2)};
    EXPECT_EQ(set.size(), 3U);
}

TEST(NSError, ACopyOutlivesTheOriginal) {
    std::optional<NSError> original(NSError(u"a domain that does not fit into a small text", 1));
    const NSError copy = *original;
    original.reset();
    EXPECT_EQ(copy.domain(), u"a domain that does not fit into a small text");
}

TEST(NSError, TheDescriptionIsUtf8ForLogs) {
    EXPECT_EQ(NSError(u"Domain", -7).description(), "Domain -7");
    EXPECT_EQ(NSError(u"Domain", 7, UserInfo{{u"NSLocalizedDescription", u"caf\u00E9"}}).description(),
              "Domain 7: caf\u00E9");
    EXPECT_EQ(NSError({u"x\xD800", 2}, 0).description(), "x\uFFFD 0");
}

}  // namespace
}  // namespace ZORPlatform
