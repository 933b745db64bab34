// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSException.h>

#include <gtest/gtest.h>

#include <exception>
#include <type_traits>

namespace ZORPlatform {
namespace {

TEST(NSException, IsToldByItsNameAndExplainedByItsReason) {
    const NSException exception(u"InvalidHashTypeException", u"caf\u00E9");
    EXPECT_EQ(exception.name(), u"InvalidHashTypeException");
    EXPECT_EQ(exception.reason(), u"caf\u00E9");
    EXPECT_STREQ(exception.what(), "InvalidHashTypeException: caf\u00E9");
}

TEST(NSException, IsAStandardException) {
    try {
        throw NSException(u"Name", u"Reason");
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(), "Name: Reason");
    }
}

TEST(NSException, CopyingCannotThrow) {
    static_assert(std::is_nothrow_copy_constructible_v<NSException>);
    static_assert(std::is_nothrow_copy_assignable_v<NSException>);
    NSException copy(u"Other", u"");
    {
        const NSException original(u"Name", u"Reason");
        copy = original;
    }
    EXPECT_EQ(copy.name(), u"Name");
    EXPECT_STREQ(copy.what(), "Name: Reason");
}

}  // namespace
}  // namespace ZORPlatform
