// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>

#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/PropertyListFormsInternal.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <algorithm>

namespace ZORPlatform {
namespace {

constexpr std::string_view kBinaryMagic = "bplist";

struct Reading {
    std::optional<PropertyListValue> list;
    NSPropertyListFormat format;
};

Reading readAnyForm(std::span<const std::uint8_t> bytes) {
    if (bytes.size() >= kBinaryMagic.size() && std::equal(kBinaryMagic.begin(), kBinaryMagic.end(), bytes.begin())) {
        return {PropertyListForms::readBinary(bytes), NSPropertyListFormat::binary_v1_0};
    }
    std::optional<std::string> text = PropertyListForms::textOfBytes(bytes);
    if (!text || text->empty()) return {std::nullopt, NSPropertyListFormat::xml_v1_0};
    if (std::optional<PropertyListValue> list = PropertyListForms::readXml(std::move(*text))) {
        return {std::move(list), NSPropertyListFormat::xml_v1_0};
    }
    // The XML parser worked in place, and files that are no XML are rare: the text is made a second time.
    text = PropertyListForms::textOfBytes(bytes);
    std::u16string units = utf16(*text);
    Reading reading{PropertyListForms::readOldStyle(units), NSPropertyListFormat::openStep};
    wipe(text->data(), text->size());
    wipe(units.data(), units.size() * sizeof(char16_t));
    return reading;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> NSPropertyListSerialization::dataWithPropertyList(
    const PropertyListValue& list, NSPropertyListFormat format, std::optional<NSError>* error) {
    if (error != nullptr) error->reset();
    std::optional<std::vector<std::uint8_t>> bytes;
    if (format == NSPropertyListFormat::xml_v1_0) bytes = PropertyListForms::writeXml(list);
    if (format == NSPropertyListFormat::binary_v1_0) bytes = PropertyListForms::writeBinary(list);
    if (!bytes && error != nullptr) error->emplace(NSCocoaErrorDomain, NSPropertyListWriteInvalidError);
    return bytes;
}

std::optional<PropertyListValue> NSPropertyListSerialization::propertyListWithData(
    std::optional<std::span<const std::uint8_t>> data, NSPropertyListFormat* format, std::optional<NSError>* error) {
    if (error != nullptr) error->reset();
    if (!data) throw NSException(u"NSInvalidArgumentException", u"propertyListWithData: the data is absent");
    Reading reading = readAnyForm(*data);
    if (!reading.list) {
        if (error != nullptr) error->emplace(NSCocoaErrorDomain, NSPropertyListReadCorruptError);
    } else if (format != nullptr) {
        *format = reading.format;
    }
    return std::move(reading.list);
}

}  // namespace ZORPlatform
