// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/ByteInput.h>
#include <tools/zor/filter/Output.h>

#include <ZORFoundation/Encryption/ZORKeychain.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>
#include <ZORPlatform/Security/SecItem.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace zor {
namespace {

namespace fs = std::filesystem;
using namespace ZORPlatform;
using ZORFoundation::KeychainItemAccessibility;
using ZORFoundation::ZORKeychain;
using Bytes = ZORKeychain::Bytes;

constexpr std::array kOptions{
    Option{"--store", "FILE", "the item store (default: the user's own)"},
    Option{"--key-source", "SOURCE", "file:PATH, keyring:NAME or credential:NAME"},
    Option{"--service", "NAME", "whose keys (default: ZorKeychainWrapper)"},
    Option{"--access-group", "NAME", "only items of this group"},
    Option{"--accessible", "CASE", "whenUnlocked, always, ...: only items with it"},
    Option{"--type", "TYPE", "string (default), data, integer, double, boolean"},
    Option{"--reference", "REF", "remove: the item that doctor calls so"},
};

constexpr std::size_t kLongestValue = std::size_t{1} << 20;

struct AccessibilityName {
    std::string_view name;
    KeychainItemAccessibility accessibility;
};
constexpr std::array<AccessibilityName, 7> kAccessibilityNames{{
    {"afterFirstUnlock", KeychainItemAccessibility::afterFirstUnlock},
    {"afterFirstUnlockThisDeviceOnly", KeychainItemAccessibility::afterFirstUnlockThisDeviceOnly},
    {"always", KeychainItemAccessibility::always},
    {"whenPasscodeSetThisDeviceOnly", KeychainItemAccessibility::whenPasscodeSetThisDeviceOnly},
    {"alwaysThisDeviceOnly", KeychainItemAccessibility::alwaysThisDeviceOnly},
    {"whenUnlocked", KeychainItemAccessibility::whenUnlocked},
    {"whenUnlockedThisDeviceOnly", KeychainItemAccessibility::whenUnlockedThisDeviceOnly},
}};

/// What the store says no to. Exit status 1, as for a value that is not valid.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string describe(OSStatus status) {
    switch (status) {
        case errSecIO:
            return "cannot be read or written (disk full, read only, or no right)";
        case errSecNotAvailable:
            return "its key is missing, or another process keeps it locked";
        case errSecInteractionNotAllowed:
            return "its key is not in the keyring yet";
        case errSecAuthFailed:
            return "the key is not this store's";
        case errSecDecode:
            return "is damaged, or no item store of this release";
        default:
            return "failed with status " + std::to_string(status);
    }
}

std::u16string textOf(std::string_view bytes, const char* what) {
    std::optional<std::u16string> text = utf16IfWellFormed(bytes);
    if (!text) throw UsageError(std::string(what) + " is not UTF-8");
    return std::move(*text);
}

void setUp(const Arguments& arguments) {
    if (const auto path = arguments.value("--store")) HostEnvironment::setItemStorePath(fs::absolute(*path));
    const auto source = arguments.value("--key-source");
    if (!source) return;
    const std::size_t colon = source->find(':');
    const std::string_view kind = source->substr(0, colon);
    const std::string name(colon == std::string_view::npos ? "" : source->substr(colon + 1));
    if (!name.empty() && kind == "file") {
        SecItemStore::setKeySource(std::make_shared<SecItemKeyFile>(fs::absolute(name)));
    } else if (!name.empty() && kind == "keyring") {
        SecItemStore::setKeySource(std::make_shared<SecItemKernelKeyring>(name));
    } else if (!name.empty() && kind == "credential") {
        SecItemStore::setKeySource(std::make_shared<SecItemSystemdCredential>(name));
    } else {
        throw UsageError("--key-source: file:PATH, keyring:NAME or credential:NAME is needed");
    }
}

// The keychain says only that something failed; the store itself says why.
void openStore() {
    const OSStatus status = SecItemCopyMatching({{kSecClass, kSecClassIdentity}, {kSecAttrLabel, u"zor keychain"}});
    if (status == errSecSuccess || status == errSecItemNotFound) return;
    throw StreamError(HostEnvironment::itemStorePath().string() + ": " + describe(status));
}

// Asking makes no store.
void openExistingStore() {
    if (!fs::exists(HostEnvironment::itemStorePath())) throw Refusal("keychain: there is no item store yet");
    openStore();
}

ZORKeychain keychainOf(const Arguments& arguments) {
    const std::u16string service = textOf(arguments.value("--service").value_or("ZorKeychainWrapper"), "--service");
    const auto group = arguments.value("--access-group");
    return ZORKeychain(service, group ? std::optional(textOf(*group, "--access-group")) : std::nullopt);
}

std::optional<KeychainItemAccessibility> accessibilityOf(const Arguments& arguments) {
    const auto given = arguments.value("--accessible");
    if (!given) return std::nullopt;
    const auto found = std::find_if(kAccessibilityNames.begin(), kAccessibilityNames.end(),
                                    [&](const AccessibilityName& known) { return known.name == *given; });
    if (found == kAccessibilityNames.end()) throw UsageError("--accessible: there is no such case");
    return found->accessibility;
}

std::string_view typeOf(const Arguments& arguments) {
    constexpr std::array<std::string_view, 5> kTypes{"string", "data", "integer", "double", "boolean"};
    const std::string_view type = arguments.value("--type").value_or("string");
    if (std::find(kTypes.begin(), kTypes.end(), type) == kTypes.end()) {
        throw UsageError("--type: string, data, integer, double or boolean is needed");
    }
    return type;
}

std::u16string keyOf(const Arguments& arguments) {
    if (arguments.words.size() != 2) throw UsageError("keychain: one KEY is needed");
    return textOf(arguments.words[1], "the KEY");
}

template <class Number>
std::optional<std::string> numberText(const std::optional<Number>& number) {
    if (!number) return std::nullopt;
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), *number).ptr;
    return std::string(digits.data(), end) + "\n";
}

std::optional<std::string> textOfValue(const ZORKeychain& keychain, std::u16string_view key, std::string_view type,
                                       std::optional<KeychainItemAccessibility> accessibility) {
    if (type == "integer") return numberText(keychain.integer(key, accessibility));
    if (type == "double") return numberText(keychain.double_(key, accessibility));
    if (type == "boolean") {
        const std::optional<bool> value = keychain.bool_(key, accessibility);
        return value ? std::optional<std::string>(*value ? "true\n" : "false\n") : std::nullopt;
    }
    std::optional<Bytes> value = keychain.data(key, accessibility);
    if (!value) return std::nullopt;
    std::string text(value->begin(), value->end());
    wipe(value->data(), value->size());
    if (type == "data") return text;
    if (!isWellFormedUtf8(text)) throw Refusal("keychain: the value is no text; --type=data prints it");
    return text + "\n";
}

void get(const Arguments& arguments) {
    const std::u16string key = keyOf(arguments);
    const ZORKeychain keychain = keychainOf(arguments);
    const std::string_view type = typeOf(arguments);
    const auto accessibility = accessibilityOf(arguments);
    openExistingStore();
    std::optional<std::string> text = textOfValue(keychain, key, type, accessibility);
    if (!text) throw Refusal("keychain: there is no value of that type under the KEY");
    writeAll(STDOUT_FILENO, *text);
    wipe(text->data(), text->size());
}

template <class Number>
Number numberIn(std::string_view text) {
    Number number{};
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc{} || read.ptr != text.data() + text.size()) {
        throw Refusal("keychain: the value is not of that type");
    }
    return number;
}

bool setValue(ZORKeychain& keychain, std::u16string_view key, std::string_view type,
              std::span<const std::uint8_t> bytes, std::optional<KeychainItemAccessibility> accessibility) {
    if (type == "data") return keychain.set(bytes, key, accessibility);
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    if (type == "integer") return keychain.set(numberIn<std::int64_t>(text), key, accessibility);
    if (type == "double") return keychain.set(numberIn<double>(text), key, accessibility);
    if (type == "boolean") {
        if (text != "true" && text != "false") throw Refusal("keychain: the value is neither true nor false");
        return keychain.set(text == "true", key, accessibility);
    }
    // A text is stored as its UTF-8, so it needs no other form in between.
    if (!isWellFormedUtf8(text)) throw Refusal("keychain: the value is not UTF-8; --type=data stores it");
    return keychain.set(bytes.first(text.size()), key, accessibility);
}

void set(const Arguments& arguments) {
    const std::u16string key = keyOf(arguments);
    ZORKeychain keychain = keychainOf(arguments);
    const std::string_view type = typeOf(arguments);
    const auto accessibility = accessibilityOf(arguments);
    openStore();
    ByteInput input("", kLongestValue + 1);
    const auto bytes = input.next();
    if (bytes.size() > kLongestValue) throw Refusal("keychain: the value is longer than 1048576 bytes");
    if (setValue(keychain, key, type, bytes, accessibility)) return;
    if (accessibility && keychain.hasValue(key)) throw Refusal("keychain: the KEY is there with another --accessible");
    throw StreamError("keychain: the value could not be stored");
}

// "genp-17": the class of an item and the number of its row.
Bytes persistentReference(std::string_view text) {
    Bytes reference;
    std::uint64_t number = 0;
    if (text.size() > 5 && text[4] == '-') {
        reference.assign(text.begin(), text.begin() + 4);
        number = numberIn<std::uint64_t>(text.substr(5));
    }
    if (number == 0) throw UsageError("--reference: a class and a number are needed, as doctor prints them");
    for (int shift = 56; shift >= 0; shift -= 8) reference.push_back(static_cast<std::uint8_t>(number >> shift));
    return reference;
}

void remove(const Arguments& arguments) {
    if (const auto reference = arguments.value("--reference")) {
        if (arguments.words.size() != 1) throw UsageError("keychain: either a KEY or --reference");
        const SecItemDictionary query{{kSecValuePersistentRef, persistentReference(*reference)}};
        openExistingStore();
        if (SecItemDelete(query) == errSecSuccess) return;
        throw Refusal("keychain: there is no item of that reference");
    }
    const std::u16string key = keyOf(arguments);
    ZORKeychain keychain = keychainOf(arguments);
    const auto accessibility = accessibilityOf(arguments);
    openExistingStore();
    if (!keychain.removeObject(key, accessibility)) {
        throw Refusal("keychain: there is no such KEY");
    }
}

void appendColumn(std::string& line, std::string_view column) {
    for (const char byte : column) {
        switch (byte) {
            case '\\':
                line += "\\\\";
                break;
            case '\t':
                line += "\\t";
                break;
            case '\n':
                line += "\\n";
                break;
            case '\r':
                line += "\\r";
                break;
            default:
                line += byte;
        }
    }
}

// UTF-8, with U+FFFD for what is none.
std::string textOfAttribute(const SecItemValue* value) {
    if (value == nullptr) return {};
    if (const auto* text = value->as<std::u16string>()) return utf8(*text);
    const auto* bytes = value->as<SecItemValue::Data>();
    return bytes != nullptr ? utf8(utf16({reinterpret_cast<const char*>(bytes->data()), bytes->size()}))
                            : std::string();
}

std::string_view accessibilityName(const SecItemValue* value) {
    const auto* text = value != nullptr ? value->as<std::u16string>() : nullptr;
    const auto accessibility = text != nullptr ? ZORFoundation::accessibilityForAttributeValue(*text) : std::nullopt;
    const auto found =
        std::find_if(kAccessibilityNames.begin(), kAccessibilityNames.end(),
                     [&](const AccessibilityName& known) { return known.accessibility == accessibility; });
    return found != kAccessibilityNames.end() ? found->name : "";
}

void list(const Arguments& arguments) {
    if (arguments.words.size() != 1) throw UsageError("keychain list: takes no KEY");
    SecItemDictionary query{
        {kSecClass, kSecClassGenericPassword}, {kSecMatchLimit, kSecMatchLimitAll}, {kSecReturnAttributes, true}};
    if (const auto service = arguments.value("--service")) query.set(kSecAttrService, textOf(*service, "--service"));
    if (const auto group = arguments.value("--access-group")) {
        query.set(kSecAttrAccessGroup, textOf(*group, "--access-group"));
    }
    if (const auto accessibility = accessibilityOf(arguments)) {
        query.set(kSecAttrAccessible, keychainAttrValue(*accessibility));
    }
    openExistingStore();
    SecItemResult result;
    const OSStatus status = SecItemCopyMatching(query, &result);
    if (status == errSecDecode) throw Refusal("keychain: an item is damaged; doctor says which");
    if (status == errSecItemNotFound) return;
    if (status != errSecSuccess) throw StreamError("keychain: the store " + describe(status));
    std::string lines;
    for (const SecItemResult& item : *result.as<SecItemResult::Array>()) {
        const auto& attributes = *item.as<SecItemDictionary>();
        appendColumn(lines, textOfAttribute(attributes.find(kSecAttrService)));
        lines += '\t';
        appendColumn(lines, textOfAttribute(attributes.find(kSecAttrAccount)));
        lines.append("\t").append(accessibilityName(attributes.find(kSecAttrAccessible))).append("\n");
    }
    writeAll(STDOUT_FILENO, lines);
}

/// What doctor has to say, and whether it is well.
class Diagnosis {
public:
    void say(std::string_view what, std::string_view finding) {
        text_.append(what).append(": ").append(finding).append("\n");
    }
    void complain(std::string_view finding) {
        say("problem", finding);
        isWell_ = false;
    }
    /// Says the mode of a file, and complains where others than its owner may use it.
    void sayMode(std::string_view what, const fs::path& path) {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::exists(status)) return;
        const auto mode = static_cast<unsigned>(status.permissions() & fs::perms::mask);
        std::array<char, 8> digits{};
        std::snprintf(digits.data(), digits.size(), "%04o", mode);
        say(what, path.string() + ", mode " + digits.data());
        if ((mode & 077) != 0) complain(path.string() + " is open to others");
    }
    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    [[nodiscard]] bool isWell() const noexcept { return isWell_; }

private:
    std::string text_;
    bool isWell_ = true;
};

// @return whether all is well
bool doctor(const Arguments& arguments) {
    if (arguments.words.size() != 1) throw UsageError("keychain doctor: takes no KEY");
    Diagnosis diagnosis;
    const SecItemStoreReport report = SecItemStore::examine();
    diagnosis.sayMode("directory", report.path.parent_path());
    if (report.exists) {
        for (const char* suffix : {"", "-wal", "-shm"}) diagnosis.sayMode("store", report.path.string() + suffix);
    } else {
        diagnosis.say("store", report.path.string() + ", not made yet");
    }
    diagnosis.say("key", report.keySource);
    if (report.keyFile) diagnosis.sayMode("key file", *report.keyFile);
    if (report.exists && report.status != errSecSuccess) diagnosis.complain("the store: " + describe(report.status));
    if (report.exists && report.status == errSecSuccess) {
        diagnosis.say("schema", "version " + std::to_string(report.schemaVersion));
        diagnosis.say("items", std::to_string(report.items));
        if (!report.isSound) diagnosis.complain("the database itself is damaged");
        for (const std::string& item : report.damagedItems) diagnosis.complain("damaged item " + item);
    }
    writeAll(STDOUT_FILENO, diagnosis.text());
    return diagnosis.isWell();
}

/// Folds the log into the file at the end, so that a copy of the file is a copy of the store.
struct ClosedAtTheEnd {
    ClosedAtTheEnd() = default;
    ~ClosedAtTheEnd() { SecItemStore::close(); }
    ClosedAtTheEnd(const ClosedAtTheEnd&) = delete;
    ClosedAtTheEnd& operator=(const ClosedAtTheEnd&) = delete;
};

struct StoreAction {
    std::string_view name;
    std::string_view help;
    bool (*run)(const Arguments& arguments);  ///< False: it found something wrong.
};

template <auto act>
bool done(const Arguments& arguments) {
    act(arguments);
    return true;
}

constexpr std::array kStoreActions{
    StoreAction{"get", "prints the value under KEY", done<get>},
    StoreAction{"set", "puts standard input under KEY", done<set>},
    StoreAction{"remove", "removes the value under KEY", done<remove>},
    StoreAction{"list", "the keys", done<list>},
    StoreAction{"doctor", "the key source, files and modes; checks every item", doctor},
};
constexpr auto kActions = actionsOf(kStoreActions);

ExitCode run(const Arguments& arguments) {
    const auto action = std::find_if(kStoreActions.begin(), kStoreActions.end(),
                                     [&](const StoreAction& each) { return each.name == arguments.words.front(); });
    if (arguments.has("--reference") && action->name != "remove") throw UsageError("--reference: only for remove");
    setUp(arguments);
    const ClosedAtTheEnd closing;
    try {
        return action->run(arguments) ? ExitCode::success : ExitCode::someInvalid;
    } catch (const Refusal& refusal) {
        writeAll(STDERR_FILENO, std::string("zor: ").append(refusal.what()).append("\n"));
        return ExitCode::someInvalid;
    }
}

}  // namespace

const Command kKeychainCommand{.name = "keychain",
                               .synopsis = "ACTION [KEY]",
                               .help = "secrets in the item store",
                               .actions = kActions,
                               .options = kOptions,
                               .run = run};

}  // namespace zor
