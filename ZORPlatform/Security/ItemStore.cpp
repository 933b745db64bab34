// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/ItemStoreInternal.h>

#include <ZORPlatform/Foundation/NSDate.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>
#include <ZORPlatform/Security/ItemAttributesInternal.h>
#include <ZORPlatform/Security/ItemReferencesInternal.h>
#include <ZORPlatform/Security/SecItem.h>

#include <algorithm>
#include <concepts>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

using Data = SecItemValue::Data;

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kCodeBytes = 4;
constexpr std::size_t kPersistentReferenceBytes = 12;

/// What the return keys ask for.
struct Wanted {
    bool data = false;
    bool attributes = false;
    bool reference = false;
    bool persistentReference = false;

    [[nodiscard]] int count() const noexcept { return data + attributes + reference + persistentReference; }
    [[nodiscard]] bool any() const noexcept { return count() != 0; }
    /// Whether it takes the value.
    [[nodiscard]] bool value() const noexcept { return data || reference; }
};

/// A dictionary of the application's, read.
struct Request {
    const ItemClass* itemClass = nullptr;
    std::optional<std::int64_t> row;
    ItemAttributes attributes;
    const Data* value = nullptr;
    const SecItemValue* reference = nullptr;
    std::optional<std::size_t> limit;
    Wanted wanted;
};

OSStatus readClass(const SecItemDictionary& dictionary, Request& request) {
    const SecItemValue* given = dictionary.find(kSecClass);
    if (given == nullptr) return errSecSuccess;
    const auto* name = given->as<std::u16string>();
    if (name == nullptr) return errSecParam;
    request.itemClass = findItemClass(fourLetterCode(*name));
    return request.itemClass != nullptr ? errSecSuccess : errSecNoSuchClass;
}

OSStatus readPersistentReference(const SecItemValue& given, Request& request) {
    const auto* bytes = given.as<Data>();
    if (bytes == nullptr || bytes->size() != kPersistentReferenceBytes) return errSecParam;
    const std::string_view reference(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    const ItemClass* itemClass = findItemClass(classCodeOf(reference));
    if (itemClass == nullptr) return errSecParam;
    if (request.itemClass != nullptr && request.itemClass != itemClass) return errSecItemNotFound;
    request.itemClass = itemClass;
    request.row = static_cast<std::int64_t>(readBigEndian(reference.substr(kCodeBytes)));
    return errSecSuccess;
}

OSStatus readLimit(const SecItemValue& given, Request& request) {
    if (const auto* text = given.as<std::u16string>()) {
        if (*text != kSecMatchLimitOne && *text != kSecMatchLimitAll) return errSecParam;
        request.limit = *text == kSecMatchLimitOne ? 1 : kNoLimit;
        return errSecSuccess;
    }
    const auto* number = given.as<std::int64_t>();
    if (number == nullptr || *number < 1) return errSecParam;
    request.limit = static_cast<std::size_t>(*number);
    return errSecSuccess;
}

OSStatus readFlag(const SecItemValue& given, bool& flag) {
    const auto* value = given.as<bool>();
    if (value == nullptr) return errSecParam;
    flag = *value;
    return errSecSuccess;
}

OSStatus readAttribute(std::u16string_view name, const SecItemValue& given, Request& request) {
    if (request.itemClass == nullptr) return errSecParam;
    const AttributeRule* rule = request.itemClass->find(fourLetterCode(name));
    if (rule == nullptr) return errSecNoSuchAttr;
    ItemAttribute attribute;
    const OSStatus status = encodeAttribute(*rule, given, attribute);
    if (status == errSecSuccess) request.attributes.set(std::move(attribute));
    return status;
}

OSStatus readEntry(std::u16string_view name, const SecItemValue& given, Request& request) {
    // Most entries are attributes, and only their names have four letters.
    if (name.size() == kCodeBytes) return readAttribute(name, given, request);
    if (name == kSecClass || name == kSecValuePersistentRef) return errSecSuccess;
    if (name == kSecMatchLimit) return readLimit(given, request);
    if (name == kSecReturnData) return readFlag(given, request.wanted.data);
    if (name == kSecReturnAttributes) return readFlag(given, request.wanted.attributes);
    if (name == kSecReturnPersistentRef) return readFlag(given, request.wanted.persistentReference);
    if (name == kSecReturnRef) return readFlag(given, request.wanted.reference);
    if (name == kSecValueRef) {
        request.reference = &given;
        return errSecSuccess;
    }
    if (name == kSecValueData) {
        request.value = given.as<Data>();
        return request.value != nullptr ? errSecSuccess : errSecParam;
    }
    return readAttribute(name, given, request);
}

OSStatus readEntries(const SecItemDictionary& dictionary, Request& request) {
    for (const auto& [name, value] : dictionary) {
        if (const OSStatus status = readEntry(name, value, request); status != errSecSuccess) return status;
    }
    return errSecSuccess;
}

/// A dictionary that says which items are meant.
OSStatus readQuery(const SecItemDictionary& dictionary, Request& request) {
    OSStatus status = readClass(dictionary, request);
    if (const SecItemValue* reference = dictionary.find(kSecValuePersistentRef);
        status == errSecSuccess && reference != nullptr) {
        status = readPersistentReference(*reference, request);
    }
    if (status == errSecSuccess && request.itemClass == nullptr) status = errSecParam;
    if (status == errSecSuccess) status = readEntries(dictionary, request);
    const bool hasValue = request.value != nullptr || request.reference != nullptr;
    return status == errSecSuccess && hasValue ? errSecParam : status;
}

/// A query for items to be changed: all of them, and none is given back.
OSStatus readQueryForChange(const SecItemDictionary& dictionary, Request& request) {
    const OSStatus status = readQuery(dictionary, request);
    return status == errSecSuccess && (request.limit || request.wanted.any()) ? errSecParam : status;
}

ItemAttribute encoded(const ItemClass& itemClass, std::u16string_view name, const SecItemValue& value) {
    ItemAttribute attribute;
    static_cast<void>(encodeAttribute(*itemClass.find(fourLetterCode(name)), value, attribute));
    return attribute;
}

void setUnlessGiven(const ItemClass& itemClass, std::u16string_view name, const SecItemValue& value,
                    ItemAttributes& attributes) {
    if (attributes.find(fourLetterCode(name)) == nullptr) attributes.set(encoded(itemClass, name, value));
}

/// Takes the class, the value and attributes from a handle, without replacing what is given.
OSStatus readReference(const SecItemValue& reference, Request& request, SecItemDictionary& derived, Data& value) {
    std::optional<ReferencedItem> item = itemOfReference(reference);
    if (!item) return errSecParam;
    const ItemClass* itemClass = findItemClass(fourLetterCode(item->itemClass));
    if (request.itemClass != nullptr && request.itemClass != itemClass) return errSecParam;
    request.itemClass = itemClass;
    derived = std::move(item->attributes);
    value = std::move(item->value);
    return errSecSuccess;
}

/// An item to be added.
///
/// @param value  holds the value where it is a handle's
OSStatus readItem(const SecItemDictionary& dictionary, Request& request, Data& value) {
    OSStatus status = readClass(dictionary, request);
    if (status != errSecSuccess) return status;
    SecItemDictionary derived;
    if (const SecItemValue* reference = dictionary.find(kSecValueRef)) {
        status = readReference(*reference, request, derived, value);
        if (status != errSecSuccess) return status;
    }
    if (request.itemClass == nullptr || dictionary.find(kSecValuePersistentRef) != nullptr) return errSecParam;
    status = readEntries(dictionary, request);
    if (status != errSecSuccess) return status;
    if (request.limit || (request.reference != nullptr && request.value != nullptr)) return errSecParam;
    if (request.reference != nullptr) request.value = &value;
    if (request.itemClass->name == kSecClassCertificate && request.value != nullptr) {
        derived = attributesOfCertificate(*request.value);
    }
    for (const auto& [name, attribute] : derived)
        setUnlessGiven(*request.itemClass, name, attribute, request.attributes);
    return errSecSuccess;
}

/// What is to change in items of a class.
OSStatus readChanges(const ItemClass& itemClass, const SecItemDictionary& dictionary, Request& request) {
    if (dictionary.size() == 0 || dictionary.find(kSecClass) != nullptr ||
        dictionary.find(kSecValuePersistentRef) != nullptr) {
        return errSecParam;
    }
    request.itemClass = &itemClass;
    const OSStatus status = readEntries(dictionary, request);
    const bool isMisplaced = request.limit || request.wanted.any() || request.reference != nullptr;
    return status == errSecSuccess && isMisplaced ? errSecParam : status;
}

void complete(const ItemClass& itemClass, ItemAttributes& attributes) {
    setUnlessGiven(itemClass, kSecAttrAccessible, itemClass.defaultAccessibility, attributes);
    setUnlessGiven(itemClass, kSecAttrAccessGroup, u"", attributes);
    setUnlessGiven(itemClass, kSecAttrSynchronizable, 0, attributes);
    const NSDate now = NSDate::date();
    attributes.set(encoded(itemClass, kSecAttrCreationDate, now));
    attributes.set(encoded(itemClass, kSecAttrModificationDate, now));
}

/// Compares rows with what a query gives.
class Matcher {
public:
    explicit Matcher(const Request& query) : query_(query) {
        prefix_ = identityPrefix(*query.itemClass, query.attributes, keyAttributesCovered_);
    }

    /// What the identity of every match begins with.
    [[nodiscard]] const std::string& prefix() const noexcept { return prefix_; }

    /// @return `errSecItemNotFound` for a row that differs, `errSecDecode` for one that cannot be compared
    [[nodiscard]] OSStatus compare(const ItemRow& row) const {
        if (!row.identity.starts_with(prefix_)) return errSecItemNotFound;
        for (const ItemAttribute& wanted : query_.attributes) {
            if (isCovered(wanted)) continue;
            if (const OSStatus status = compare(wanted, row.attributes); status != errSecSuccess) return status;
        }
        return errSecSuccess;
    }

private:
    /// Whether the prefix tells the attribute.
    [[nodiscard]] bool isCovered(const ItemAttribute& attribute) const noexcept {
        const auto covered = query_.itemClass->key.first(keyAttributesCovered_);
        return std::any_of(covered.begin(), covered.end(),
                           [&](const auto& rule) { return rule.code == attribute.code; });
    }

    [[nodiscard]] OSStatus compare(const ItemAttribute& wanted, std::string_view attributes) const {
        AttributeReader reader(attributes);
        for (ItemAttributeView stored; reader.next(stored);) {
            if (stored.code != wanted.code) continue;
            return stored.payload == wanted.payload ? errSecSuccess : errSecItemNotFound;
        }
        if (reader.isDamaged()) return errSecDecode;
        // What is missing in a primary key counts as empty or 0.
        const bool isEmpty = wanted.payload.find_first_not_of('\0') == std::string::npos;
        return isEmpty && query_.itemClass->isKey(wanted.code) ? errSecSuccess : errSecItemNotFound;
    }

    const Request& query_;
    std::string prefix_;
    std::size_t keyAttributesCovered_ = 0;
};

/// Calls `work` for every row that a query finds, with the status of comparing: success, or `errSecDecode`.
template <class Work>
OSStatus visitMatches(ItemStorage& storage, const Request& query, const Work& work) {
    const Matcher matcher(query);
    const auto visitor = [&](const ItemRow& row) -> OSStatus {
        const OSStatus status = matcher.compare(row);
        return status == errSecItemNotFound ? errSecSuccess : work(row, status);
    };
    return query.row ? storage.visitRow(*query.row, visitor) : storage.visit(matcher.prefix(), visitor);
}

Data persistentReference(std::string_view identity, std::int64_t number) {
    std::string reference(identity.substr(0, kCodeBytes));
    appendBigEndian(reference, static_cast<std::uint64_t>(number), kPersistentReferenceBytes - kCodeBytes);
    return {reference.begin(), reference.end()};
}

std::u16string nameOf(std::uint32_t code) {
    std::u16string name(kCodeBytes, u'\0');
    for (std::size_t i = kCodeBytes; i-- != 0; code >>= 8) name[i] = static_cast<char16_t>(code & 0xFF);
    return name;
}

OSStatus decodeAll(std::string_view attributes, SecItemDictionary& dictionary) {
    AttributeReader reader(attributes);
    for (ItemAttributeView attribute; reader.next(attribute);) {
        std::optional<SecItemValue> value = decodeAttribute(attribute);
        if (!value) return errSecDecode;
        dictionary.set(nameOf(attribute.code), std::move(*value));
    }
    return reader.isDamaged() ? errSecDecode : errSecSuccess;
}

/// The status of a query or an addition that asks for a handle: only keys and certificates have one.
OSStatus checkWanted(const Wanted& wanted, const ItemClass& itemClass) {
    const bool hasReferences = itemClass.name == kSecClassKey || itemClass.name == kSecClassCertificate;
    return wanted.reference && !hasReferences ? errSecParam : errSecSuccess;
}

/// What is asked for of one item, in its form. Takes the value over.
OSStatus present(const Wanted& wanted, const ItemRow& row, Data value, SecItemResult& result) {
    std::optional<SecItemValue> reference;
    if (wanted.reference) {
        const ItemClass* itemClass = findItemClass(classCodeOf(row.identity));
        if (itemClass != nullptr) reference = referenceOfItem(itemClass->name, value);
        if (!reference) return errSecDecode;
    }
    SecItemDictionary dictionary;
    if (wanted.attributes) {
        if (const OSStatus status = decodeAll(row.attributes, dictionary); status != errSecSuccess) return status;
    }
    if (wanted.count() == 1 && wanted.data) {
        result = std::move(value);
    } else if (wanted.count() == 1 && wanted.reference) {
        reference->visit([&result](const auto& handle) {
            using Handle = std::decay_t<decltype(handle)>;
            if constexpr (std::same_as<Handle, SecKey> || std::same_as<Handle, SecCertificate>) result = handle;
        });
    } else if (wanted.count() == 1 && wanted.persistentReference) {
        result = persistentReference(row.identity, row.number);
    } else {
        if (wanted.data) dictionary.set(kSecValueData, std::move(value));
        if (reference) dictionary.set(kSecValueRef, std::move(*reference));
        if (wanted.persistentReference) {
            dictionary.set(kSecValuePersistentRef, persistentReference(row.identity, row.number));
        }
        result = std::move(dictionary);
    }
    return errSecSuccess;
}

void wipeBytes(Data& bytes) { wipe(bytes.data(), bytes.size()); }

/// An item found, or the reason why it cannot be given.
struct Found {
    std::int64_t number;
    OSStatus status;
    SecItemResult result;
};

/// The oldest items found so far, as many as the limit allows.
class OldestFirst {
public:
    explicit OldestFirst(std::size_t limit) : limit_(limit) {}

    [[nodiscard]] bool takes(std::int64_t number) const noexcept {
        return limit_ != 1 || found_.empty() || number < found_.front().number;
    }
    void take(Found found) {
        if (limit_ == 1) found_.clear();
        found_.push_back(std::move(found));
    }
    [[nodiscard]] std::vector<Found> take() {
        std::sort(found_.begin(), found_.end(),
                  [](const Found& left, const Found& right) { return left.number < right.number; });
        if (found_.size() > limit_) found_.erase(found_.begin() + static_cast<std::ptrdiff_t>(limit_), found_.end());
        return std::move(found_);
    }

private:
    std::size_t limit_;
    std::vector<Found> found_;
};

/// A row that is to change, out of the storage.
struct Change {
    std::int64_t number;
    std::string identity;
    ItemAttributes attributes;
    WipingBuffer value;
};

WipingBuffer wipingCopy(Data bytes) {
    WipingBuffer copy(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy.data());
    wipeBytes(bytes);
    return copy;
}

std::span<const std::uint8_t> bytesOf(const Data* value) {
    return value != nullptr ? std::span<const std::uint8_t>(*value) : std::span<const std::uint8_t>();
}

}  // namespace

OSStatus ItemStore::open(std::unique_ptr<ItemStorage> storage, const SecItemKeySource& source,
                         const std::filesystem::path& path, std::optional<ItemStore>& store) {
    std::optional<std::string> mark;
    OSStatus status = storage->keyCheck(mark);
    if (status != errSecSuccess) return status;
    WipingArray<std::uint8_t, SecItemKeySource::kKeyBytes> key;
    status = source.copyKey(path, /*isNew=*/!mark, key.span());
    if (status != errSecSuccess) return status;
    ItemSealing sealing(std::as_const(key).span());
    if (!mark) {
        // Whoever comes first gives the storage its key; the others' must be the same one.
        ItemTransaction transaction(*storage);
        status = transaction.status();
        if (status == errSecSuccess) status = storage->keyCheck(mark);
        if (status == errSecSuccess && !mark) {
            mark = sealing.mark();
            status = storage->setKeyCheck(*mark);
        }
        status = transaction.finish(status);
        if (status != errSecSuccess) return status;
    }
    if (!sealing.isMark(*mark)) return errSecAuthFailed;
    store = ItemStore(std::move(storage), std::move(sealing));
    return errSecSuccess;
}

OSStatus ItemStore::add(const SecItemDictionary& attributes, SecItemResult* result) {
    Request item;
    Data valueOfReference;
    OSStatus status = readItem(attributes, item, valueOfReference);
    if (status == errSecSuccess) status = checkWanted(item.wanted, *item.itemClass);
    if (status != errSecSuccess) return status;
    complete(*item.itemClass, item.attributes);
    const std::string identity = identityOf(*item.itemClass, item.attributes);
    const Data none;
    const Data& value = item.value != nullptr ? *item.value : none;
    // A value that is no key is found out before it is stored, not behind it.
    if (item.wanted.reference && !referenceOfItem(item.itemClass->name, value)) return errSecDecode;
    // Adding is the first step of replacing: an item that is there costs neither a sealing nor a change begun in vain.
    // To ask takes time as well, so it is not done for an item that has not been met.
    auto hasBeenMet = met_[std::hash<std::string_view>()(identity) % met_.size()];
    if (hasBeenMet) {
        bool isThere = false;
        status = storage_->contains(identity, isThere);
        if (status == errSecSuccess && isThere) status = errSecDuplicateItem;
        if (status != errSecSuccess) return status;
    }
    hasBeenMet = true;
    const std::string encodedAttributes = item.attributes.encoded();
    const auto sealed = sealing_.seal(identity, encodedAttributes, value);
    if (!sealed) return errSecParam;
    std::int64_t number = 0;
    status = storage_->insert(identity, encodedAttributes, *sealed, number);
    if (status != errSecSuccess || result == nullptr || !item.wanted.any()) return status;
    return present(item.wanted, {number, identity, encodedAttributes, *sealed}, value, *result);
}

OSStatus ItemStore::copyMatching(const SecItemDictionary& query, SecItemResult* result) {
    Request request;
    OSStatus status = readQuery(query, request);
    if (status == errSecSuccess) status = checkWanted(request.wanted, *request.itemClass);
    if (status != errSecSuccess) return status;
    const std::size_t limit = request.limit.value_or(1);
    OldestFirst oldest(limit);
    status = visitMatches(*storage_, request, [&](const ItemRow& row, OSStatus compared) -> OSStatus {
        if (!oldest.takes(row.number)) return errSecSuccess;
        Found found{row.number, compared, {}};
        // Whatever is given back has been authenticated, attributes as well as the value.
        if (compared == errSecSuccess) {
            std::optional<Data> value = sealing_.open(row.identity, row.attributes, row.sealed);
            if (value && !request.wanted.value()) wipeBytes(*value);
            found.status = value ? present(request.wanted, row, std::move(*value), found.result) : errSecDecode;
        }
        oldest.take(std::move(found));
        return errSecSuccess;
    });
    if (status != errSecSuccess) return status;

    std::vector<Found> found = oldest.take();
    if (found.empty()) return errSecItemNotFound;
    for (const Found& item : found) {
        if (item.status != errSecSuccess) return item.status;
    }
    if (result == nullptr || !request.wanted.any()) return errSecSuccess;
    if (limit == 1) {
        *result = std::move(found.front().result);
        return errSecSuccess;
    }
    SecItemResult::Array array;
    array.reserve(found.size());
    for (Found& item : found) array.push_back(std::move(item.result));
    *result = std::move(array);
    return errSecSuccess;
}

OSStatus ItemStore::update(const SecItemDictionary& query, const SecItemDictionary& attributesToUpdate) {
    Request request;
    Request changes;
    OSStatus status = readQueryForChange(query, request);
    if (status == errSecSuccess) status = readChanges(*request.itemClass, attributesToUpdate, changes);
    if (status != errSecSuccess) return status;

    ItemTransaction transaction(*storage_);
    if (transaction.status() != errSecSuccess) return transaction.status();
    std::vector<Change> found;
    status = visitMatches(*storage_, request, [&](const ItemRow& row, OSStatus compared) -> OSStatus {
        if (compared != errSecSuccess) return compared;
        std::optional<Data> value = sealing_.open(row.identity, row.attributes, row.sealed);
        if (!value) return errSecDecode;
        WipingBuffer kept = wipingCopy(std::move(*value));
        std::optional<ItemAttributes> attributes = ItemAttributes::decoded(row.attributes);
        if (!attributes) return errSecDecode;
        found.push_back({row.number, std::string(row.identity), std::move(*attributes), std::move(kept)});
        return errSecSuccess;
    });
    if (status == errSecSuccess && found.empty()) status = errSecItemNotFound;
    const ItemAttribute now = encoded(*request.itemClass, kSecAttrModificationDate, NSDate::date());
    for (Change& change : found) {
        if (status != errSecSuccess) break;
        for (const ItemAttribute& attribute : changes.attributes) {
            if (attribute.code != fourLetterCode(kSecAttrCreationDate)) change.attributes.set(attribute);
        }
        change.attributes.set(now);
        const std::string identity = identityOf(*request.itemClass, change.attributes);
        const std::string attributes = change.attributes.encoded();
        const auto sealed =
            sealing_.seal(identity, attributes,
                          changes.value != nullptr ? bytesOf(changes.value) : std::as_const(change.value).span());
        if (!sealed) {
            status = errSecParam;
            break;
        }
        const bool keepsIdentity = identity == change.identity;
        status =
            storage_->replace(change.number, keepsIdentity ? std::nullopt : std::optional<std::string_view>(identity),
                              attributes, *sealed);
    }
    return transaction.finish(status);
}

OSStatus ItemStore::remove(const SecItemDictionary& query) {
    Request request;
    if (const OSStatus status = readQueryForChange(query, request); status != errSecSuccess) return status;
    ItemTransaction transaction(*storage_);
    if (transaction.status() != errSecSuccess) return transaction.status();
    std::vector<std::int64_t> numbers;
    OSStatus status = visitMatches(*storage_, request, [&](const ItemRow& row, OSStatus compared) -> OSStatus {
        if (compared == errSecSuccess) numbers.push_back(row.number);
        return compared;
    });
    if (status == errSecSuccess && numbers.empty()) status = errSecItemNotFound;
    for (const std::int64_t number : numbers) {
        if (status == errSecSuccess) status = storage_->remove(number);
    }
    return transaction.finish(status);
}

OSStatus ItemStore::examine(SecItemStoreReport& report) {
    const OSStatus status = storage_->visit({}, [&](const ItemRow& row) -> OSStatus {
        ++report.items;
        const ItemClass* itemClass = findItemClass(classCodeOf(row.identity));
        std::optional<Data> value = sealing_.open(row.identity, row.attributes, row.sealed);
        const bool opens = value.has_value();
        if (opens) wipeBytes(*value);
        const std::optional<ItemAttributes> attributes = ItemAttributes::decoded(row.attributes);
        const bool isRight =
            opens && itemClass != nullptr && attributes && identityOf(*itemClass, *attributes) == row.identity;
        if (!isRight) {
            report.damagedItems.push_back((itemClass != nullptr ? utf8(itemClass->name) : "row") + "-" +
                                          std::to_string(row.number));
        }
        return errSecSuccess;
    });
    return status == errSecSuccess ? storage_->check(report.isSound) : status;
}

}  // namespace ZORPlatform
