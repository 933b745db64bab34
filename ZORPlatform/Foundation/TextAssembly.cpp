// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/TextAssembly.h>

namespace ZORPlatform {

// Apart from its callers, who know that the text is short: compilers then copy it word by word, which takes longer than
// the call.
std::u16string TextAssembly::zeros(std::size_t units) { return {kZeros.data(), units}; }

}  // namespace ZORPlatform
