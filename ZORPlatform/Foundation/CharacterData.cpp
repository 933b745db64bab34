// SPDX-License-Identifier: Apache-2.0
//
// For a self-contained program: in place of ICU's 31 MB of data, only that by which characters are told apart. A
// service that needs more reports it missing.

#include <unicode/utypes.h>

#define ZOR_TEXT_OF(name) #name
#define ZOR_TEXT(name) ZOR_TEXT_OF(name)

// The package stands in memory as it does in its file; ICU finds it by the name of this symbol.
__asm__(".section .rodata\n.balign 16\n.global " ZOR_TEXT(U_ICUDATA_ENTRY_POINT) "\n"  //
        ZOR_TEXT(U_ICUDATA_ENTRY_POINT) ":\n.incbin \"" ZOR_CHARACTER_DATA "\"\n.balign 16\n");
