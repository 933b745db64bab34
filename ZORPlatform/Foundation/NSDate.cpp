// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSDate.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <cmath>
#include <cstdint>

namespace ZORPlatform {

NSDate NSDate::date() noexcept { return HostEnvironment::now(); }

NSDate::operator std::chrono::sys_time<std::chrono::nanoseconds>() const noexcept {
    // Whole seconds apart from the fraction: a double that counts nanoseconds would round to hundreds of them.
    const double whole = std::floor(seconds_);
    const auto fraction = static_cast<std::int64_t>(std::floor((seconds_ - whole) * 1e9));
    return std::chrono::sys_time<std::chrono::nanoseconds>(
        std::chrono::seconds(static_cast<std::int64_t>(whole) + static_cast<std::int64_t>(kReferenceSince1970)) +
        std::chrono::nanoseconds(fraction));
}

}  // namespace ZORPlatform
