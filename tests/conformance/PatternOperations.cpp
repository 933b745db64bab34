// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/StringPatterns.h>
#include <ZORFoundation/ZORPhoneNumberFormatter.h>

namespace conformance {

using namespace ZORFoundation;

void registerPatternOperations(Operations& operations) {
    operations.add("ZORPhoneNumberFormatter.formatPhoneNumber(_:)",
                   [](const Arguments& a) { return ZORPhoneNumberFormatter::formatPhoneNumber(a[0].text()); });
    operations.add("ZORPhoneNumberFormatter.formatPhoneNumber(_:token:)", [](const Arguments& a) {
        return ZORPhoneNumberFormatter::formatPhoneNumber(a[0].text(), a[1].text());
    });
    operations.add("String.formatTextWithPattern", [](const Arguments& a) {
        return StringExtension::formatTextWithPattern(a[0].text(), a[1].text(), a[2].text());
    });
    operations.add("String.zor_patternMatches(for:)",
                   [](const Arguments& a) { return StringExtension::zor_patternMatches(a[0].text(), a[1].text()); });
}

}  // namespace conformance
