// SPDX-License-Identifier: Apache-2.0
//
// Two roads to one text. Patterns of "#", "0", "," and "." in locales with ASCII digits are laid out here, from symbols
// that are read once; everything else, and all reading, goes through ICU's formatter. What is costly to make is kept
// per thread, so formatters stay small values.
#include <ZORPlatform/Foundation/NSNumberFormatter.h>

#include <ZORPlatform/Foundation/IcuTextInternal.h>
#include <ZORPlatform/Foundation/RecentValuesInternal.h>
#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>
#include <unicode/parsepos.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

namespace ZORPlatform {

/// A pattern and what it asks for. Shared between formatters, never changed.
struct NumberPattern {
    std::u16string text;
    bool isPlain = false;  ///< Nothing but "#", "0", "," and ".", so that all of it is in the numbers below.
    std::size_t minimumIntegerDigits = 0;
    std::int64_t minimumFractionDigits = 0;
    std::int64_t maximumFractionDigits = 0;
    std::int32_t groupingSize = 0;           ///< 0 without grouping.
    std::int32_t secondaryGroupingSize = 0;  ///< Of the groups after the first; 0 when the pattern names none.
};

namespace {

icu::DecimalFormatSymbols icuSymbols(const NSLocale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::DecimalFormatSymbols symbols(icuLocale(locale), status);
    if (U_SUCCESS(status)) return symbols;
    status = U_ZERO_ERROR;
    return {icu::Locale::getRoot(), status};
}

/// What the patterns laid out here need of a locale.
struct Symbols {
    explicit Symbols(const NSLocale& locale) {
        using Icu = icu::DecimalFormatSymbols;
        const Icu symbols = icuSymbols(locale);
        decimalMark = view(symbols.getConstSymbol(Icu::kDecimalSeparatorSymbol));
        groupingSeparator = view(symbols.getConstSymbol(Icu::kGroupingSeparatorSymbol));
        minusSign = view(symbols.getConstSymbol(Icu::kMinusSignSymbol));
        notANumber = view(symbols.getConstSymbol(Icu::kNaNSymbol));
        for (int digit = 0; digit < 10; ++digit) {
            hasAsciiDigits &= symbols.getConstDigitSymbol(digit) == icu::UnicodeString(char16_t(u'0' + digit));
        }
    }

    std::u16string decimalMark;
    std::u16string groupingSeparator;
    std::u16string minusSign;
    std::u16string notANumber;
    bool hasAsciiDigits = true;
};

/// @return valid until the next call on this thread
const Symbols& symbolsOf(const NSLocale& locale) {
    thread_local RecentValues<NSLocale, Symbols> recent;
    return recent.find(locale, [&] { return Symbols(locale); });
}

/// Reads a pattern of "#", "0", "," and ".", or leaves `isPlain` unset: at least one "0" before the mark, and every ","
/// between two of the others.
void readPlain(NumberPattern& pattern) {
    std::u16string_view rest = pattern.text;
    bool hasComma = false;
    std::int32_t group = 0;
    for (; !rest.empty() && rest.front() != u'.'; rest.remove_prefix(1)) {
        const char16_t mark = rest.front();
        if (mark == u',' && group > 0) {
            pattern.secondaryGroupingSize = hasComma ? group : 0;
            hasComma = true;
            group = 0;
        } else if (mark == u'0' || (mark == u'#' && pattern.minimumIntegerDigits == 0)) {
            pattern.minimumIntegerDigits += mark == u'0' ? 1 : 0;
            ++group;
        } else {
            return;
        }
    }
    if (group == 0 || pattern.minimumIntegerDigits == 0) return;
    pattern.groupingSize = hasComma ? group : 0;
    if (!rest.empty()) rest.remove_prefix(1);
    for (const char16_t mark : rest) {
        const bool isRequired = mark == u'0' && pattern.minimumFractionDigits == pattern.maximumFractionDigits;
        if (!isRequired && mark != u'#') return;
        pattern.minimumFractionDigits += isRequired ? 1 : 0;
        ++pattern.maximumFractionDigits;
    }
    pattern.isPlain = true;
}

/// ICU ends the process when it reads numbers by a pattern that holds, outside quotes, "~" or more than five currency
/// signs in a row. Neither has a meaning in a pattern.
bool endsTheProcess(std::u16string_view pattern) {
    constexpr std::size_t kMaximumCurrencySigns = 5;
    bool isQuoted = false;
    std::size_t currencySigns = 0;
    for (const char16_t unit : pattern) {
        currencySigns = unit == u'\u00A4' && !isQuoted ? currencySigns + 1 : 0;
        if (unit == u'\'') isQuoted = !isQuoted;
        if (currencySigns > kMaximumCurrencySigns || (unit == u'~' && !isQuoted)) return true;
    }
    return false;
}

std::shared_ptr<const NumberPattern> readPattern(std::u16string_view text) {
    // Far above any use; ICU counts in 32 bits.
    constexpr std::size_t kMaximumUnits = 1024;
    if (text.size() > kMaximumUnits) return nullptr;
    auto pattern = std::make_shared<NumberPattern>();
    pattern->text = text;
    readPlain(*pattern);
    if (pattern->isPlain) return pattern;
    if (endsTheProcess(text)) return nullptr;

    UErrorCode status = U_ZERO_ERROR;
    const icu::DecimalFormat format(alias(text), icu::DecimalFormatSymbols(icu::Locale::getRoot(), status), status);
    if (U_FAILURE(status)) return nullptr;
    *pattern = {.text = std::u16string(text),
                .minimumFractionDigits = format.getMinimumFractionDigits(),
                .maximumFractionDigits = format.getMaximumFractionDigits(),
                .groupingSize = format.isGroupingUsed() ? format.getGroupingSize() : 0,
                .secondaryGroupingSize = format.getSecondaryGroupingSize()};
    return pattern;
}

/// The value of a number as ICU writes it, "1.5E+3". By value: digits left free take up an exponent above the highest,
/// and a number too small for any digit is zero.
NSDecimalNumber decimalNumber(std::string_view text) {
    const std::size_t mark = std::min(text.find('E'), text.size());
    const NSDecimalNumber digits = NSDecimalNumber::decimalNumberWithString(utf16(text.substr(0, mark)));
    std::string_view written = text.substr(mark);
    written.remove_prefix(std::min(written.starts_with("E+") ? std::size_t{2} : std::size_t{1}, written.size()));
    std::int32_t exponent = 0;
    std::from_chars(written.data(), written.data() + written.size(), exponent);

    // In two steps, as one power of ten does not reach all that fits.
    constexpr NSDecimalNumberHandler kSilent(NSRoundingMode::plain, NSDecimalNumberHandler::kNoScale, false, false,
                                             false, false);
    const std::int32_t bounded =
        std::clamp(exponent, 2 * NSDecimalNumber::kLowestExponent, 2 * NSDecimalNumber::kHighestExponent);
    const auto half = static_cast<std::int16_t>(bounded / 2);
    const auto rest = static_cast<std::int16_t>(bounded - half);
    return digits.decimalNumberByMultiplyingBy(NSDecimalNumber::decimalNumberWithMantissa(1, half, false), kSilent)
        .decimalNumberByMultiplyingBy(NSDecimalNumber::decimalNumberWithMantissa(1, rest, false), kSilent);
}

/// Those of this thread.
template <class Key>
RecentValues<Key, icu::DecimalFormat>& recentFormats() {
    thread_local RecentValues<Key, icu::DecimalFormat> recent;
    return recent;
}

char16_t* write(std::u16string_view text, char16_t* end) { return std::copy_backward(text.begin(), text.end(), end); }

}  // namespace

/// The services of a formatter that need outside types.
struct NSNumberFormatter::Service {
    /// All that ICU's formatter is made of.
    struct Key {
        std::shared_ptr<const NumberPattern> pattern;
        NSLocale locale;
        std::optional<std::u16string> groupingSeparator;
        std::int64_t maximumFractionDigits;
        std::int32_t groupingSize;

        friend bool operator==(const Key& left, const Key& right) {
            return left.maximumFractionDigits == right.maximumFractionDigits &&
                   left.groupingSize == right.groupingSize && left.locale == right.locale &&
                   left.groupingSeparator == right.groupingSeparator &&
                   (left.pattern == right.pattern || left.pattern->text == right.pattern->text);
        }
    };

    static icu::DecimalFormat makeIcuFormat(const NSNumberFormatter& formatter) {
        icu::DecimalFormatSymbols symbols = icuSymbols(formatter.locale_);
        if (formatter.groupingSeparator_) {
            symbols.setSymbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol,
                              alias(*formatter.groupingSeparator_));
        }
        const NumberPattern& pattern = *formatter.pattern_;
        UErrorCode status = U_ZERO_ERROR;
        icu::DecimalFormat format(alias(pattern.text), symbols, status);
        if (formatter.groupingSize_ != pattern.groupingSize) {
            if (formatter.groupingSize_ > 0) {
                format.setGroupingSize(formatter.groupingSize_);
            } else {
                format.setGroupingUsed(false);
            }
        }
        if (formatter.maximumFractionDigits_ != pattern.maximumFractionDigits) {
            format.setMaximumFractionDigits(static_cast<std::int32_t>(
                std::min<std::int64_t>(formatter.maximumFractionDigits_, std::numeric_limits<std::int32_t>::max())));
        }
        return format;
    }

    /// @return valid until the next call on this thread
    static const icu::DecimalFormat& icuFormat(const NSNumberFormatter& formatter) {
        return recentFormats<Key>().find({formatter.pattern_, formatter.locale_, formatter.groupingSeparator_,
                                          formatter.maximumFractionDigits_, formatter.groupingSize_},
                                         [&] { return makeIcuFormat(formatter); });
    }

    static std::u16string icuText(const NSNumberFormatter& formatter, const NSDecimalNumber& number) {
        const icu::DecimalFormat& format = icuFormat(formatter);
        icu::UnicodeString text;
        if (number.isNotANumber()) {
            format.format(number.doubleValue(), text);
            return std::u16string(view(text));
        }
        std::array<char, NSDecimalNumber::kMaximumDigits + 7> buffer{'-', '0'};
        char* const digits = buffer.data() + 1;
        const std::size_t count = number.writeDigits(std::span<char, NSDecimalNumber::kMaximumDigits>(
            digits, static_cast<std::size_t>(NSDecimalNumber::kMaximumDigits)));
        char* end = digits + std::max<std::size_t>(count, 1);
        *end++ = 'E';
        end = std::to_chars(end, buffer.data() + buffer.size(), number.exponent()).ptr;
        char* const begin = number.isNegative() ? buffer.data() : digits;
        UErrorCode status = U_ZERO_ERROR;
        format.format(icu::StringPiece(begin, static_cast<std::int32_t>(end - begin)), text, nullptr, status);
        return std::u16string(view(text));
    }

    /// Whether the formatter's pattern is laid out here, digits apart.
    static bool isPlain(const NSNumberFormatter& formatter) {
        const NumberPattern& pattern = *formatter.pattern_;
        return pattern.isPlain && (pattern.secondaryGroupingSize == 0 || formatter.groupingSize_ == 0 ||
                                   pattern.secondaryGroupingSize == formatter.groupingSize_);
    }

    static std::u16string plainText(const NSNumberFormatter& formatter, const NSDecimalNumber& number,
                                    const Symbols& symbols) {
        if (number.isNotANumber()) return symbols.notANumber;
        const auto scale = static_cast<std::int16_t>(
            std::min<std::int64_t>(formatter.maximumFractionDigits_, NSDecimalNumberHandler::kNoScale));
        const NSDecimalNumber rounded = number.decimalNumberByRoundingAccordingToBehavior(
            {NSRoundingMode::bankers, scale, false, false, false, false});
        std::array<char, NSDecimalNumber::kMaximumDigits> buffer;
        const auto count = static_cast<std::int64_t>(rounded.writeDigits(buffer));
        const std::int64_t exponent = rounded.exponent();

        // Places are counted from the decimal mark: 0 is the first integer digit, -1 the first fraction digit.
        const std::int64_t lowest = -std::max<std::int64_t>(formatter.minimumFractionDigits_, -exponent);
        const std::int64_t highest = std::max<std::int64_t>(
            static_cast<std::int64_t>(formatter.pattern_->minimumIntegerDigits), count + exponent);
        const std::int64_t groups = formatter.groupingSize_ > 0 ? (highest - 1) / formatter.groupingSize_ : 0;
        const std::u16string_view separator =
            formatter.groupingSeparator_ ? *formatter.groupingSeparator_ : symbols.groupingSeparator;
        std::size_t length =
            static_cast<std::size_t>(highest - lowest) + static_cast<std::size_t>(groups) * separator.size();
        if (lowest < 0) length += symbols.decimalMark.size();
        if (number.isNegative()) length += symbols.minusSign.size();

        std::u16string text(length, u'\0');
        char16_t* at = text.data() + length;
        const auto writePlace = [&](std::int64_t place) {
            const bool isStored = place >= exponent && place < count + exponent;
            const auto index = static_cast<std::size_t>(count - 1 + exponent - place);
            *--at = isStored ? static_cast<char16_t>(buffer[index]) : u'0';
        };
        for (std::int64_t place = lowest; place < 0; ++place) writePlace(place);
        if (lowest < 0) at = write(symbols.decimalMark, at);
        std::int64_t untilSeparator = groups > 0 ? formatter.groupingSize_ : highest;
        for (std::int64_t place = 0; place < highest; ++place, --untilSeparator) {
            if (untilSeparator == 0) {
                at = write(separator, at);
                untilSeparator = formatter.groupingSize_;
            }
            writePlace(place);
        }
        if (number.isNegative()) write(symbols.minusSign, at);
        return text;
    }
};

NSNumberFormatter::NSNumberFormatter()
    : pattern_([] {
          static const auto& kUnset = *new std::shared_ptr<const NumberPattern>(readPattern(u"0"));
          return kUnset;
      }()),
      locale_(NSLocale::currentLocale()),
      minimumFractionDigits_(0),
      maximumFractionDigits_(0),
      groupingSize_(0) {}

const std::u16string& NSNumberFormatter::positiveFormat() const noexcept { return pattern_->text; }

void NSNumberFormatter::setPositiveFormat(std::u16string_view pattern) {
    const std::shared_ptr<const NumberPattern> read = readPattern(pattern);
    if (!read) return;
    pattern_ = read;
    minimumFractionDigits_ = read->minimumFractionDigits;
    maximumFractionDigits_ = read->maximumFractionDigits;
    groupingSize_ = read->groupingSize;
}

void NSNumberFormatter::setGroupingSize(std::int32_t size) noexcept {
    if (pattern_->groupingSize > 0) groupingSize_ = std::max(size, 0);
}

std::u16string NSNumberFormatter::groupingSeparator() const {
    return groupingSeparator_ ? *groupingSeparator_ : symbolsOf(locale_).groupingSeparator;
}

void NSNumberFormatter::setGroupingSeparator(std::u16string_view separator) { groupingSeparator_.emplace(separator); }

void NSNumberFormatter::setMaximumFractionDigits(std::int64_t count) noexcept {
    maximumFractionDigits_ = std::max<std::int64_t>(count, 0);
    minimumFractionDigits_ = std::min(minimumFractionDigits_, maximumFractionDigits_);
}

std::u16string NSNumberFormatter::stringFromNumber(const NSDecimalNumber& number) const {
    if (Service::isPlain(*this)) {
        const Symbols& symbols = symbolsOf(locale_);
        if (symbols.hasAsciiDigits) return Service::plainText(*this, number, symbols);
    }
    return Service::icuText(*this, number);
}

std::optional<NSDecimalNumber> NSNumberFormatter::numberFromString(std::u16string_view text) const {
    constexpr std::size_t kMaximumUnits = 1024;
    if (text.size() > kMaximumUnits) return std::nullopt;
    while (!text.empty() && isWhitespace(text.front())) text.remove_prefix(1);
    icu::Formattable result;
    icu::ParsePosition position;
    Service::icuFormat(*this).parse(alias(text), result, position);
    if (text.empty() || position.getErrorIndex() >= 0 ||
        position.getIndex() != static_cast<std::int32_t>(text.size())) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    const icu::StringPiece digits = result.getDecimalNumber(status);
    if (U_FAILURE(status)) return NSDecimalNumber::notANumber();
    return decimalNumber({digits.data(), static_cast<std::size_t>(digits.size())});
}

}  // namespace ZORPlatform
