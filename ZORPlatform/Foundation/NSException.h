// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's exceptions: raised for a programming error that has a name of its own, where the process need
// not stop.

#include <ZORPlatform/Export.h>

#include <exception>
#include <memory>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// An exception of the platform: a name to tell it by and a reason for people. `what()` is "name: reason" in UTF-8.
/// Copies share their texts, so copying cannot throw.
class ZOR_EXPORT NSException : public std::exception {
public:
    NSException(std::u16string_view name, std::u16string_view reason);
    NSException(const NSException&) noexcept;
    NSException& operator=(const NSException&) noexcept;
    ~NSException() override;

    /// `name`: for example u"NSInvalidArgumentException".
    [[nodiscard]] const std::u16string& name() const noexcept;
    /// `reason`: the explanation.
    [[nodiscard]] const std::u16string& reason() const noexcept;
    [[nodiscard]] const char* what() const noexcept override;

private:
    struct Texts;
    std::shared_ptr<const Texts> texts_;
};

}  // namespace ZORPlatform
