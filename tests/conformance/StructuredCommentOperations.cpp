// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/StringChecks.h>
#include <ZORFoundation/ZORCommentFormatter.h>
#include <ZORFoundation/ZORCommentValidator.h>

namespace conformance {

using namespace ZORFoundation;

void registerStructuredCommentOperations(Operations& operations) {
    operations.add("ZORCommentFormatter.strippedStructuredComment:",
                   [](const Arguments& a) { return ZORCommentFormatter::strippedStructuredComment(a[0].text()); });
    operations.add("ZORCommentFormatter.formattedStructuredComment:",
                   [](const Arguments& a) { return ZORCommentFormatter::formattedStructuredComment(a[0].text()); });
    operations.add("ZORCommentValidator.isValidStructuredComment:",
                   [](const Arguments& a) { return ZORCommentValidator::isValidStructuredComment(a[0].text()); });
    operations.add("String.isValidBcmcReference",
                   [](const Arguments& a) { return StringExtension::isValidBcmcReference(a[0].text()); });
}

}  // namespace conformance
