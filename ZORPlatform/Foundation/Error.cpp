// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Error.h>

namespace ZORPlatform {

ThrownError::ThrownError(Error error)
    : error_(std::move(error)), what_([this] {
          const NSError* value = error_.as<NSError>();
          return std::make_shared<const std::string>(value ? value->description() : error_.type().name());
      }()) {}

ThrownError::ThrownError(const ThrownError&) noexcept = default;
ThrownError& ThrownError::operator=(const ThrownError&) noexcept = default;
ThrownError::~ThrownError() = default;

const char* ThrownError::what() const noexcept { return what_->c_str(); }

}  // namespace ZORPlatform
