// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ZORErrorHandler.h>

#include <ZORFoundation/ErrorHandling/ErrorMappers/XUNErrorMapper.h>
#include <ZORFoundation/ErrorHandling/ZORError.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZORFoundation {
namespace {

using ZORPlatform::NSURLErrorDomain;

constexpr std::u16string_view kResponseDomain = u"com.alamofire.error.serialization.response";

class DoublingMapper : public ZORErrorMapper {
public:
    std::u16string mapErrorCodeFromError(const NSError& error) const override {
        return std::u16string(static_cast<std::size_t>(error.code()), u'2');
    }
};

class CountedMapper : public ZORErrorMapper {
public:
    CountedMapper() {
        ++made;
        ++alive;
    }
    ~CountedMapper() override { --alive; }
    std::u16string mapErrorCodeFromError(const NSError&) const override {
        EXPECT_EQ(alive, 1);
        return u"counted";
    }
    static inline int made = 0;
    static inline int alive = 0;
};

std::u16string mapped(std::u16string_view domain, std::int64_t code) {
    return ZORErrorHandler::mappedErrorCodeFromError(NSError(domain, code));
}

/// Gives the registry back the entries that it had.
class ZORErrorHandlerTest : public testing::Test {
protected:
    ~ZORErrorHandlerTest() override {
        ErrorMapping& mapping = ZORErrorHandler::errorMapping();
        for (const std::u16string& domain : mapping.keys()) mapping.remove(domain);
        for (auto& [domain, entry] : before_) mapping.set(domain, std::move(entry));
    }

private:
    std::vector<std::pair<std::u16string, ErrorMapping::Entry>> before_ = [] {
        std::vector<std::pair<std::u16string, ErrorMapping::Entry>> entries;
        const ErrorMapping& mapping = ZORErrorHandler::errorMapping();
        for (const std::u16string& domain : mapping.keys()) entries.emplace_back(domain, *mapping.find(domain));
        return entries;
    }();
};

TEST_F(ZORErrorHandlerTest, FourDomainsAreRegisteredFromTheStart) {
    EXPECT_THAT(
        ZORErrorHandler::errorMapping().keys(),
        testing::UnorderedElementsAre(ZorXUNErrorDomain, ZorWebSealErrorDomain, NSURLErrorDomain, kResponseDomain));
}

TEST_F(ZORErrorHandlerTest, TheMappingIsTheRegistryItselfAndNotACopy) {
    EXPECT_EQ(&ZORErrorHandler::errorMapping(), &ZORErrorHandler::errorMapping());
    ZORErrorHandler::errorMapping().remove(NSURLErrorDomain);
    EXPECT_EQ(mapped(NSURLErrorDomain, -1001), u"(null)(null)");
}

TEST_F(ZORErrorHandlerTest, FrontendErrorsGiveGenAndTheCode) {
    EXPECT_EQ(mapped(ZorXUNErrorDomain, 0), u"GEN0");
    EXPECT_EQ(mapped(ZorXUNErrorDomain, -5), u"GEN-5");
    EXPECT_EQ(ZORErrorHandler::mappedErrorCodeFromError(ZORError::errorWithErrorCode(17)), u"GEN17");
}

TEST_F(ZORErrorHandlerTest, UrlAndResponseErrorsAreNumberedInOneSeries) {
    EXPECT_EQ(mapped(NSURLErrorDomain, -1001), u"UR4122");
    EXPECT_EQ(mapped(NSURLErrorDomain, -1009), u"UR4114");
    EXPECT_EQ(mapped(kResponseDomain, -1016), u"UR4107");
}

TEST_F(ZORErrorHandlerTest, WebSealErrorsGiveWsAndTheCodeText) {
    EXPECT_EQ(ZORErrorHandler::mappedErrorCodeFromError(ZORError::webSealErrorWithErrorCode(u"0x38cf04d7")),
              u"WS0x38cf04d7");
    EXPECT_EQ(mapped(ZorWebSealErrorDomain, 3), u"WS(null)");
}

TEST_F(ZORErrorHandlerTest, AnUnknownDomainAndAMissingErrorGiveNullTwice) {
    EXPECT_EQ(mapped(u"com.example.other", 3), u"(null)(null)");
    EXPECT_FALSE(ZORErrorHandler::isErrorDomainMappedForError(NSError(u"com.example.other", 3)));
    EXPECT_EQ(ZORErrorHandler::mappedErrorCodeFromError(std::nullopt), u"(null)(null)");
    EXPECT_FALSE(ZORErrorHandler::isErrorDomainMappedForError(std::nullopt));
}

TEST_F(ZORErrorHandlerTest, DomainsAreComparedExactly) {
    for (const std::u16string_view domain : {u"nsurlerrordomain", u"NSURLErrorDomain ", u""}) {
        EXPECT_EQ(mapped(domain, -1001), u"(null)(null)");
        EXPECT_FALSE(ZORErrorHandler::isErrorDomainMappedForError(NSError(domain, 1)));
    }
    EXPECT_TRUE(ZORErrorHandler::isErrorDomainMappedForError(NSError(NSURLErrorDomain, 1)));
}

TEST_F(ZORErrorHandlerTest, ARegisteredMapperReplacesTheWholeDefaultEntry) {
    ZORErrorHandler::registerErrorMapper<DoublingMapper>(u"XY", ZorXUNErrorDomain);
    EXPECT_EQ(mapped(ZorXUNErrorDomain, 3), u"XY222");
    EXPECT_EQ(ZORErrorHandler::errorMapping().keys().size(), 4U);
}

TEST_F(ZORErrorHandlerTest, MappersOfFurtherDomainsJoinTheFirstOnes) {
    ZORErrorHandler::registerErrorMapper<XUNErrorMapper>(u"", u"com.example.plain");
    EXPECT_EQ(mapped(u"com.example.plain", 7), u"7");
    EXPECT_EQ(mapped(NSURLErrorDomain, -1001), u"UR4122");
}

TEST_F(ZORErrorHandlerTest, AFactoryMayCarryWhatItsMappersNeed) {
    class NamedMapper : public ZORErrorMapper {
    public:
        explicit NamedMapper(std::u16string name) : name_(std::move(name)) {}
        std::u16string mapErrorCodeFromError(const NSError&) const override { return name_; }

    private:
        std::u16string name_;
    };
    ZORErrorHandler::registerErrorMapper([] { return std::make_unique<NamedMapper>(u"-name"); }, u"N",
                                         u"com.example.n");
    EXPECT_EQ(mapped(u"com.example.n", 7), u"N-name");
}

TEST_F(ZORErrorHandlerTest, AMapperIsMadeForEveryCallAndDroppedAfterIt) {
    ZORErrorHandler::registerErrorMapper<CountedMapper>(u"C", u"com.example.counted");
    CountedMapper::made = 0;
    for (int call = 1; call <= 3; ++call) {
        EXPECT_EQ(mapped(u"com.example.counted", 1), u"Ccounted");
        EXPECT_EQ(CountedMapper::made, call);
        EXPECT_EQ(CountedMapper::alive, 0);
    }
}

TEST_F(ZORErrorHandlerTest, EachMissingPieceOfAnEntryIsWrittenAsNull) {
    ErrorMapping& mapping = ZORErrorHandler::errorMapping();
    const auto makeMapper = [] { return std::make_unique<XUNErrorMapper>(); };
    mapping.set(u"no prefix", {std::nullopt, makeMapper});
    mapping.set(u"no mapper", {u"P", nullptr});
    mapping.set(u"null mapper", {u"P", [] { return std::unique_ptr<ZORErrorMapper>(); }});
    mapping.set(u"nothing", {});
    EXPECT_EQ(mapped(u"no prefix", 4), u"(null)4");
    EXPECT_EQ(mapped(u"no mapper", 4), u"P(null)");
    EXPECT_EQ(mapped(u"null mapper", 4), u"P(null)");
    EXPECT_EQ(mapped(u"nothing", 4), u"(null)(null)");
    EXPECT_TRUE(ZORErrorHandler::isErrorDomainMappedForError(NSError(u"nothing", 4)));
}

TEST_F(ZORErrorHandlerTest, AFactoryMayChangeTheRegistryItStandsIn) {
    ZORErrorHandler::registerErrorMapper(
        [] {
            ZORErrorHandler::registerErrorMapper<XUNErrorMapper>(u"TWO", u"com.example.once");
            return std::make_unique<XUNErrorMapper>();
        },
        u"ONE", u"com.example.once");
    EXPECT_EQ(mapped(u"com.example.once", 1), u"ONE1");
    EXPECT_EQ(mapped(u"com.example.once", 1), u"TWO1");
}

TEST(ZORErrorHandlerDeathTest, AMissingArgumentOfARegistrationStopsWithTheOperationsName) {
    EXPECT_DEATH(ZORErrorHandler::registerErrorMapper(ErrorMapperFactory(), u"P", u"D"),
                 "^registerErrorMapper: the mapper is missing");
    EXPECT_DEATH(ZORErrorHandler::registerErrorMapper<XUNErrorMapper>(std::nullopt, u"D"),
                 "^registerErrorMapper: the prefix is missing");
    EXPECT_DEATH(ZORErrorHandler::registerErrorMapper<XUNErrorMapper>(u"P", std::nullopt),
                 "^registerErrorMapper: the error domain is missing");
}

}  // namespace
}  // namespace ZORFoundation
