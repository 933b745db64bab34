// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/KindRules.h>

namespace zor {

std::size_t writtenPosition(std::u16string_view text, std::u16string_view stripped, std::size_t position) {
    std::size_t at = 0;
    for (std::size_t kept = 0; at < text.size() && kept < stripped.size(); ++at) {
        if (text[at] != stripped[kept]) continue;
        if (kept == position) return at;
        ++kept;
    }
    return position < stripped.size() ? at : text.size();
}

}  // namespace zor
