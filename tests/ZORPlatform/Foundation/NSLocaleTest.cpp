// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSLocale.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace ZORPlatform {
namespace {

TEST(NSLocale, KeepsItsIdentifierAsGiven) {
    NSLocale locale(u"nl-BE");
    const NSLocale moved = std::move(locale);
    EXPECT_EQ(moved.localeIdentifier(), u"nl-BE");
    EXPECT_EQ(moved, NSLocale(u"nl-BE"));
    EXPECT_FALSE(moved == NSLocale(u"nl_BE"));
}

TEST(NSLocale, CurrentOneIsTheHostEnvironments) {
    HostEnvironment::setLocaleIdentifier(u"fr_BE");
    EXPECT_EQ(NSLocale::currentLocale(), NSLocale(u"fr_BE"));
    HostEnvironment::setLocaleIdentifier(std::nullopt);
}

TEST(HostEnvironment, ReadsTheLocaleFromTheEnvironment) {
    unsetenv("LC_MESSAGES");
    unsetenv("LC_ALL");
    setenv("LANG", "de_BE.UTF-8", 1);
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"de_BE");
    setenv("LC_MESSAGES", "nl_BE@euro", 1);
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"nl_BE");
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"en_US_POSIX");
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"nl_BE");
    unsetenv("LC_ALL");
    unsetenv("LC_MESSAGES");
    unsetenv("LANG");
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"en_US_POSIX");
}

}  // namespace
}  // namespace ZORPlatform
