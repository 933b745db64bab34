// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ErrorMappers/ZORErrorMapper.h>

namespace ZORFoundation {

ZORErrorMapper::~ZORErrorMapper() = default;

}  // namespace ZORFoundation
