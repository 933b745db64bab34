// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/StringChecks.h>
#include <ZORFoundation/Validation/InputValidator.h>

#include <string>
#include <string_view>

namespace conformance {

using namespace ZORFoundation;

namespace {

CharacterLimits limits(const Value& value) {
    const auto [minChar, maxChar] = value.pair();
    return {minChar, maxChar};
}

void addRule(Operations& operations, std::string name, bool (*rule)(std::u16string_view)) {
    operations.add(std::move(name), [rule](const Arguments& a) { return rule(a[0].text()); });
}

}  // namespace

void registerInputValidationOperations(Operations& operations) {
    addRule(operations, "String.containsOnlyValidCharacters", StringExtension::containsOnlyValidCharacters);
    addRule(operations, "String.isValidBackendInputString", StringExtension::isValidBackendInputString);
    addRule(operations, "String.isValidMessageBody", StringExtension::isValidMessageBody);
    addRule(operations, "String.isValidResponse", StringExtension::isValidResponse);

    addRule(operations, "InputValidator.isValidEmail(_:)", InputValidator::isValidEmail);
    addRule(operations, "InputValidator.isValidMobilePhoneNumber(_:)", InputValidator::isValidMobilePhoneNumber);
    addRule(operations, "InputValidator.isValidBoxNumber(_:)", InputValidator::isValidBoxNumber);
    addRule(operations, "InputValidator.isValidHouseNumber(_:)", InputValidator::isValidHouseNumber);
    addRule(operations, "InputValidator.isValidStreet(_:)", InputValidator::isValidStreet);
    addRule(operations, "InputValidator.isValidBelgiumPostalCode(_:)", InputValidator::isValidBelgiumPostalCode);
    addRule(operations, "InputValidator.isValidBusinessName(_:)", InputValidator::isValidBusinessName);
    addRule(operations, "InputValidator.isValidPinChar(_:)", InputValidator::isValidPinChar);
    addRule(operations, "InputValidator.isValidNationalRegistrationNumber(_:)",
            InputValidator::isValidNationalRegistrationNumber);
    addRule(operations, "InputValidator.isValidIDCardNumber(_:)", InputValidator::isValidIDCardNumber);
    operations.add("InputValidator.isValidName(_:with:)", [](const Arguments& a) {
        return a[1].isAbsent() ? InputValidator::isValidName(a[0].text())
                               : InputValidator::isValidName(a[0].text(), limits(a[1]));
    });
    operations.add("InputValidator.isValidText(_:with:)",
                   [](const Arguments& a) { return InputValidator::isValidText(a[0].text(), limits(a[1])); });
    operations.add("InputValidator.isValidPostalCode(_:with:)",
                   [](const Arguments& a) { return InputValidator::isValidPostalCode(a[0].text(), limits(a[1])); });
}

}  // namespace conformance
