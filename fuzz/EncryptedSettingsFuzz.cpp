// SPDX-License-Identifier: Apache-2.0
//
// Laws of encrypted settings: whatever the file holds, loading ends with a dictionary; what is then saved is loaded
// again; a file is given up only when it cannot be decrypted, and then it is kept aside.
#include <ZORFoundation/PlistCore/ZORPlistController.h>
#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>

#include "support/FuzzText.h"

#include <tests/support/TemporaryDirectory.h>

#include <algorithm>
#include <span>
#include <vector>

using namespace ZORFoundation;
using fuzz::require;

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using Dictionary = PropertyListValue::Dictionary;
using ZORPlatform::NSPropertyListFormat;
using ZORPlatform::NSPropertyListSerialization;

class FuzzedSettings : public ZORPlistController {
public:
    [[nodiscard]] fs::path plistFilename() const override { return "Fuzzed.plist"; }
};

/// The places of the process, and the defaults in theirs.
const support::TemporaryDirectory& places() {
    static const support::TemporaryDirectory& directory = *[] {
        auto* const made = new support::TemporaryDirectory;
        made->write("Resources/Fuzzed.plist", "<dict><key>defaults</key><true/></dict>");
        fs::create_directory(*made / "Documents");
        ZORPlatform::HostEnvironment::setDocumentsDirectory(*made / "Documents");
        ZORPlatform::HostEnvironment::setMainResourceDirectory(*made / "Resources");
        ZORPlatform::HostEnvironment::setStateDirectory(*made / "state");
        return made;
    }();
    return directory;
}

// Bytes, not values: not-a-number is unequal to itself.
std::optional<Bytes> binary(const Dictionary& dictionary) {
    return NSPropertyListSerialization::dataWithPropertyList(dictionary, NSPropertyListFormat::binary_v1_0);
}

void requireLaws(std::span<const std::uint8_t> content, std::u16string_view key) {
    const fs::path file = places() / "Documents/Fuzzed.plist";
    const fs::path state = places() / "state";
    fs::remove_all(state);
    support::writeFile(file, content);
    const bool hasBytes = ZORAESCrypt::zor_AES256DecryptWithKey(content, key).has_value();

    const auto settings = ZORPlistController::withEncryption<FuzzedSettings>(true, key);
    require(settings->dictionary.has_value());
    if (!hasBytes) {
        require(*settings->dictionary == Dictionary{{u"defaults", true}});
        require(support::readFile(fs::directory_iterator(state)->path()) == Bytes(content.begin(), content.end()));
    }
    // XML cuts dates to the second, so what was loaded is compared with what is loaded after one more saving.
    if (!settings->persist()) return;
    const auto saved = ZORPlistController::withEncryption<FuzzedSettings>(true, key);
    require(saved->persist());
    const auto again = ZORPlistController::withEncryption<FuzzedSettings>(true, key);
    require(binary(*again->dictionary) == binary(*saved->dictionary));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first byte says how much of the input is the key.
    if (size == 0) return 0;
    const std::size_t keySize = std::min<std::size_t>(data[0] % 80, size - 1);
    const fuzz::Text key(data + 1, keySize);
    const std::span<const std::uint8_t> rest(data + 1 + keySize, size - 1 - keySize);

    requireLaws(rest, key.view());
    // As a plaintext: few inputs decrypt by chance.
    requireLaws(ZORAESCrypt::zor_AES256EncryptWithKey(rest, key.view()).value(), key.view());
    return 0;
}
