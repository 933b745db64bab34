// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSBundle.h>

#include <gtest/gtest.h>

#include <support/TranslationCatalogue.h>

#include <string>

namespace ZORPlatform {
namespace {

using support::TranslationCatalogue;

std::u16string localised(std::u16string_view key) { return NSBundle::mainBundle().localizedStringForKey(key); }

TEST(NSBundle, KeepsIdentifierAndResourceDirectory) {
    const NSBundle bundle(u"be.example.bank", "/resources");
    EXPECT_EQ(bundle.bundleIdentifier(), u"be.example.bank");
    EXPECT_EQ(bundle.resourceDirectory(), "/resources");
    EXPECT_EQ(NSBundle(std::nullopt, "").bundleIdentifier(), std::nullopt);
}

TEST(NSBundle, TheMainBundleIsWhatTheEnvironmentSaysAtThatMoment) {
    HostEnvironment::setMainBundleIdentifier(u"be.example.one");
    HostEnvironment::setMainResourceDirectory("/one");
    const NSBundle first = NSBundle::mainBundle();
    HostEnvironment::setMainBundleIdentifier(u"be.example.two");
    EXPECT_EQ(first.bundleIdentifier(), u"be.example.one");
    EXPECT_EQ(first.resourceDirectory(), "/one");
    EXPECT_EQ(NSBundle::mainBundle().bundleIdentifier(), u"be.example.two");
    HostEnvironment::setMainBundleIdentifier(std::nullopt);
    HostEnvironment::setMainResourceDirectory(std::nullopt);
}

TEST(NSBundle, WithoutATextDomainTheKeyComesBack) {
    EXPECT_EQ(localised(u"Success"), u"Success");
    EXPECT_EQ(localised(u""), u"");
}

TEST(NSBundle, WithoutACatalogueTheKeyComesBack) {
    HostEnvironment::setTextDomain("zor-test-no-such-domain");
    EXPECT_EQ(localised(u"Success"), u"Success");
    HostEnvironment::setTextDomain(std::nullopt);
}

TEST(NSBundle, AKeyIsTranslatedWhereTheCatalogueHoldsIt) {
    const TranslationCatalogue dutch("UTF-8", {{"Success", "Gelukt"}, {"Euro \u20AC", "\u20AC euro \U0001F600"}});
    EXPECT_EQ(localised(u"Success"), u"Gelukt");
    EXPECT_EQ(localised(u"Euro \u20AC"), u"\u20AC euro \U0001F600");
    EXPECT_EQ(localised(u"success"), u"success");
    EXPECT_EQ(localised(u"Unknown"), u"Unknown");
}

TEST(NSBundle, TheEmptyKeyIsNotTheCataloguesHeader) {
    const TranslationCatalogue dutch("UTF-8", {{"Success", "Gelukt"}});
    EXPECT_EQ(localised(u""), u"");
}

TEST(NSBundle, ACatalogueInAnotherEncodingIsReadAsUtf8) {
    const TranslationCatalogue dutch("ISO-8859-1", {{"Success", "R\xE9ussi"}});
    EXPECT_EQ(localised(u"Success"), u"R\u00E9ussi");
}

TEST(NSBundle, AKeyThatNoCatalogueCanHoldComesBackUnchanged) {
    const TranslationCatalogue dutch("UTF-8", {{"Success", "Gelukt"}, {"\uFFFD", "vervangen"}});
    const std::u16string withNul(u"Success\0x", 9);
    const std::u16string withLoneSurrogate(1, char16_t{0xD800});
    EXPECT_EQ(localised(withNul), withNul);
    EXPECT_EQ(localised(withLoneSurrogate), withLoneSurrogate);
}

TEST(NSBundle, ANewTextDomainCountsFromTheNextCall) {
    const TranslationCatalogue first("UTF-8", {{"Success", "Een"}});
    EXPECT_EQ(localised(u"Success"), u"Een");
    {
        const TranslationCatalogue second("UTF-8", {{"Success", "Twee"}});
        EXPECT_EQ(localised(u"Success"), u"Twee");
    }
    EXPECT_EQ(localised(u"Success"), u"Success");
}

}  // namespace
}  // namespace ZORPlatform
