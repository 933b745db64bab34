// SPDX-License-Identifier: Apache-2.0
//
// mappedErrorCodeFromError: over errors of all four domains and of an unknown one. The floor builds the same texts
// with the code known beforehand; the peer is the registry as a textbook has it: a hash table of texts, a shared mapper
// made for each error, no lock.

#include <benchmarks/Comparison.h>

#include <ZORFoundation/ErrorHandling/ZORError.h>
#include <ZORFoundation/ErrorHandling/ZORErrorHandler.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using namespace ZORFoundation;
using benchmarks::Comparison;

constexpr std::u16string_view kResponseDomain = u"com.alamofire.error.serialization.response";

const std::vector<NSError>& errors() {
    static const std::vector<NSError> list = [] {
        std::vector<NSError> made;
        for (std::int64_t i = 0; i < 1000; ++i) {
            made.push_back(ZORError::errorWithErrorCode(i - 20));
            made.push_back(ZORError::webSealErrorWithErrorCode(u"0x38cf04d7"));
            made.emplace_back(ZORPlatform::NSURLErrorDomain, -i);
            made.emplace_back(kResponseDomain, -i);
            made.emplace_back(u"com.example.other", i);
        }
        return made;
    }();
    return list;
}

namespace textbook {

std::u16string text(std::int64_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

struct Mapper {
    virtual ~Mapper() = default;
    virtual std::u16string map(const NSError& error) = 0;
};
struct CodeMapper : Mapper {
    std::u16string map(const NSError& error) override { return text(error.code()); }
};
struct UrlMapper : Mapper {
    std::u16string map(const NSError& error) override { return text(error.code() + 5123); }
};
struct DescriptionMapper : Mapper {
    std::u16string map(const NSError& error) override { return error.localizedDescription().value_or(u"(null)"); }
};

struct Entry {
    std::u16string prefix;
    std::function<std::shared_ptr<Mapper>()> makeMapper;
};

const std::unordered_map<std::u16string, Entry>& registry() {
    static const std::unordered_map<std::u16string, Entry> entries{
        {std::u16string(ZorXUNErrorDomain), {u"GEN", std::make_shared<CodeMapper>}},
        {std::u16string(ZorWebSealErrorDomain), {u"WS", std::make_shared<DescriptionMapper>}},
        {std::u16string(ZORPlatform::NSURLErrorDomain), {u"UR", std::make_shared<UrlMapper>}},
        {std::u16string(kResponseDomain), {u"UR", std::make_shared<UrlMapper>}},
    };
    return entries;
}

std::u16string mappedCode(const NSError& error) {
    const auto found = registry().find(error.domain());
    if (found == registry().end()) return u"(null)(null)";
    const Entry entry = found->second;
    return entry.prefix + entry.makeMapper()->map(error);
}

}  // namespace textbook

const Comparison kMapping = Comparison("mappedErrorCodeFromError:, five domains")
                                .itemsPerCall(errors().size())
                                .candidate([] {
                                    for (const NSError& error : errors()) {
                                        benchmark::DoNotOptimize(ZORErrorHandler::mappedErrorCodeFromError(error));
                                    }
                                })
                                .floor("prefix and a known code joined",
                                       [] {
                                           for (const NSError& error : errors()) {
                                               benchmark::DoNotOptimize(error.domain());
                                               std::u16string code = u"UR";
                                               benchmark::DoNotOptimize(code += u"4122");
                                           }
                                       })
                                .peer("textbook registry",
                                      [] {
                                          for (const NSError& error : errors())
                                              benchmark::DoNotOptimize(textbook::mappedCode(error));
                                      })
                                .expectedNanoseconds(150)
                                .add();

}  // namespace
