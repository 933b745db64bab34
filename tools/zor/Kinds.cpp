// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/KindGroups.h>

#include <array>

namespace zor {
namespace {

constexpr std::array kGroups{
    &kAccountKinds, &kPaymentKinds, &kIdentityKinds, &kAmountKinds, &kInputKinds, &kDisplayKinds,
};

}  // namespace

std::span<const KindGroup* const> kindGroups() { return kGroups; }

}  // namespace zor
