// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSException.h>

#include <ZORPlatform/Foundation/Utf.h>

namespace ZORPlatform {

struct NSException::Texts {
    std::u16string name;
    std::u16string reason;
    std::string what;
};

NSException::NSException(std::u16string_view name, std::u16string_view reason)
    : texts_(std::make_shared<const Texts>(
          Texts{std::u16string(name), std::u16string(reason), utf8(name) + ": " + utf8(reason)})) {}

NSException::NSException(const NSException&) noexcept = default;
NSException& NSException::operator=(const NSException&) noexcept = default;
NSException::~NSException() = default;

const std::u16string& NSException::name() const noexcept { return texts_->name; }
const std::u16string& NSException::reason() const noexcept { return texts_->reason; }
const char* NSException::what() const noexcept { return texts_->what.c_str(); }

}  // namespace ZORPlatform
