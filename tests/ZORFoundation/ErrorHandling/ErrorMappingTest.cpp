// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ErrorMapping.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace ZORFoundation {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

class FixedMapper : public ZORErrorMapper {
public:
    std::u16string mapErrorCodeFromError(const NSError&) const override { return u"fixed"; }
};

ErrorMapping::Entry entry(std::u16string_view prefix) {
    return {std::u16string(prefix), [] { return std::make_unique<FixedMapper>(); }};
}

TEST(ErrorMapping, IsEmptyAtFirst) {
    const ErrorMapping mapping;
    EXPECT_THAT(mapping.keys(), IsEmpty());
    EXPECT_FALSE(mapping.contains(u"domain"));
    EXPECT_FALSE(mapping.find(u"domain").has_value());
}

TEST(ErrorMapping, FindsWhatWasSet) {
    ErrorMapping mapping;
    mapping.set(u"domain", entry(u"AB"));
    const auto found = mapping.find(u"domain");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->prefix, u"AB");
    EXPECT_EQ(found->mapper()->mapErrorCodeFromError(NSError(u"domain", 1)), u"fixed");
    EXPECT_TRUE(mapping.contains(u"domain"));
}

TEST(ErrorMapping, SettingReplacesTheWholeEntry) {
    ErrorMapping mapping;
    mapping.set(u"domain", entry(u"AB"));
    mapping.set(u"domain", {std::nullopt, nullptr});
    const auto found = mapping.find(u"domain");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->prefix, std::nullopt);
    EXPECT_FALSE(found->mapper);
    EXPECT_THAT(mapping.keys(), UnorderedElementsAre(u"domain"));
}

TEST(ErrorMapping, RemovingSaysWhetherThereWasAnEntry) {
    ErrorMapping mapping;
    mapping.set(u"domain", entry(u"AB"));
    EXPECT_TRUE(mapping.remove(u"domain"));
    EXPECT_FALSE(mapping.contains(u"domain"));
    EXPECT_FALSE(mapping.remove(u"domain"));
}

TEST(ErrorMapping, KeysAreExactUnitByUnit) {
    ErrorMapping mapping;
    const std::u16string withNul(u"a\0b", 3);
    mapping.set(u"Domain", entry(u"A"));
    mapping.set(u"", entry(u"B"));
    mapping.set(withNul, entry(u"C"));
    mapping.set(u"\u00E9", entry(u"D"));
    EXPECT_THAT(mapping.keys(), UnorderedElementsAre(u"Domain", u"", withNul, u"\u00E9"));
    EXPECT_FALSE(mapping.contains(u"domain"));
    EXPECT_FALSE(mapping.contains(u"a"));
    EXPECT_FALSE(mapping.contains(u"e\u0301"));
    EXPECT_EQ(mapping.find(u"")->prefix, u"B");
}

TEST(ErrorMapping, AnEntryGivenOutIsIndependentOfTheDictionary) {
    ErrorMapping mapping;
    mapping.set(u"domain", entry(u"AB"));
    auto found = mapping.find(u"domain");
    found->prefix = u"changed";
    EXPECT_EQ(mapping.find(u"domain")->prefix, u"AB");
    mapping.remove(u"domain");
    EXPECT_EQ(found->mapper()->mapErrorCodeFromError(NSError(u"domain", 1)), u"fixed");
}

/// What a factory holds may use the dictionary even while it is being destroyed.
struct LooksUpOnDestruction {
    explicit LooksUpOnDestruction(ErrorMapping& in) : mapping(in) {}
    ~LooksUpOnDestruction() { mapping.set(u"destroyed", {u"yes", nullptr}); }
    ErrorMapping& mapping;
};

TEST(ErrorMapping, AnEntryIsDestroyedWithTheDictionaryUnlocked) {
    ErrorMapping mapping;
    const auto holding = [&mapping] {
        return ErrorMapping::Entry{u"AB", [held = std::make_shared<LooksUpOnDestruction>(mapping)] {
                                       return std::make_unique<FixedMapper>();
                                   }};
    };
    mapping.set(u"domain", holding());
    mapping.set(u"domain", entry(u"CD"));
    EXPECT_TRUE(mapping.remove(u"destroyed"));
    mapping.set(u"domain", holding());
    EXPECT_TRUE(mapping.remove(u"domain"));
    EXPECT_TRUE(mapping.contains(u"destroyed"));
}

}  // namespace
}  // namespace ZORFoundation
