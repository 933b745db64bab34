// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ErrorMappers/XUNErrorMapper.h>
#include <ZORFoundation/ErrorHandling/ZORErrorHandler.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace ZORFoundation {
namespace {

using ZORPlatform::NSURLErrorDomain;

TEST(ErrorMappingThreads, TheFirstUseByManyThreadsGivesOneRegistryWithItsDefaults) {
    constexpr std::ptrdiff_t kThreads = 8;
    std::latch start(kThreads);
    std::vector<ErrorMapping*> seen(kThreads);
    std::vector<std::u16string> codes(kThreads);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < seen.size(); ++i) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                codes[i] = ZORErrorHandler::mappedErrorCodeFromError(NSError(NSURLErrorDomain, -1001));
                seen[i] = &ZORErrorHandler::errorMapping();
            });
        }
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), seen.front()), kThreads);
    EXPECT_EQ(std::count(codes.begin(), codes.end(), u"UR4122"), kThreads);
}

TEST(ErrorMappingThreads, ErrorsAreMappedWhileOtherThreadsRegister) {
    constexpr int kRounds = 2000;
    constexpr std::u16string_view kChanging = u"com.example.changing";
    std::atomic<int> wrong = 0;
    std::latch start(4);
    {
        std::vector<std::jthread> threads;
        for (const std::u16string_view prefix : {u"A-PREFIX-OF-SOME-LENGTH", u"B"}) {
            threads.emplace_back([&, prefix] {
                start.arrive_and_wait();
                for (int round = 0; round < kRounds; ++round) {
                    ZORErrorHandler::registerErrorMapper<XUNErrorMapper>(prefix, kChanging);
                    if (round % 8 == 0) ZORErrorHandler::errorMapping().remove(kChanging);
                }
            });
        }
        for (int reader = 0; reader < 2; ++reader) {
            threads.emplace_back([&] {
                const NSError changing(kChanging, 7);
                const NSError constant(NSURLErrorDomain, -1001);
                start.arrive_and_wait();
                for (int round = 0; round < kRounds; ++round) {
                    // An entry is seen whole or not at all.
                    const std::u16string code = ZORErrorHandler::mappedErrorCodeFromError(changing);
                    const bool known = code == u"A-PREFIX-OF-SOME-LENGTH7" || code == u"B7" || code == u"(null)(null)";
                    const bool steady = ZORErrorHandler::mappedErrorCodeFromError(constant) == u"UR4122" &&
                                        ZORErrorHandler::isErrorDomainMappedForError(constant) &&
                                        ZORErrorHandler::errorMapping().keys().size() >= 4;
                    if (!known || !steady) ++wrong;
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
    ZORErrorHandler::errorMapping().remove(kChanging);
}

}  // namespace
}  // namespace ZORFoundation
