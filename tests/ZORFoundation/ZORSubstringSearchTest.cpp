// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORSubstringSearch.h>

#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

using ZORSubstringSearch::zor_hasSubString;

TEST(ZORSubstringSearch, TheReceiverIsLowerCasedAndLosesItsSpaces) {
    EXPECT_TRUE(zor_hasSubString(u"Foo Bar", u"foobar"));
    EXPECT_TRUE(zor_hasSubString(u"Foo Bar", u"obar"));
    EXPECT_TRUE(zor_hasSubString(u"\u00C9COLE", u"\u00E9co"));
    EXPECT_FALSE(zor_hasSubString(u"Foo\u00A0Bar", u"foobar"));
}

TEST(ZORSubstringSearch, TheArgumentIsTakenAsItIs) {
    EXPECT_FALSE(zor_hasSubString(u"Foo Bar", u"FooBar"));
    EXPECT_FALSE(zor_hasSubString(u"Foo Bar", u"foo bar"));
    EXPECT_TRUE(zor_hasSubString(u"Foo\tBar", u"foo\tbar"));
}

TEST(ZORSubstringSearch, NothingIsNotFound) {
    EXPECT_FALSE(zor_hasSubString(u"Foo Bar", u""));
    EXPECT_FALSE(zor_hasSubString(u"Foo Bar", {}));
    EXPECT_FALSE(zor_hasSubString(u"", u"a"));
}

}  // namespace
}  // namespace ZORFoundation
