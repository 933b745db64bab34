// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/DataExtension.h>
#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORFoundation/ZORBase64.h>
#include <ZORFoundation/ZORHash.h>
#include <ZORFoundation/ZORMD5Hash.h>

#include <algorithm>
#include <array>

namespace conformance {

using namespace ZORFoundation;

namespace {

ZORHashType hashType(const Value& value) { return static_cast<ZORHashType>(value.integer<std::uint64_t>()); }

NSByteCountFormatterUnits byteCountUnit(const Value& value) {
    using Units = NSByteCountFormatterUnits;
    static constexpr std::array<std::pair<std::u16string_view, Units>, 4> kUnits = {
        {{u"useBytes", Units::useBytes}, {u"useKB", Units::useKB}, {u"useMB", Units::useMB}, {u"useGB", Units::useGB}}};
    const auto found =
        std::find_if(kUnits.begin(), kUnits.end(), [&value](const auto& unit) { return unit.first == value.text(); });
    if (found == kUnits.end()) throw WrongKind("not the name of a byte-count unit");
    return found->second;
}

void registerDigests(Operations& operations) {
    operations.add("ZORHash.zor_md5", [](const Arguments& a) { return ZORHash::zor_md5(a[0].text()); });
    operations.add("ZORHash.zor_sha256", [](const Arguments& a) { return ZORHash::zor_sha256(a[0].text()); });
    operations.add("ZORHash.zor_hash:",
                   [](const Arguments& a) { return ZORHash::zor_hash(a[0].text(), hashType(a[1])); });
    // The receiver of the next two plays no role, but it is there.
    operations.add("ZORHash.hashLength:", [](const Arguments& a) {
        static_cast<void>(a[0].text());
        return ZORHash::hashLength(hashType(a[1]));
    });
    operations.add("ZORHash.hexDigest:length:", [](const Arguments& a) {
        static_cast<void>(a[0].text());
        return ZORHash::hexDigest(a[1].bytes().first(a[2].integer<std::size_t>()));
    });
    operations.add("ZORMD5Hash.zor_md5", [](const Arguments& a) { return ZORMD5Hash::zor_md5(a[0].bytes()); });
    operations.add("Data.hexString()", [](const Arguments& a) { return DataExtension::hexString(a[0].bytes()); });
    operations.add("Data.size(in:)",
                   [](const Arguments& a) { return DataExtension::size(a[0].bytes(), byteCountUnit(a[1])); });
}

void registerBase64(Operations& operations) {
    operations.add("ZORBase64.zor_base64EncodedString",
                   [](const Arguments& a) { return ZORBase64::zor_base64EncodedString(a[0].bytes()); });
    operations.add("ZORBase64.zor_dataFromBase64String:",
                   [](const Arguments& a) { return ZORBase64::zor_dataFromBase64String(a[0].text()); });
    operations.add("ZORAESCrypt(data).zor_base64Encoding",
                   [](const Arguments& a) { return ZORAESCrypt::zor_base64Encoding(a[0].bytes()); });
    operations.add("ZORAESCrypt(data).zor_base64EncodingWithLineLength:", [](const Arguments& a) {
        return ZORAESCrypt::zor_base64EncodingWithLineLength(a[0].bytes(), a[1].integer<std::size_t>());
    });
    operations.add("ZORAESCrypt(data).zor_dataWithBase64EncodedString:",
                   [](const Arguments& a) { return ZORAESCrypt::zor_dataWithBase64EncodedString(a[0].text()); });
    operations.add("ZORAESCrypt(data).initWithBase64EncodedString:",
                   [](const Arguments& a) { return ZORAESCrypt::initWithBase64EncodedString(a[0].text()); });
}

}  // namespace

void registerDigestOperations(Operations& operations) {
    registerDigests(operations);
    registerBase64(operations);
}

}  // namespace conformance
