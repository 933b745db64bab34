// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <ZORPlatform/Foundation/HostEnvironmentInternal.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <system_error>
#include <utility>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;

constinit std::atomic<std::uint64_t> revision = 0;

template <class Value>
class Setting {
public:
    [[nodiscard]] std::optional<Value> get() const {
        const std::scoped_lock lock(mutex_);
        return value_;
    }
    /// The value, or what `otherwise` makes where none is set.
    template <class Otherwise>
    [[nodiscard]] Value getOr(const Otherwise& otherwise) const {
        std::optional<Value> value = get();
        return value ? *std::move(value) : Value(otherwise());
    }
    /// What `question` says of the value, which is not copied for it.
    template <class Question>
    [[nodiscard]] bool ask(const Question& question) const {
        const std::scoped_lock lock(mutex_);
        return question(value_);
    }
    void set(std::optional<Value> value) {
        const std::scoped_lock lock(mutex_);
        value_.swap(value);
        reviseHostEnvironment();
    }

private:
    mutable std::mutex mutex_;
    std::optional<Value> value_;
};

struct Settings {
    Setting<fs::path> documentsDirectory;
    Setting<fs::path> libraryResourceDirectory;
    Setting<fs::path> mainResourceDirectory;
    Setting<fs::path> stateDirectory;
    Setting<fs::path> itemStorePath;
    Setting<fs::path> textLayoutModule;
    Setting<std::u16string> mainBundleIdentifier;
    Setting<std::u16string> localeIdentifier;
    Setting<std::u16string> timeZoneIdentifier;
    Setting<std::string> textDomain;
};

// Never destroyed: threads of the application may still ask while the process exits.
Settings& settings() {
    static Settings& instance = *new Settings;
    return instance;
}

// Joined as text: a path takes itself apart each time it is added to.
std::string below(std::string directory, std::string_view name) {
    if (directory.back() != '/') directory += '/';
    return directory += name;
}

std::string baseDirectory(const char* variable, std::string_view belowHome) {
    if (const char* set = std::getenv(variable); set != nullptr && set[0] == '/') return set;
    const char* home = std::getenv("HOME");
    return below(home != nullptr && home[0] == '/' ? home : "/", belowHome);
}

std::u16string environmentLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* set = std::getenv(variable);
        if (set == nullptr || *set == '\0') continue;
        const std::string_view value = set;
        const std::string_view name = value.substr(0, value.find_first_of(".@"));
        return name == "C" || name == "POSIX" ? u"en_US_POSIX" : utf16(name);
    }
    return u"en_US_POSIX";
}

/// The zone that a file of the tz database describes, "/usr/share/zoneinfo/Europe/Brussels"; other names as they stand.
std::string zoneName(const std::string& name) {
    constexpr std::string_view kFolder = "/zoneinfo/";
    const std::size_t folder = name.rfind(kFolder);
    return folder == std::string::npos ? name : name.substr(folder + kFolder.size());
}

std::u16string environmentTimeZone() {
    if (const char* set = std::getenv("TZ"); set != nullptr) {
        // An empty TZ means UTC, and a colon in front that a name follows.
        const std::string name = zoneName(*set == ':' ? set + 1 : set);
        return name.empty() ? u"GMT" : utf16(name);
    }
    std::error_code error;
    const fs::path link = fs::read_symlink("/etc/localtime", error);
    return error ? u"GMT" : utf16(zoneName(link.string()));
}

// Not-a-number stands for the system's clock.
constinit std::atomic<double> standingMoment = std::numeric_limits<double>::quiet_NaN();

std::string inDataDirectory(std::string_view name) {
    return below(below(baseDirectory("XDG_DATA_HOME", ".local/share"), "ZORFoundation"), name);
}

std::string defaultItemStorePath() { return inDataDirectory("items.sqlite"); }

}  // namespace

std::uint64_t hostEnvironmentRevision() noexcept { return revision.load(std::memory_order_acquire); }
void reviseHostEnvironment() noexcept { revision.fetch_add(1, std::memory_order_acq_rel); }

bool isItemStorePath(const fs::path& path) {
    return settings().itemStorePath.ask([&path](const std::optional<fs::path>& set) {
        return set ? path.native() == set->native() : path.native() == defaultItemStorePath();
    });
}

fs::path HostEnvironment::documentsDirectory() {
    return settings().documentsDirectory.getOr([] { return inDataDirectory("Documents"); });
}
void HostEnvironment::setDocumentsDirectory(std::optional<fs::path> directory) {
    settings().documentsDirectory.set(std::move(directory));
}

fs::path HostEnvironment::libraryResourceDirectory() {
    return settings().libraryResourceDirectory.getOr([] { return ZOR_INSTALLED_RESOURCE_DIRECTORY; });
}
void HostEnvironment::setLibraryResourceDirectory(std::optional<fs::path> directory) {
    settings().libraryResourceDirectory.set(std::move(directory));
}

fs::path HostEnvironment::mainResourceDirectory() {
    return settings().mainResourceDirectory.getOr([] { return inDataDirectory("Resources"); });
}
void HostEnvironment::setMainResourceDirectory(std::optional<fs::path> directory) {
    settings().mainResourceDirectory.set(std::move(directory));
}

fs::path HostEnvironment::stateDirectory() {
    return settings().stateDirectory.getOr(
        [] { return below(baseDirectory("XDG_STATE_HOME", ".local/state"), "ZORFoundation"); });
}
void HostEnvironment::setStateDirectory(std::optional<fs::path> directory) {
    settings().stateDirectory.set(std::move(directory));
}

fs::path HostEnvironment::itemStorePath() { return settings().itemStorePath.getOr(defaultItemStorePath); }
void HostEnvironment::setItemStorePath(std::optional<fs::path> path) { settings().itemStorePath.set(std::move(path)); }

std::optional<fs::path> HostEnvironment::textLayoutModule() { return settings().textLayoutModule.get(); }
void HostEnvironment::setTextLayoutModule(std::optional<fs::path> file) {
    settings().textLayoutModule.set(std::move(file));
}

std::optional<std::u16string> HostEnvironment::mainBundleIdentifier() { return settings().mainBundleIdentifier.get(); }
void HostEnvironment::setMainBundleIdentifier(std::optional<std::u16string> identifier) {
    settings().mainBundleIdentifier.set(std::move(identifier));
}

std::u16string HostEnvironment::localeIdentifier() {
    const std::optional<std::u16string> set = settings().localeIdentifier.get();
    return set ? *set : environmentLocale();
}
void HostEnvironment::setLocaleIdentifier(std::optional<std::u16string> identifier) {
    settings().localeIdentifier.set(std::move(identifier));
}

std::u16string HostEnvironment::timeZoneIdentifier() {
    const std::optional<std::u16string> set = settings().timeZoneIdentifier.get();
    return set ? *set : environmentTimeZone();
}
void HostEnvironment::setTimeZoneIdentifier(std::optional<std::u16string> identifier) {
    settings().timeZoneIdentifier.set(std::move(identifier));
}

NSDate HostEnvironment::now() noexcept {
    const double moment = standingMoment.load(std::memory_order_relaxed);
    return std::isnan(moment) ? NSDate(std::chrono::system_clock::now()) : NSDate::sinceReferenceDate(moment);
}
void HostEnvironment::setNow(std::optional<NSDate> moment) noexcept {
    standingMoment = moment ? moment->timeIntervalSinceReferenceDate() : std::numeric_limits<double>::quiet_NaN();
}

std::optional<std::string> HostEnvironment::textDomain() { return settings().textDomain.get(); }
void HostEnvironment::setTextDomain(std::optional<std::string> domain) { settings().textDomain.set(std::move(domain)); }

}  // namespace ZORPlatform
