// SPDX-License-Identifier: Apache-2.0
//
// Laws of keyed archives: any bytes are read or refused, and what was read comes back the same from an archive of ours.
#include <ZORPlatform/Foundation/NSKeyedArchiver.h>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ZORPlatform;
    const auto value = NSKeyedUnarchiver::unarchiveObjectWithData(std::span(data, size));
    if (!value) return 0;
    const auto archive = NSKeyedArchiver::archivedDataWithRootObject(*value);
    if (!archive) __builtin_trap();
    const auto again = NSKeyedUnarchiver::unarchiveObjectWithData(*archive);
    // Bytes, not values: not-a-number is unequal to itself.
    if (!again || NSKeyedArchiver::archivedDataWithRootObject(*again) != archive) __builtin_trap();
    return 0;
}
