// SPDX-License-Identifier: Apache-2.0
//
// Laws of a damaged item store: whatever bytes of the file are changed, a value is given back as it was stored or not
// at all, and nothing crashes or hangs. The input is a list of changes, four bytes each: where (three) and which bits.
#include <ZORPlatform/Security/ItemStoreInternal.h>
#include <ZORPlatform/Security/SQLiteItemStorageInternal.h>
#include <ZORPlatform/Security/SecItem.h>

#include <stdlib.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace {

using namespace ZORPlatform;
namespace fs = std::filesystem;
using Data = SecItemValue::Data;

constexpr std::size_t kChangeBytes = 4;
constexpr std::size_t kMostChanges = 64;
constexpr int kItems = 24;

SecItemDictionary item(int number) {
    if (number % 3 == 0) {
        return {{kSecClass, kSecClassKey},
                {kSecAttrKeyClass, kSecAttrKeyClassSymmetric},
                {kSecAttrApplicationLabel, Data{'k', static_cast<std::uint8_t>(number)}}};
    }
    const Data account{'a', static_cast<std::uint8_t>(number)};
    return {{kSecClass, kSecClassGenericPassword},
            {kSecAttrService, u"be.example.bank"},
            {kSecAttrAccount, account},
            {kSecAttrGeneric, account}};
}

// Some larger than a page of the file.
Data value(int number) { return Data(static_cast<std::size_t>(number) * 300, static_cast<std::uint8_t>(number)); }

/// A directory of the process's own, with a store as it should be.
class Original {
public:
    Original() {
        std::string name = (fs::temp_directory_path() / "zor-fuzz-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) __builtin_trap();
        directory_ = name;
        {
            std::optional<ItemStore> store = open();
            for (int number = 0; number < kItems; ++number) {
                SecItemDictionary added = item(number);
                added.set(kSecValueData, value(number));
                if (store->add(added, nullptr) != errSecSuccess) __builtin_trap();
            }
        }
        std::ifstream stream(path(), std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(stream), {});
    }
    ~Original() {
        std::error_code ignored;
        fs::remove_all(directory_, ignored);
    }
    Original(const Original&) = delete;
    Original& operator=(const Original&) = delete;

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

    void put(const std::string& bytes) const {
        for (const char* suffix : {"-wal", "-shm", ""}) fs::remove(path().string() + suffix);
        std::ofstream(path(), std::ios::binary) << bytes;
    }
    [[nodiscard]] std::optional<ItemStore> open() const {
        constexpr std::array<std::uint8_t, SecItemKeySource::kKeyBytes> kKey{1, 2, 3};
        std::optional<ItemStore> store;
        std::unique_ptr<SQLiteItemStorage> storage;
        if (SQLiteItemStorage::open(path(), storage) != errSecSuccess) return store;
        static_cast<void>(ItemStore::open(std::move(storage), SecItemSuppliedKey(kKey), path(), store));
        return store;
    }

private:
    [[nodiscard]] fs::path path() const { return directory_ / "items.sqlite"; }

    fs::path directory_;
    std::string bytes_;
};

std::optional<Data> read(ItemStore& store, int number) {
    SecItemDictionary query = item(number);
    query.set(kSecReturnData, true);
    SecItemResult result;
    if (store.copyMatching(query, &result) != errSecSuccess) return std::nullopt;
    return *result.as<Data>();
}

void readAll(ItemStore& store, std::u16string_view itemClass) {
    SecItemResult result;
    const OSStatus status = store.copyMatching({{kSecClass, itemClass},
                                                {kSecMatchLimit, kSecMatchLimitAll},
                                                {kSecReturnData, true},
                                                {kSecReturnAttributes, true}},
                                               &result);
    if (status != errSecSuccess) return;
    for (const SecItemResult& found : *result.as<SecItemResult::Array>()) {
        const auto* bytes = found.as<SecItemDictionary>()->find<Data>(kSecValueData);
        if (*bytes != value(bytes->empty() ? 0 : (*bytes)[0])) __builtin_trap();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Original original;
    std::string bytes = original.bytes();
    for (std::size_t at = 0; at + kChangeBytes <= std::min(size, kChangeBytes * kMostChanges); at += kChangeBytes) {
        const std::size_t position = (std::size_t{data[at]} << 16 | std::size_t{data[at + 1]} << 8 | data[at + 2]);
        bytes[position % bytes.size()] = static_cast<char>(bytes[position % bytes.size()] ^ data[at + 3]);
    }
    original.put(bytes);
    std::optional<ItemStore> store = original.open();
    if (!store) return 0;

    for (int number = 0; number < kItems; ++number) {
        const std::optional<Data> found = read(*store, number);
        if (found && *found != value(number)) __builtin_trap();
    }
    readAll(*store, kSecClassGenericPassword);
    readAll(*store, kSecClassKey);

    // What a damaged store acknowledges is there, too.
    const Data changed{42};
    for (const int number : {0, 1}) {
        if (store->update(item(number), {{kSecValueData, changed}}) == errSecSuccess &&
            read(*store, number) != changed) {
            __builtin_trap();
        }
    }
    if (store->remove(item(2)) == errSecSuccess && read(*store, 2)) __builtin_trap();
    return 0;
}
