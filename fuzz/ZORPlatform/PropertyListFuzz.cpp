// SPDX-License-Identifier: Apache-2.0
//
// Laws of property lists: any bytes are read or refused; what was read can be written in binary and comes back; what
// XML can hold comes back from XML.
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>

#include <cstdint>
#include <vector>

namespace {

using ZORPlatform::NSPropertyListFormat;
using ZORPlatform::NSPropertyListSerialization;

void require(bool law) {
    if (!law) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto list = NSPropertyListSerialization::propertyListWithData(std::span(data, size));
    if (!list) return 0;

    const auto binary = NSPropertyListSerialization::dataWithPropertyList(*list, NSPropertyListFormat::binary_v1_0);
    require(binary.has_value());
    const auto fromBinary = NSPropertyListSerialization::propertyListWithData(*binary);
    require(fromBinary.has_value());
    // Bytes, not values: not-a-number is unequal to itself.
    require(NSPropertyListSerialization::dataWithPropertyList(*fromBinary, NSPropertyListFormat::binary_v1_0) ==
            binary);

    const auto xml = NSPropertyListSerialization::dataWithPropertyList(*list, NSPropertyListFormat::xml_v1_0);
    if (!xml) return 0;
    const auto fromXml = NSPropertyListSerialization::propertyListWithData(*xml);
    require(fromXml.has_value());
    require(NSPropertyListSerialization::dataWithPropertyList(*fromXml, NSPropertyListFormat::xml_v1_0) == xml);
    return 0;
}
