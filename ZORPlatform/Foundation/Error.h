// SPDX-License-Identifier: Apache-2.0
#pragma once

// Any error value behind one type, passed through untouched and asked for by its own type.
//
//     Error error = NSError(u"be.example.frontend", 17);
//     if (const NSError* value = error.as<NSError>()) { ... value->code() ... }

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>

#include <concepts>
#include <exception>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

namespace ZORPlatform {

/// A shared handle on an error value of any type. Copies share the value; two handles are equal when they share it.
/// The value is immutable, so one may be read from several threads.
class ZOR_EXPORT Error {
public:
    /// Holds `value`: an `NSError`, an enumeration, or any other copyable or movable type.
    template <class Value>
    requires(!std::same_as<Value, Error>)
        Error(Value value)  // Implicit: an error of any type may stand where an Error is asked for.
        : box_(std::make_shared<const Holder<Value>>(std::move(value))) {}

    /// The held value when it is exactly a `Value`, else a null pointer. Lives as long as any handle on it.
    template <class Value>
    [[nodiscard]] const Value* as() const noexcept {
        if (*box_->type != typeid(Value)) return nullptr;
        return &static_cast<const Holder<Value>&>(*box_).value;
    }

    /// The type of the held value.
    [[nodiscard]] const std::type_info& type() const noexcept { return *box_->type; }

    friend bool operator==(const Error& left, const Error& right) noexcept { return left.box_ == right.box_; }

    // The public part ends here.
private:
    struct Box {
        const std::type_info* type;
    };
    template <class Value>
    struct Holder : Box {
        explicit Holder(Value held) : Box{&typeid(Value)}, value(std::move(held)) {}
        Value value;
    };

    // std::make_shared remembers how to destroy the Holder, so Box needs no virtual destructor.
    std::shared_ptr<const Box> box_;
};

/// The one exception that carries an error value out of an operation which is said to throw. `what()` gives domain,
/// code and description of a carried `NSError`, and the type's name for any other value; never the data at fault.
class ZOR_EXPORT ThrownError : public std::exception {
public:
    explicit ThrownError(Error error);
    ThrownError(const ThrownError&) noexcept;
    ThrownError& operator=(const ThrownError&) noexcept;
    ~ThrownError() override;

    [[nodiscard]] const Error& error() const noexcept { return error_; }
    [[nodiscard]] const char* what() const noexcept override;

private:
    Error error_;
    std::shared_ptr<const std::string> what_;
};

}  // namespace ZORPlatform
