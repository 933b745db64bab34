// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/ZORCardNumberFormatter.h>

namespace conformance {

using namespace ZORFoundation;

void registerCardNumberOperations(Operations& operations) {
    operations.add("ZORCardNumberFormatter.strippedCardNumber:",
                   [](const Arguments& a) { return ZORCardNumberFormatter::strippedCardNumber(a[0].text()); });
    operations.add("ZORCardNumberFormatter.formattedCardNumber:",
                   [](const Arguments& a) { return ZORCardNumberFormatter::formattedCardNumber(a[0].text()); });
    operations.add("ZORCardNumberFormatter.formattedCardNumberOptimal:",
                   [](const Arguments& a) { return ZORCardNumberFormatter::formattedCardNumberOptimal(a[0].text()); });
    operations.add("ZORCardNumberFormatter.formattedCreditCard:",
                   [](const Arguments& a) { return ZORCardNumberFormatter::formattedCreditCard(a[0].text()); });
    operations.add("ZORCardNumberFormatter.isValidCardNumber:",
                   [](const Arguments& a) { return ZORCardNumberFormatter::isValidCardNumber(a[0].text()); });
}

}  // namespace conformance
