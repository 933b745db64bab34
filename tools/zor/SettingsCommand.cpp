// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/ByteInput.h>
#include <tools/zor/KeyText.h>
#include <tools/zor/PropertyListText.h>
#include <tools/zor/filter/Output.h>

#include <ZORFoundation/PlistCore/ZORPlistController.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>

namespace zor {
namespace {

namespace fs = std::filesystem;
using ZORPlatform::NSPropertyListSerialization;
using ZORPlatform::PropertyListValue;
using Array = PropertyListValue::Array;
using Bytes = std::vector<std::uint8_t>;
using Dictionary = PropertyListValue::Dictionary;
using Path = std::span<const std::string>;

constexpr std::array kOptions{
    Option{"--key-file", "FILE", "the file is encrypted under the key's text in FILE"},
    Option{"--key-file-exact", "", "a final line end belongs to the key"},
    Option{"--legacy", "", "reads what earlier releases encrypted"},
    Option{"--json", "", "prints JSON instead of XML"},
    Option{"--type", "TYPE", "set: string, integer, real, boolean, date, data, xml"},
    Option{"--new-key-file", "FILE", "convert: encrypts under this key"},
    Option{"--plain", "", "convert: does not encrypt"},
};

constexpr std::size_t kPieceBytes = std::size_t{64} * 1024;

/// A settings file at any path. Only its reading and writing are used: loading would replace a file that is damaged.
class SettingsFile : public ZORFoundation::ZORPlistController {
public:
    explicit SettingsFile(fs::path path) : path_(std::move(path)) {}

    [[nodiscard]] fs::path sandboxDir() const override { return path_.parent_path(); }
    [[nodiscard]] fs::path plistFilename() const override { return path_.filename(); }

private:
    fs::path path_;
};

/// What the data says no to. Reported like a wrong key: exit status 1.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

void setKey(SettingsFile& file, const Arguments& arguments, std::string_view option) {
    const auto path = arguments.value(option);
    file.isEncrypted = path.has_value();
    if (path) file.encryptionKey = KeyText::fromFile(std::string(*path), arguments.has("--key-file-exact")).view();
}

PropertyListValue read(SettingsFile& file, const Arguments& arguments) {
    const std::string path = file.dictPath().string();
    if (::access(path.c_str(), R_OK) != 0) throw StreamError(path + ": " + std::strerror(errno));
    if (!file.getSettingsDataEncrypted(false, false, u"")) throw StreamError(path + ": cannot be read");
    std::optional<Bytes> bytes =
        file.getSettingsDataEncrypted(file.isEncrypted, arguments.has("--legacy"), file.encryptionKey);
    std::optional<PropertyListValue> list;
    if (bytes) {
        list = NSPropertyListSerialization::propertyListWithData(bytes);
        ZORPlatform::wipe(bytes->data(), bytes->size());
    }
    if (!list) {
        throw Refusal(file.isEncrypted ? "the key is wrong, or the file holds no property list"
                                       : "the file holds no property list; an encrypted one needs --key-file");
    }
    return std::move(*list);
}

void write(SettingsFile& file, PropertyListValue list) {
    auto* dictionary = list.as<Dictionary>();
    if (dictionary == nullptr) throw Refusal("settings are a dictionary, and the file holds none");
    file.dictionary = std::move(*dictionary);
    if (file.persist()) return;
    if (!propertyListXml(std::move(*file.dictionary))) throw Refusal("XML cannot hold a value of the list");
    throw StreamError(file.dictPath().string() + ": cannot be written");
}

void print(const std::optional<std::string>& text, std::string_view end) {
    if (!text) throw Refusal("XML cannot hold a value of the list; --json may");
    writeAll(STDOUT_FILENO, *text);
    writeAll(STDOUT_FILENO, end);
}

void printList(const PropertyListValue& value, const Arguments& arguments) {
    if (arguments.has("--json")) return print(propertyListJson(value), "\n");
    print(propertyListXml(value), "");
}

std::u16string keyOf(const std::string& word) {
    std::optional<std::u16string> key = ZORPlatform::utf16IfWellFormed(word);
    if (!key) throw UsageError("a KEY is not UTF-8");
    return std::move(*key);
}

std::optional<std::size_t> indexOf(const std::string& word) {
    std::size_t index = 0;
    const auto read = std::from_chars(word.data(), word.data() + word.size(), index);
    if (read.ec != std::errc{} || read.ptr != word.data() + word.size()) return std::nullopt;
    return index;
}

/// What stands behind a key of a dictionary or an index of an array. Null where there is nothing.
PropertyListValue* entryOf(PropertyListValue& container, const std::string& word) {
    if (auto* dictionary = container.as<Dictionary>()) {
        const auto found = dictionary->find(keyOf(word));
        return found == dictionary->end() ? nullptr : &found->second;
    }
    auto* array = container.as<Array>();
    const std::optional<std::size_t> index = indexOf(word);
    return array != nullptr && index && *index < array->size() ? &(*array)[*index] : nullptr;
}

PropertyListValue& valueAt(PropertyListValue& list, Path path) {
    PropertyListValue* value = &list;
    for (const std::string& word : path) {
        value = entryOf(*value, word);
        if (value == nullptr) throw Refusal("there is no value of that KEY");
    }
    return *value;
}

void assign(PropertyListValue& container, const std::string& word, PropertyListValue value) {
    if (auto* dictionary = container.as<Dictionary>()) {
        dictionary->insert_or_assign(keyOf(word), std::move(value));
        return;
    }
    auto* array = container.as<Array>();
    const std::optional<std::size_t> index = indexOf(word);
    if (array == nullptr || !index || *index > array->size()) throw Refusal("there is no place of that KEY");
    if (*index == array->size()) array->emplace_back();
    (*array)[*index] = std::move(value);
}

Bytes standardInput() {
    ByteInput input("", kPieceBytes);
    Bytes bytes;
    for (auto piece = input.next(); !piece.empty(); piece = input.next()) {
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    return bytes;
}

std::string_view withoutLineEnd(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

PropertyListValue valueOf(const Bytes& input, std::string_view type) {
    constexpr std::array<std::string_view, 3> kElements{"integer", "real", "date"};
    if (type == "data") return input;
    const std::string_view text = withoutLineEnd({reinterpret_cast<const char*>(input.data()), input.size()});
    if (type == "string") {
        std::optional<std::u16string> units = ZORPlatform::utf16IfWellFormed(text);
        if (!units) throw Refusal("the value is not UTF-8");
        return std::move(*units);
    }
    if (type == "boolean") {
        if (text != "true" && text != "false") throw Refusal("the value is neither true nor false");
        return text == "true";
    }
    const bool isElement = std::find(kElements.begin(), kElements.end(), type) != kElements.end();
    if (!isElement && type != "xml") {
        throw UsageError("--type: string, integer, real, boolean, date, data or xml is needed");
    }
    if (isElement && text.find_first_of("<&") != std::string_view::npos) throw Refusal("the value is not of that type");
    std::string xml(text);
    if (isElement) xml = std::string("<").append(type).append(">").append(text).append("</").append(type).append(">");
    const std::optional<PropertyListValue> value = NSPropertyListSerialization::propertyListWithData(
        std::span(reinterpret_cast<const std::uint8_t*>(xml.data()), xml.size()));
    if (!value) throw Refusal("the value is not of that type");
    return *value;
}

void show(SettingsFile& file, const Arguments& arguments, Path path) {
    if (!path.empty()) throw UsageError("settings show: takes no KEY; get does");
    printList(read(file, arguments), arguments);
}

void get(SettingsFile& file, const Arguments& arguments, Path path) {
    if (path.empty()) throw UsageError("settings get: a KEY is needed");
    PropertyListValue list = read(file, arguments);
    const PropertyListValue& value = valueAt(list, path);
    const bool isContainer = value.as<Dictionary>() != nullptr || value.as<Array>() != nullptr;
    if (isContainer || arguments.has("--json")) return printList(value, arguments);
    print(bareText(value), "\n");
}

void set(SettingsFile& file, const Arguments& arguments, Path path) {
    if (path.empty()) throw UsageError("settings set: a KEY is needed; the value comes from standard input");
    PropertyListValue list = read(file, arguments);
    PropertyListValue& container = valueAt(list, path.first(path.size() - 1));
    assign(container, path.back(), valueOf(standardInput(), arguments.value("--type").value_or("string")));
    write(file, std::move(list));
}

void convert(SettingsFile& file, const Arguments& arguments, Path path) {
    if (!path.empty()) throw UsageError("settings convert: takes no KEY");
    const bool isRekeyed = arguments.has("--new-key-file");
    if (isRekeyed && arguments.has("--plain")) throw UsageError("--plain: not with --new-key-file");
    PropertyListValue list = read(file, arguments);
    if (isRekeyed) setKey(file, arguments, "--new-key-file");
    if (arguments.has("--plain")) file.isEncrypted = false;
    write(file, std::move(list));
}

struct FileAction {
    std::string_view name;
    std::string_view help;
    void (*run)(SettingsFile& file, const Arguments& arguments, Path path);
    std::string_view ownOptions;
};

constexpr std::array kFileActions{
    FileAction{"show", "the whole file, as XML or JSON", show, "--json"},
    FileAction{"get", "what is under the KEYs, each inside the one before", get, "--json"},
    FileAction{"set", "puts standard input there", set, "--type"},
    FileAction{"convert", "writes the file anew, encrypted or plain", convert, "--new-key-file --plain"},
};
constexpr auto kActions = actionsOf(kFileActions);

void refuseOptionsOfOthers(const FileAction& action, const Arguments& arguments) {
    for (const std::string_view option : {"--json", "--type", "--new-key-file", "--plain"}) {
        if (arguments.has(option) && action.ownOptions.find(option) == std::string_view::npos) {
            throw UsageError(std::string(option) + ": not for settings " + std::string(action.name));
        }
    }
}

ExitCode run(const Arguments& arguments) {
    const Path words = arguments.words;
    const auto action = std::find_if(kFileActions.begin(), kFileActions.end(),
                                     [&](const FileAction& each) { return each.name == words.front(); });
    if (words.size() < 2) throw UsageError(std::string("settings ").append(action->name).append(": a FILE is needed"));
    refuseOptionsOfOthers(*action, arguments);
    const bool hasKey = arguments.has("--key-file");
    if (arguments.has("--legacy") && !hasKey) throw UsageError("--legacy: --key-file is missing");
    if (arguments.has("--key-file-exact") && !hasKey && !arguments.has("--new-key-file")) {
        throw UsageError("--key-file-exact: --key-file is missing");
    }

    SettingsFile file(words[1]);
    setKey(file, arguments, "--key-file");
    try {
        action->run(file, arguments, words.subspan(2));
    } catch (const Refusal& refusal) {
        writeAll(STDERR_FILENO, std::string("zor: ").append(refusal.what()).append("\n"));
        return ExitCode::someInvalid;
    }
    return ExitCode::success;
}

}  // namespace

const Command kSettingsCommand{.name = "settings",
                               .synopsis = "ACTION FILE [KEY...]",
                               .help = "a settings file shown and changed",
                               .actions = kActions,
                               .options = kOptions,
                               .run = run};

}  // namespace zor
