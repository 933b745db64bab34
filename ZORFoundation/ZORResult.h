// SPDX-License-Identifier: Apache-2.0
#pragma once

// The outcome of an application's own operation: a value, or an error that may say nothing more.
//
//     ZORResult<int> result = ZORResult<int>::success(3);
//     if (const int* value = result.ifSuccess()) { ... }
//     result.match([](int value) { ... }, [](const std::optional<Error>& error) { ... });

#include <ZORFoundation/ResultStorage.h>
#include <ZORPlatform/Foundation/Error.h>

#include <optional>
#include <utility>

namespace ZORFoundation {

using ZORPlatform::Error;

/// A success with a `Value`, or a failure with an error or none. Nothing in the library makes or takes one.
template <class Value>
class [[nodiscard]] ZORResult : public ResultStorage<Value, std::optional<Error>> {
    using Storage = ResultStorage<Value, std::optional<Error>>;

public:
    /// The case `success`.
    static ZORResult success(Value value) {
        return ZORResult(std::in_place_index<Storage::kSuccess>, std::move(value));
    }
    /// The case `error`, with an error of any type, or with none.
    static ZORResult error(std::optional<Error> error = std::nullopt) {
        return ZORResult(std::in_place_index<Storage::kFailure>, std::move(error));
    }

private:
    using Storage::Storage;
};

}  // namespace ZORFoundation
