// SPDX-License-Identifier: Apache-2.0
#pragma once

// The operations that a vector may name. Each group of operations is registered by one function, in a source file of
// its own:
//
//     void registerMod97Operations(Operations& operations) {
//         operations.add("ZORMod97.modulo97:", [](const Arguments& a) { return ZORMod97::modulo97(a[0].text()); });
//     }

#include "Value.h"
#include "VectorFile.h"

#include <concepts>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace conformance {

/// The arguments of one case, the receiver first, and the world it runs in.
class Arguments {
public:
    explicit Arguments(const Case& from) : case_(from) {}

    /// Argument `index`, counted from 0. Throws WrongKind when the case has no such argument.
    [[nodiscard]] const Value& operator[](std::size_t index) const;

    [[nodiscard]] const Environment& environment() const noexcept { return case_.environment; }

    /// Whether the operation asked for the last argument, and so for all that it takes.
    [[nodiscard]] bool areUsed() const noexcept { return used_ == case_.arguments.size(); }

private:
    const Case& case_;
    mutable std::size_t used_ = 0;
};

class Operations {
public:
    using ErrorSlot = std::optional<ZORPlatform::NSError>;

    struct Operation {
        std::function<Value(const Arguments&, ErrorSlot*)> call;
        bool hasErrorSlot;
    };

    /// Registers an operation under its full name.
    ///
    /// @param call  takes the arguments and gives the result; an operation with an error out-parameter takes that as
    ///              its second argument. Exceptions are outcomes
    template <class Call>
    void add(std::string name, Call call) {
        if constexpr (std::invocable<Call, const Arguments&, ErrorSlot*>) {
            insert(std::move(name), {std::move(call), true});
        } else {
            insert(std::move(name),
                   {[call](const Arguments& arguments, ErrorSlot*) { return Value(call(arguments)); }, false});
        }
    }

    /// The operation, or null when the name is unknown.
    [[nodiscard]] const Operation* find(std::string_view name) const;

private:
    void insert(std::string name, Operation operation);

    std::map<std::string, Operation, std::less<>> byName_;
};

}  // namespace conformance
