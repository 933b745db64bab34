// SPDX-License-Identifier: Apache-2.0
//
// Encrypted settings of 1 KB beside the sum of their parts, each done once and by hand. Elapsed time counts, because
// saving waits for the disk; on a file system in memory the waiting is left out.
#include <benchmarks/Comparison.h>

#include <ZORFoundation/PlistCore/ZORPlistController.h>
#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using benchmarks::Comparison;
using ZORFoundation::PropertyListValue;
using ZORFoundation::ZORAESCrypt::zor_AES256DecryptWithKey;
using ZORFoundation::ZORAESCrypt::zor_AES256EncryptWithKey;
using ZORPlatform::NSPropertyListFormat;
using ZORPlatform::NSPropertyListSerialization;
using Bytes = std::vector<std::uint8_t>;

constexpr std::u16string_view kKey = u"correct horse battery staple";

/// About a kilobyte of XML.
PropertyListValue::Dictionary settings() {
    PropertyListValue::Array accounts;
    for (int i = 0; i < 2; ++i) {
        accounts.emplace_back(PropertyListValue::Dictionary{
            {u"accountNumber", u"BE68539007547034"},
            {u"balance", 1234.5 + i},
            {u"favourite", i == 0},
            {u"name", u"Compte \u00E0 vue"},
            {u"opened", ZORPlatform::NSDate::since1970(1520208000.0)},
            {u"order", i},
            {u"token", PropertyListValue::Data(24, static_cast<std::uint8_t>(i))},
        });
    }
    return {{u"accounts", std::move(accounts)}, {u"language", u"nl"}};
}

/// A place on one file system, with a saved file in it.
class Place {
public:
    explicit Place(const char* base) : directory_(made(base)) { save(*filled()); }
    ~Place() { fs::remove_all(directory_); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    class Settings : public ZORFoundation::ZORPlistController {
    public:
        explicit Settings(fs::path directory) : directory_(std::move(directory)) {}
        [[nodiscard]] fs::path sandboxDir() const override { return directory_; }
        [[nodiscard]] fs::path plistFilename() const override { return "Settings.plist"; }

    private:
        fs::path directory_;
    };

    [[nodiscard]] const fs::path& directory() const noexcept { return directory_; }
    [[nodiscard]] fs::path file() const { return directory_ / "Settings.plist"; }

    [[nodiscard]] std::shared_ptr<Settings> filled() const {
        auto controller = std::make_shared<Settings>(directory_);
        controller->isEncrypted = true;
        controller->encryptionKey = kKey;
        controller->dictionary = settings();
        return controller;
    }

    static void save(Settings& controller) {
        if (!controller.persist()) std::abort();
    }

private:
    static fs::path made(const char* base) {
        std::string name = (fs::path(base) / "zor-settings-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) std::abort();
        return name;
    }

    fs::path directory_;
};

void loadByHand(const fs::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    ::fstat(descriptor, &status);
    Bytes bytes(static_cast<std::size_t>(status.st_size));
    if (::read(descriptor, bytes.data(), bytes.size()) != status.st_size) std::abort();
    ::close(descriptor);
    const auto plaintext = zor_AES256DecryptWithKey(bytes, kKey);
    benchmark::DoNotOptimize(NSPropertyListSerialization::propertyListWithData(plaintext));
}

void saveByHand(const Place& place, const PropertyListValue& list) {
    const auto plaintext =
        NSPropertyListSerialization::dataWithPropertyList(list, NSPropertyListFormat::xml_v1_0).value();
    const Bytes bytes = zor_AES256EncryptWithKey(plaintext, kKey).value();
    const fs::path temporary = place.directory() / "temporary";
    const int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (::write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
    ::fsync(descriptor);
    ::close(descriptor);
    if (::rename(temporary.c_str(), place.file().c_str()) != 0) std::abort();
    const int directory = ::open(place.directory().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ::fsync(directory);
    ::close(directory);
}

void add(const std::string& where, const char* base) {
    const auto place = std::make_shared<const Place>(base);
    Comparison("loading encrypted settings of 1 KB, " + where)
        .inElapsedTime()
        .candidate([place] {
            Place::Settings controller(place->directory());
            controller.initWithEncryption(true, kKey);
            benchmark::DoNotOptimize(controller.dictionary);
        })
        .floor("read, decrypt, parse", [place] { loadByHand(place->file()); })
        .atMost(1.2, "read, decrypt, parse")
        .add();
    const auto controller = place->filled();
    const auto list = std::make_shared<const PropertyListValue>(settings());
    Comparison("saving encrypted settings of 1 KB, " + where)
        .inElapsedTime()
        .candidate([place, controller] { Place::save(*controller); })
        .floor("serialise, encrypt, two fsyncs, rename", [place, list] { saveByHand(*place, *list); })
        .atMost(1.2, "serialise, encrypt, two fsyncs, rename")
        .add();
}

const bool kAdded = [] {
    add("disk", fs::temp_directory_path().c_str());
    add("memory", "/dev/shm");
    return true;
}();

}  // namespace
