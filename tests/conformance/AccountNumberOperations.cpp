// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/StringChecks.h>
#include <ZORFoundation/ZORAccountNumberFormatter.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>
#include <ZORFoundation/ZORMod97.h>

namespace conformance {

using namespace ZORFoundation;

void registerAccountNumberOperations(Operations& operations) {
    operations.add("ZORMod97.modulo97:", [](const Arguments& a) { return ZORMod97::modulo97(a[0].text()); });
    operations.add("ZORAccountNumberValidator.isValidIban:",
                   [](const Arguments& a) { return ZORAccountNumberValidator::isValidIban(a[0].text()); });
    operations.add("ZORAccountNumberValidator.isValidBban:",
                   [](const Arguments& a) { return ZORAccountNumberValidator::isValidBban(a[0].text()); });
    operations.add("ZORAccountNumberFormatter.strippedAccountNumber:",
                   [](const Arguments& a) { return ZORAccountNumberFormatter::strippedAccountNumber(a[0].text()); });
    operations.add("ZORAccountNumberFormatter.formattedAccountNumberAsIban:", [](const Arguments& a) {
        return ZORAccountNumberFormatter::formattedAccountNumberAsIban(a[0].text());
    });
    operations.add("ZORAccountNumberFormatter.formattedAccountNumberAsBban:", [](const Arguments& a) {
        return ZORAccountNumberFormatter::formattedAccountNumberAsBban(a[0].text());
    });
    operations.add("ZORAccountNumberFormatter.formattedAccountNumber:asIban:", [](const Arguments& a) {
        return ZORAccountNumberFormatter::formattedAccountNumber(a[0].text(), a[1].boolean());
    });
    operations.add("ZORAccountNumberFormatter.autoFormattedAccountNumber:", [](const Arguments& a) {
        return ZORAccountNumberFormatter::autoFormattedAccountNumber(a[0].optionalText());
    });
    operations.add("String.isNumeric", [](const Arguments& a) { return StringExtension::isNumeric(a[0].text()); });
}

}  // namespace conformance
