// SPDX-License-Identifier: Apache-2.0
//
// The three mappers that are registered from the start.
#include <ZORFoundation/ErrorHandling/ErrorMappers/XUNErrorMapper.h>
#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORUrlDomainErrorMapper.h>
#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORWebSealErrorMapper.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace ZORFoundation {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

template <class Mapper>
std::u16string mapped(std::int64_t code) {
    return Mapper().mapErrorCodeFromError(NSError(u"any domain", code));
}

TEST(XUNErrorMapper, GivesTheCodeInDecimal) {
    EXPECT_EQ(mapped<XUNErrorMapper>(0), u"0");
    EXPECT_EQ(mapped<XUNErrorMapper>(17), u"17");
    EXPECT_EQ(mapped<XUNErrorMapper>(-5), u"-5");
    EXPECT_EQ(mapped<XUNErrorMapper>(kLargest), u"9223372036854775807");
    EXPECT_EQ(mapped<XUNErrorMapper>(kSmallest), u"-9223372036854775808");
}

TEST(ZORUrlDomainErrorMapper, RaisesTheCodeBy5123) {
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(-1001), u"4122");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(-1009), u"4114");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(-1011), u"4112");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(-5123), u"0");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(-5124), u"-1");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(1), u"5124");
}

TEST(ZORUrlDomainErrorMapper, ASumBeyond64BitsGoesOnFromTheSmallest) {
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(kLargest - 5123), u"9223372036854775807");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(kLargest - 5122), u"-9223372036854775808");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(kLargest), u"-9223372036854770686");
    EXPECT_EQ(mapped<ZORUrlDomainErrorMapper>(kSmallest), u"-9223372036854770685");
}

TEST(ZORWebSealErrorMapper, GivesTheDescription) {
    const auto mappedUserInfo = [](NSError::UserInfo userInfo) {
        return ZORWebSealErrorMapper().mapErrorCodeFromError(NSError(u"any domain", 9, std::move(userInfo)));
    };
    EXPECT_EQ(mappedUserInfo({{u"NSLocalizedDescription", u"0x38cf04d7"}}), u"0x38cf04d7");
    EXPECT_EQ(mappedUserInfo({{u"NSLocalizedDescription", u""}}), u"");
    EXPECT_EQ(mappedUserInfo({{u"NSLocalizedFailureReason", u"reason"}}), u"(null)");
    EXPECT_EQ(mappedUserInfo({}), u"(null)");
}

TEST(ErrorMappers, HaveNames) {
    EXPECT_EQ(ZORPlatform::typeDescriptor<XUNErrorMapper>()->name(), u"XUNErrorMapper");
    EXPECT_EQ(ZORPlatform::typeDescriptor<ZORUrlDomainErrorMapper>()->name(), u"ZORUrlDomainErrorMapper");
    EXPECT_EQ(ZORPlatform::typeDescriptor<ZORWebSealErrorMapper>()->name(), u"ZORWebSealErrorMapper");
}

}  // namespace
}  // namespace ZORFoundation
