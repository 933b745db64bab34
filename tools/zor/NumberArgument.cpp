// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/NumberArgument.h>

#include <tools/zor/Failure.h>

#include <charconv>

namespace zor {

std::size_t numberArgument(std::string_view option, std::string_view text, std::size_t minimum, std::size_t maximum) {
    std::size_t value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec != std::errc{} || read.ptr != text.data() + text.size() || value < minimum || value > maximum) {
        throw UsageError(std::string(option) + ": a number from " + std::to_string(minimum) + " to " +
                         std::to_string(maximum) + " is needed");
    }
    return value;
}

}  // namespace zor
