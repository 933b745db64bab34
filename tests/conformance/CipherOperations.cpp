// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/ZORAESCrypt.h>

namespace conformance {

using namespace ZORFoundation;

namespace {

using Bytes = std::vector<std::uint8_t>;

// The bytes of an argument, cut to the length that the case gives beside them.
std::span<const std::uint8_t> bytesWithLength(const Value& bytes, const Value& length) {
    const auto all = bytes.bytes();
    return all.first(std::min(all.size(), length.integer<std::size_t>()));
}

void addBuffer(Operations& operations, const char* name,
               std::optional<Bytes> (*operation)(std::span<const std::uint8_t>, std::u16string_view)) {
    operations.add(std::string("ZORAESCrypt(data).") + name,
                   [operation](const Arguments& a) { return operation(a[0].bytes(), a[1].text()); });
}

void addText(Operations& operations, const char* name,
             std::optional<std::u16string> (*operation)(std::u16string_view, std::u16string_view)) {
    operations.add(std::string("ZORAESCrypt(string).") + name,
                   [operation](const Arguments& a) { return operation(a[0].text(), a[1].text()); });
}

}  // namespace

void registerCipherOperations(Operations& operations) {
    addBuffer(operations, "zor_AES256EncryptWithKey:", ZORAESCrypt::zor_AES256EncryptWithKey);
    addBuffer(operations, "zor_AES256DecryptWithKey:", ZORAESCrypt::zor_AES256DecryptWithKey);
    addBuffer(operations, "zor_legacyAES256DecryptWithKey:", ZORAESCrypt::zor_legacyAES256DecryptWithKey);
    addBuffer(operations, "zor_AES128EncryptWithKey:", ZORAESCrypt::zor_AES128EncryptWithKey);
    addBuffer(operations, "zor_AES128DecryptWithKey:", ZORAESCrypt::zor_AES128DecryptWithKey);
    addText(operations, "zor_AES256EncryptWithKey:", ZORAESCrypt::zor_AES256EncryptWithKey);
    addText(operations, "zor_AES256DecryptWithKey:", ZORAESCrypt::zor_AES256DecryptWithKey);
    addText(operations, "zor_AES128EncryptWithKey:", ZORAESCrypt::zor_AES128EncryptWithKey);
    addText(operations, "zor_AES128DecryptWithKey:", ZORAESCrypt::zor_AES128DecryptWithKey);
    operations.add("ZORAESCrypt(data).zor_hasPrefixBytes:length:", [](const Arguments& a) {
        return ZORAESCrypt::zor_hasPrefixBytes(a[0].bytes(), bytesWithLength(a[1], a[2]));
    });
    operations.add("ZORAESCrypt(data).zor_hasSuffixBytes:length:", [](const Arguments& a) {
        return ZORAESCrypt::zor_hasSuffixBytes(a[0].bytes(), bytesWithLength(a[1], a[2]));
    });
}

}  // namespace conformance
