// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/ZORAsyncOperationResult.h>

#include <ZORFoundation/Concurrency/FutureValue.h>
#include <ZORFoundation/ZORResult.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace ZORFoundation {
namespace {

enum class Trouble { small, big };

TEST(ZORAsyncOperationResult, ASuccessHoldsItsValue) {
    const auto result = ZORAsyncOperationResult<int>::success(3);
    EXPECT_TRUE(result.isSuccess());
    ASSERT_NE(result.ifSuccess(), nullptr);
    EXPECT_EQ(*result.ifSuccess(), 3);
    EXPECT_EQ(result.ifFailure(), nullptr);
}

TEST(ZORAsyncOperationResult, AnErrorIsOfAnyTypeAndStaysUntouched) {
    const Error error = Trouble::big;
    const auto result = ZORAsyncOperationResult<int>::error(error);
    EXPECT_FALSE(result.isSuccess());
    EXPECT_EQ(result.ifSuccess(), nullptr);
    ASSERT_NE(result.ifFailure(), nullptr);
    EXPECT_EQ(*result.ifFailure(), error);
    EXPECT_EQ(*result.ifFailure()->as<Trouble>(), Trouble::big);
}

TEST(ZORAsyncOperationResult, AMoveOnlyValueCanBeTakenOut) {
    auto result = ZORAsyncOperationResult<std::unique_ptr<int>>::success(std::make_unique<int>(5));
    const std::unique_ptr<int> taken = std::move(result).match([](std::unique_ptr<int> value) { return value; },
                                                               [](const Error&) { return std::unique_ptr<int>(); });
    EXPECT_EQ(*taken, 5);
}

TEST(ZORAsyncOperationResult, IsNeverConvertedIntoTheOtherResultTypes) {
    using Result = ZORAsyncOperationResult<int>;
    static_assert(!std::is_convertible_v<Result, ZORResult<int>> && !std::is_convertible_v<ZORResult<int>, Result>);
    static_assert(!std::is_convertible_v<Result, FutureValue<int>> && !std::is_convertible_v<FutureValue<int>, Result>);
}

}  // namespace
}  // namespace ZORFoundation
