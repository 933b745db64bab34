// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DecimalNumberExtension.h>

#include <ZORPlatform/Foundation/Precondition.h>

#include <cstdint>
#include <utility>

namespace ZORFoundation::DecimalNumberExtension {

bool isBiggerAsZero(const NSDecimalNumber& amount) noexcept { return amount.doubleValue() > 0.0; }

NSDecimalNumber negativeDecimalNumber(const NSDecimalNumber& amount) {
    if (!isBiggerAsZero(amount)) return amount;
    return amount.decimalNumberByMultiplyingBy(NSDecimalNumber::decimalNumberWithMantissa(1, 0, /*isNegative=*/true));
}

NSDecimalNumber from(std::u16string_view amountString, const NSNumberFormatter& inputFormatter,
                     NSRoundingMode roundingMode) {
    const NSDecimalNumber amount = inputFormatter.numberFromString(amountString).value_or(NSDecimalNumber());
    const std::int64_t scale = inputFormatter.maximumFractionDigits();
    if (!std::in_range<std::int16_t>(scale)) {
        ZORPlatform::preconditionFailure(
            "from(amountString:inputFormatter:roundingMode:): the formatter's maximum fraction digits must fit 16 "
            "bits");
    }
    return amount.decimalNumberByRoundingAccordingToBehavior(
        {roundingMode, static_cast<std::int16_t>(scale), /*raiseOnExactness=*/false, /*raiseOnOverflow=*/false,
         /*raiseOnUnderflow=*/false, /*raiseOnDivideByZero=*/false});
}

}  // namespace ZORFoundation::DecimalNumberExtension
