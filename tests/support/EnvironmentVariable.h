// SPDX-License-Identifier: Apache-2.0
#pragma once

// A variable of the process's environment, set for the length of a test.

#include <stdlib.h>

#include <optional>
#include <string>

namespace support {

class EnvironmentVariable {
public:
    /// Sets the variable, or takes it away when `value` is absent, until this object goes.
    EnvironmentVariable(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
        if (const char* before = getenv(name_.c_str())) before_ = before;
        assign(value);
    }
    ~EnvironmentVariable() { assign(before_); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void assign(const std::optional<std::string>& value) const {
        if (value) {
            setenv(name_.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> before_;
};

}  // namespace support
