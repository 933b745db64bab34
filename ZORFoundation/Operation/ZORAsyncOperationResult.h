// SPDX-License-Identifier: Apache-2.0
#pragma once

// The outcome of an asynchronous operation: a value, or an error of any type.
//
//     if (const auto result = operation->result()) {
//         result->match([](int value) { show(value); }, [](const Error& error) { report(error); });
//     }

#include <ZORFoundation/ResultStorage.h>
#include <ZORPlatform/Foundation/Error.h>

#include <utility>

namespace ZORFoundation {

using ZORPlatform::Error;

/// `ZORAsyncOperationResult<T>`: `success` with a `T`, or `error` with an error, which is passed on untouched.
template <class T>
class [[nodiscard]] ZORAsyncOperationResult : public ResultStorage<T, Error> {
    using Storage = ResultStorage<T, Error>;

public:
    /// The case `success`.
    static ZORAsyncOperationResult success(T value) {
        return ZORAsyncOperationResult(std::in_place_index<Storage::kSuccess>, std::move(value));
    }
    /// The case `error`, with an error of any type.
    static ZORAsyncOperationResult error(Error error) {
        return ZORAsyncOperationResult(std::in_place_index<Storage::kFailure>, std::move(error));
    }

private:
    using Storage::Storage;
};

}  // namespace ZORFoundation
