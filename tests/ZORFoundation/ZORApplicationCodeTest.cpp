// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORApplicationCode.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

namespace ZORFoundation {
namespace {

using enum ZORApplicationCode;

constexpr std::pair<ZORApplicationCode, std::u16string_view> kCases[] = {
    {alpha, u"A031"},   {bravo, u"A037"}, {charlie, u"A039"}, {delta, u"A044"}, {echo, u"A048"},
    {foxtrot, u"A052"}, {golf, u"A054"},  {hotel, u"A064"},   {india, u"A065"}, {juliett, u"A066"},
};

TEST(ZORApplicationCode, EachCaseStandsForItsRawValue) {
    for (const auto& [code, text] : kCases) {
        EXPECT_EQ(rawValue(code), text);
        EXPECT_EQ(fromRawValue<ZORApplicationCode>(text), code);
    }
}

TEST(ZORApplicationCode, OrdinalsFollowTheDeclaration) {
    for (std::size_t ordinal = 0; ordinal < std::size(kCases); ++ordinal) {
        EXPECT_EQ(static_cast<std::size_t>(kCases[ordinal].first), ordinal);
    }
    static_assert(sizeof(ZORApplicationCode) == 1);
}

TEST(ZORApplicationCode, OnlyTheWholeTextInItsCaseIsARawValue) {
    for (const std::u16string_view text : {u"A032", u"a031", u"A03", u"", u"A0310", u" A031", u"B031", u"\uFF21031"}) {
        EXPECT_EQ(fromRawValue<ZORApplicationCode>(text), std::nullopt);
    }
    EXPECT_EQ(fromRawValue<ZORApplicationCode>(std::u16string_view(u"A031\0", 5)), std::nullopt);
}

TEST(ZORApplicationCode, IsKnownToTheCompiler) {
    static_assert(rawValue(juliett) == u"A066");
    static_assert(fromRawValue<ZORApplicationCode>(u"A066") == juliett);
    static_assert(!fromRawValue<ZORApplicationCode>(u"A032"));
}

TEST(ZORApplicationCode, IsAKeyOfHashTables) {
    std::unordered_map<ZORApplicationCode, std::u16string_view> names;
    for (const auto& [code, text] : kCases) names.emplace(code, text);
    EXPECT_EQ(names.size(), std::size(kCases));
    EXPECT_EQ(names.at(golf), u"A054");
}

}  // namespace
}  // namespace ZORFoundation
