// SPDX-License-Identifier: Apache-2.0
#pragma once

// Text at the library's edge: operations take and give UTF-16; programs and files mostly hold UTF-8.

#include <ZORPlatform/Foundation/Utf.h>

namespace ZORFoundation {

using ZORPlatform::isWellFormedUtf8;
using ZORPlatform::utf16;
using ZORPlatform::Utf16Buffer;
using ZORPlatform::utf16IfWellFormed;
using ZORPlatform::utf8;
using ZORPlatform::utf8IfWellFormed;

}  // namespace ZORFoundation
