// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <gtest/gtest.h>

#include <support/EnvironmentVariable.h>

#include <filesystem>
#include <optional>
#include <string>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;
using support::EnvironmentVariable;

TEST(HostEnvironment, DirectoriesFollowTheXdgVariables) {
    const EnvironmentVariable data("XDG_DATA_HOME", "/data");
    const EnvironmentVariable state("XDG_STATE_HOME", "/state");
    EXPECT_EQ(HostEnvironment::documentsDirectory(), "/data/ZORFoundation/Documents");
    EXPECT_EQ(HostEnvironment::mainResourceDirectory(), "/data/ZORFoundation/Resources");
    EXPECT_EQ(HostEnvironment::itemStorePath(), "/data/ZORFoundation/items.sqlite");
    EXPECT_EQ(HostEnvironment::stateDirectory(), "/state/ZORFoundation");
}

TEST(HostEnvironment, WithoutThemTheDefaultsLieBelowTheHomeDirectory) {
    const EnvironmentVariable home("HOME", "/home/somebody");
    for (const std::optional<std::string>& unusable :
         {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("relative/path")}) {
        const EnvironmentVariable data("XDG_DATA_HOME", unusable);
        const EnvironmentVariable state("XDG_STATE_HOME", unusable);
        EXPECT_EQ(HostEnvironment::documentsDirectory(), "/home/somebody/.local/share/ZORFoundation/Documents");
        EXPECT_EQ(HostEnvironment::stateDirectory(), "/home/somebody/.local/state/ZORFoundation");
    }
}

TEST(HostEnvironment, DefaultsAreAbsoluteInAnEmptyEnvironment) {
    const EnvironmentVariable home("HOME", std::nullopt);
    const EnvironmentVariable data("XDG_DATA_HOME", std::nullopt);
    const EnvironmentVariable state("XDG_STATE_HOME", std::nullopt);
    EXPECT_TRUE(HostEnvironment::documentsDirectory().is_absolute());
    EXPECT_TRUE(HostEnvironment::stateDirectory().is_absolute());
    EXPECT_TRUE(HostEnvironment::itemStorePath().is_absolute());
    EXPECT_TRUE(HostEnvironment::libraryResourceDirectory().is_absolute());
}

TEST(HostEnvironment, AChangeOfTheEnvironmentIsSeenAtTheNextCall) {
    const EnvironmentVariable first("XDG_DATA_HOME", "/one");
    EXPECT_EQ(HostEnvironment::documentsDirectory(), "/one/ZORFoundation/Documents");
    const EnvironmentVariable second("XDG_DATA_HOME", "/two");
    EXPECT_EQ(HostEnvironment::documentsDirectory(), "/two/ZORFoundation/Documents");
}

template <class Value>
void expectSetting(Value (*get)(), void (*set)(std::optional<Value>), const Value& value) {
    const Value before = get();
    set(value);
    EXPECT_EQ(get(), value);
    set(std::nullopt);
    EXPECT_EQ(get(), before);
}

TEST(HostEnvironment, EachPathIsSetAndReturnsToItsDefault) {
    const fs::path path = "/somewhere/else";
    expectSetting<fs::path>(&HostEnvironment::documentsDirectory, &HostEnvironment::setDocumentsDirectory, path);
    expectSetting<fs::path>(&HostEnvironment::libraryResourceDirectory, &HostEnvironment::setLibraryResourceDirectory,
                            path);
    expectSetting<fs::path>(&HostEnvironment::mainResourceDirectory, &HostEnvironment::setMainResourceDirectory, path);
    expectSetting<fs::path>(&HostEnvironment::stateDirectory, &HostEnvironment::setStateDirectory, path);
    expectSetting<fs::path>(&HostEnvironment::itemStorePath, &HostEnvironment::setItemStorePath, path);
}

TEST(HostEnvironment, IdentifierAndTextDomainAreAbsentUntilSet) {
    EXPECT_EQ(HostEnvironment::mainBundleIdentifier(), std::nullopt);
    EXPECT_EQ(HostEnvironment::textDomain(), std::nullopt);
    HostEnvironment::setMainBundleIdentifier(u"be.example.bank");
    HostEnvironment::setTextDomain("bank");
    EXPECT_EQ(HostEnvironment::mainBundleIdentifier(), u"be.example.bank");
    EXPECT_EQ(HostEnvironment::textDomain(), "bank");
    HostEnvironment::setMainBundleIdentifier(std::nullopt);
    HostEnvironment::setTextDomain(std::nullopt);
    EXPECT_EQ(HostEnvironment::mainBundleIdentifier(), std::nullopt);
    EXPECT_EQ(HostEnvironment::textDomain(), std::nullopt);
}

TEST(HostEnvironment, TheLocaleIsTheFirstThatTheEnvironmentNames) {
    const EnvironmentVariable all("LC_ALL", "");
    const EnvironmentVariable messages("LC_MESSAGES", std::nullopt);
    const EnvironmentVariable lang("LANG", "nl_BE.UTF-8");
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"nl_BE");
    const EnvironmentVariable nearer("LC_MESSAGES", "fr_BE@euro");
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"fr_BE");
    const EnvironmentVariable nearest("LC_ALL", "C.UTF-8");
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"en_US_POSIX");
    HostEnvironment::setLocaleIdentifier(u"de_BE");
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"de_BE");
    HostEnvironment::setLocaleIdentifier(std::nullopt);
    EXPECT_EQ(HostEnvironment::localeIdentifier(), u"en_US_POSIX");
}

}  // namespace
}  // namespace ZORPlatform
