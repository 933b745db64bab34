// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Precondition.h>

#include <gtest/gtest.h>

#include <csignal>

namespace ZORPlatform {
namespace {

TEST(PreconditionDeathTest, TheMessageIsTheOnlyLineAndTheProcessAborts) {
    EXPECT_EXIT(preconditionFailure("operation: condition"), testing::KilledBySignal(SIGABRT),
                "^operation: condition\n$");
}

TEST(PreconditionDeathTest, NothingInTheMessageIsInterpreted) {
    EXPECT_EXIT(preconditionFailure("operation: %s %n \u20AC"), testing::KilledBySignal(SIGABRT),
                "^operation: %s %n \u20AC\n$");
}

}  // namespace
}  // namespace ZORPlatform
