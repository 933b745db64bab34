// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <cstdlib>
#include <mutex>
#include <utility>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;

template <class Value>
class Setting {
public:
    [[nodiscard]] std::optional<Value> get() const {
        const std::scoped_lock lock(mutex_);
        return value_;
    }
    void set(std::optional<Value> value) {
        const std::scoped_lock lock(mutex_);
        value_.swap(value);
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
    Setting<std::u16string> mainBundleIdentifier;
    Setting<std::u16string> localeIdentifier;
    Setting<std::string> textDomain;
};

// Never destroyed: threads of the application may still ask while the process exits.
Settings& settings() {
    static Settings& instance = *new Settings;
    return instance;
}

fs::path baseDirectory(const char* variable, const char* belowHome) {
    if (const char* set = std::getenv(variable); set != nullptr && set[0] == '/') return set;
    const char* home = std::getenv("HOME");
    return fs::path(home != nullptr && home[0] == '/' ? home : "/") / belowHome;
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

fs::path dataDirectory() { return baseDirectory("XDG_DATA_HOME", ".local/share") / "ZORFoundation"; }

}  // namespace

fs::path HostEnvironment::documentsDirectory() {
    return settings().documentsDirectory.get().value_or(dataDirectory() / "Documents");
}
void HostEnvironment::setDocumentsDirectory(std::optional<fs::path> directory) {
    settings().documentsDirectory.set(std::move(directory));
}

fs::path HostEnvironment::libraryResourceDirectory() {
    return settings().libraryResourceDirectory.get().value_or(ZOR_INSTALLED_RESOURCE_DIRECTORY);
}
void HostEnvironment::setLibraryResourceDirectory(std::optional<fs::path> directory) {
    settings().libraryResourceDirectory.set(std::move(directory));
}

fs::path HostEnvironment::mainResourceDirectory() {
    return settings().mainResourceDirectory.get().value_or(dataDirectory() / "Resources");
}
void HostEnvironment::setMainResourceDirectory(std::optional<fs::path> directory) {
    settings().mainResourceDirectory.set(std::move(directory));
}

fs::path HostEnvironment::stateDirectory() {
    return settings().stateDirectory.get().value_or(baseDirectory("XDG_STATE_HOME", ".local/state") / "ZORFoundation");
}
void HostEnvironment::setStateDirectory(std::optional<fs::path> directory) {
    settings().stateDirectory.set(std::move(directory));
}

fs::path HostEnvironment::itemStorePath() {
    return settings().itemStorePath.get().value_or(dataDirectory() / "items.sqlite");
}
void HostEnvironment::setItemStorePath(std::optional<fs::path> path) { settings().itemStorePath.set(std::move(path)); }

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

std::optional<std::string> HostEnvironment::textDomain() { return settings().textDomain.get(); }
void HostEnvironment::setTextDomain(std::optional<std::string> domain) { settings().textDomain.set(std::move(domain)); }

}  // namespace ZORPlatform
