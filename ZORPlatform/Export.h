// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the shared library makes public. Everything is compiled with hidden visibility; a declaration marked
// ZOR_EXPORT is part of the binary interface.

#include <version>

#if defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI
#error "ZORFoundation passes std::string across its boundary in the C++11 ABI: build with _GLIBCXX_USE_CXX11_ABI=1"
#endif

#define ZOR_EXPORT __attribute__((visibility("default")))
