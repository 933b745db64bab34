// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORName.h>

#include <gtest/gtest.h>

namespace shop {

struct Account {
    virtual ~Account() = default;
};
struct Savings : Account {};
struct Basket {};

}  // namespace shop

namespace ZORFoundation {
namespace {

using ZORName::xun_className;

const TypeRegistration<shop::Account> kAccount(u"Account");
const TypeRegistration<shop::Savings, shop::Account> kSavings(u"Savings");

TEST(ZORName, AClassHasTheNameItIsRegisteredUnder) {
    EXPECT_EQ(xun_className<shop::Account>(), u"Account");
    EXPECT_EQ(xun_className<shop::Savings>(), u"Savings");
    EXPECT_EQ(xun_className<std::u16string>(), u"NSString");
}

TEST(ZORName, AnObjectHasTheNameOfItsOwnClass) {
    const shop::Savings savings;
    const shop::Account& account = savings;
    EXPECT_EQ(xun_className(savings), u"Savings");
    EXPECT_EQ(xun_className(account), u"Savings");
    EXPECT_EQ(xun_className(true), u"NSNumber");
}

TEST(ZORName, AClassThatIsNotRegisteredHasItsNameInCpp) {
    EXPECT_EQ(xun_className<shop::Basket>(), u"shop::Basket");
    EXPECT_EQ(xun_className(shop::Basket{}), u"shop::Basket");
}

}  // namespace
}  // namespace ZORFoundation
