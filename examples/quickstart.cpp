// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORFoundation.h>

#include <iostream>

using namespace ZORFoundation;

int main() {
    const Utf16Buffer<64> typed("be68 5390-0754 7034");
    const std::u16string number = ZORAccountNumberFormatter::strippedAccountNumber(typed);

    std::cout << ZORAccountNumberValidator::isValidIban(number) << '\n'
              << utf8(ZORAccountNumberFormatter::formattedAccountNumberAsIban(number)) << '\n';

    const Explanation why = ZORAccountNumberValidator::explainIban(u"BE6853900754703");
    std::cout << name(why.rule) << " at " << why.position << '\n';

    const NSError offline(NSURLErrorDomain, -1009);
    std::cout << utf8(ZORErrorHandler::mappedErrorCodeFromError(offline)) << '\n';
}
