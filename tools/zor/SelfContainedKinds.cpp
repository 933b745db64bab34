// SPDX-License-Identifier: Apache-2.0
//
// The kinds of zor-filter: those that need no locale data.

#include <tools/zor/KindGroups.h>

#include <array>

namespace zor {
namespace {

constexpr std::array kGroups{
    &kAccountKinds, &kPaymentKinds, &kIdentityKinds, &kInputKinds, &kDisplayKinds,
};

}  // namespace

std::span<const KindGroup* const> kindGroups() { return kGroups; }

}  // namespace zor
