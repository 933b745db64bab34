// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/Kind.h>

namespace zor {

const Kind* findKind(std::string_view name) {
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) {
            if (kind.name == name) return &kind;
        }
    }
    return nullptr;
}

}  // namespace zor
