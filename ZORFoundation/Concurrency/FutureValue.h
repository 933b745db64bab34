// SPDX-License-Identifier: Apache-2.0
#pragma once

// The outcome of a future: a value, or an error of any type.
//
//     future.whenResult([](const FutureValue<int>& outcome) {
//         outcome.match([](int value) { show(value); }, [](const Error& error) { report(error); });
//     });

#include <ZORFoundation/ResultStorage.h>
#include <ZORPlatform/Foundation/Error.h>

#include <utility>

namespace ZORFoundation {

using ZORPlatform::Error;

/// `FutureValue<T>`: `success` with a `T`, or `failure` with an error, which is passed on untouched.
template <class T>
class [[nodiscard]] FutureValue : public ResultStorage<T, Error> {
    using Storage = ResultStorage<T, Error>;

public:
    /// The case `success`.
    static FutureValue success(T value) {
        return FutureValue(std::in_place_index<Storage::kSuccess>, std::move(value));
    }
    /// The case `failure`, with an error of any type.
    static FutureValue failure(Error error) {
        return FutureValue(std::in_place_index<Storage::kFailure>, std::move(error));
    }

private:
    using Storage::Storage;
};

}  // namespace ZORFoundation
