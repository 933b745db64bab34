// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/ZORAccessNumberValidator.h>
#include <ZORFoundation/ZORChallengeResponseFormatter.h>
#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>

namespace conformance {

using namespace ZORFoundation;

void registerIdentityNumberOperations(Operations& operations) {
    operations.add("ZORNationalRegistrationNumberValidator.isValidNationalRegistrationNumber:", [](const Arguments& a) {
        return ZORNationalRegistrationNumberValidator::isValidNationalRegistrationNumber(a[0].text());
    });
    operations.add("ZORNationalRegistrationNumberValidator.isValidNationalDocumentNumber:", [](const Arguments& a) {
        return ZORNationalRegistrationNumberValidator::isValidNationalDocumentNumber(a[0].text());
    });
    operations.add("ZORAccessNumberValidator.isAccessNumberValid:",
                   [](const Arguments& a) { return ZORAccessNumberValidator::isAccessNumberValid(a[0].text()); });
    operations.add("ZORChallengeResponseFormatter.formattedLoginCodeOptimal:", [](const Arguments& a) {
        return ZORChallengeResponseFormatter::formattedLoginCodeOptimal(a[0].text());
    });
    operations.add("ZORChallengeResponseFormatter.formattedChallenge:", [](const Arguments& a) {
        return ZORChallengeResponseFormatter::formattedChallenge(a[0].optionalText());
    });
}

}  // namespace conformance
