// SPDX-License-Identifier: Apache-2.0
#pragma once

// The groups that there are; Kinds.cpp and SelfContainedKinds.cpp say which of them a program has.

#include <tools/zor/Kind.h>

namespace zor {

extern const KindGroup kAccountKinds;
extern const KindGroup kAmountKinds;
extern const KindGroup kPaymentKinds;
extern const KindGroup kIdentityKinds;
extern const KindGroup kInputKinds;
extern const KindGroup kDisplayKinds;

}  // namespace zor
