// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSByteCountFormatter.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <array>
#include <cstddef>

namespace ZORPlatform {
namespace {

struct Unit {
    NSByteCountFormatterUnits flag;
    // The count that shows as 1 in the last fraction digit, as a power of ten, and how many fraction digits there are.
    unsigned stepPower;
    unsigned fractionDigits;
};

constexpr std::array<Unit, 9> kUnits{{{NSByteCountFormatterUnits::useBytes, 0, 0},
                                      {NSByteCountFormatterUnits::useKB, 3, 0},
                                      {NSByteCountFormatterUnits::useMB, 5, 1},
                                      {NSByteCountFormatterUnits::useGB, 7, 2},
                                      {NSByteCountFormatterUnits::useTB, 10, 2},
                                      {NSByteCountFormatterUnits::usePB, 13, 2},
                                      {NSByteCountFormatterUnits::useEB, 16, 2},
                                      {NSByteCountFormatterUnits::useZB, 19, 2},
                                      {NSByteCountFormatterUnits::useYBOrHigher, 22, 2}}};

// 10 to the power, 0 where that is beyond 64 bits.
constexpr std::uint64_t powerOfTen(unsigned power) noexcept {
    if (power > 19) return 0;
    std::uint64_t value = 1;
    for (unsigned i = 0; i < power; ++i) value *= 10;
    return value;
}

constexpr bool allows(NSByteCountFormatterUnits units, const Unit& unit) noexcept {
    return (static_cast<std::uint32_t>(units) & static_cast<std::uint32_t>(unit.flag)) != 0;
}

const Unit& chosenUnit(NSByteCountFormatterUnits allowed, std::uint64_t count) noexcept {
    if (allowed == NSByteCountFormatterUnits::useDefault) allowed = NSByteCountFormatterUnits::useAll;
    const Unit* chosen = nullptr;
    for (const Unit& unit : kUnits) {
        if (!allows(allowed, unit)) continue;
        const std::uint64_t one = powerOfTen(unit.stepPower + unit.fractionDigits);
        if (chosen == nullptr || (one != 0 && count >= one)) chosen = &unit;
    }
    return chosen == nullptr ? kUnits[0] : *chosen;
}

// How often `step` goes into `count`, rounded half to even.
std::uint64_t roundedQuotient(std::uint64_t count, std::uint64_t step) noexcept {
    if (step == 0) return 0;
    const std::uint64_t quotient = count / step;
    const std::uint64_t rest = count % step;
    const std::uint64_t restToNext = step - rest;
    const bool up = rest > restToNext || (rest == restToNext && quotient % 2 == 1);
    return quotient + (up ? 1 : 0);
}

std::u16string grouped(std::uint64_t value) {
    std::u16string text = utf16(std::to_string(value));
    for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, 1, u',');
    return text;
}

std::u16string fraction(std::uint64_t digits, unsigned count) {
    if (digits == 0) return {};
    std::u16string text = utf16(std::to_string(digits));
    text.insert(0, count - text.size(), u'0');
    text.erase(text.find_last_not_of(u'0') + 1);
    return u"." + text;
}

}  // namespace

std::u16string NSByteCountFormatter::stringFromByteCount(std::int64_t byteCount) const {
    const bool isNegative = byteCount < 0;
    const auto count = isNegative ? 0 - static_cast<std::uint64_t>(byteCount) : static_cast<std::uint64_t>(byteCount);
    const Unit& unit = chosenUnit(allowedUnits, count);
    const std::uint64_t steps = roundedQuotient(count, powerOfTen(unit.stepPower));
    const std::uint64_t stepsOfOne = powerOfTen(unit.fractionDigits);
    const std::u16string text = grouped(steps / stepsOfOne) + fraction(steps % stepsOfOne, unit.fractionDigits);
    return isNegative && steps != 0 ? u"-" + text : text;
}

}  // namespace ZORPlatform
