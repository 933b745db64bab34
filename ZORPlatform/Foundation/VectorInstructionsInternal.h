// SPDX-License-Identifier: Apache-2.0
#pragma once

// The compiler's names for the processor's vector instructions; nothing on other processors than x86-64.

#if defined(__x86_64__)
#if defined(__GNUC__) && !defined(__clang__)
// g++ 12 initialises its "undefined" vectors with themselves and then warns of it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#else
#include <immintrin.h>
#endif
#endif
