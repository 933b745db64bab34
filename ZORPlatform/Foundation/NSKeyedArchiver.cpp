// SPDX-License-Identifier: Apache-2.0
//
// A keyed archive is a property list: "$objects" holds every object once, "$top" names the root, and objects refer to
// each other by their place in "$objects". Place 0 stands for nothing.
#include <ZORPlatform/Foundation/NSKeyedArchiver.h>

#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace ZORPlatform {
namespace {

using List = PropertyListValue;

constexpr std::u16string_view kArchiverName = u"NSKeyedArchiver";
constexpr int kArchiveVersion = 100000;
constexpr std::u16string_view kNothing = u"$null";
constexpr std::size_t kMaximumDepth = 512;

// A reference held many times is read many times, so reading stops at a multiple of the archive's own size.
constexpr std::size_t kBytesForEachByte = 128;
constexpr std::size_t kBytesForAnyArchive = std::size_t{16} << 20;
constexpr std::size_t kBytesForEachValue = 64;

constinit std::mutex codingMutex;
constinit NSCodingEntry* firstCoding = nullptr;

template <class Matches>
std::optional<NSCodingEntry> findCoding(Matches matches) {
    const std::scoped_lock lock(codingMutex);
    for (const NSCodingEntry* entry = firstCoding; entry != nullptr; entry = entry->next) {
        if (matches(*entry)) return *entry;
    }
    return std::nullopt;
}

// Texts and data among an archive's objects are copies of what may be secret.
void wipeObjects(List& objects) noexcept {
    auto* array = objects.as<List::Array>();
    if (array == nullptr) return;
    for (List& object : *array) {
        if (auto* text = object.as<std::u16string>()) wipe(text->data(), text->size() * sizeof(char16_t));
        if (auto* data = object.as<List::Data>()) wipe(data->data(), data->size());
    }
}

struct CannotArchive {};

class Archive {
public:
    Archive() { objects_.emplace_back(kNothing); }
    ~Archive() { wipeObjects(list_); }
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    std::optional<std::vector<std::uint8_t>> data(const ArchivedValue& root) {
        const PropertyListUid top = add(root);
        List archive = List::Dictionary{
            {u"$archiver", kArchiverName}, {u"$top", List::Dictionary{{u"root", top}}}, {u"$version", kArchiveVersion}};
        List& objects = archive.as<List::Dictionary>()->try_emplace(u"$objects").first->second;
        std::swap(objects, list_);
        auto bytes = NSPropertyListSerialization::dataWithPropertyList(archive, NSPropertyListFormat::binary_v1_0);
        std::swap(objects, list_);
        return bytes;
    }

    PropertyListUid add(const ArchivedValue& value) {
        if (depth_ == kMaximumDepth) throw CannotArchive();
        ++depth_;
        const PropertyListUid uid = value.visit([this](const auto& content) { return object(content); });
        --depth_;
        return uid;
    }

private:
    class ObjectEncoder : public KeyedEncoder {
    public:
        ObjectEncoder(Archive& archive, List::Dictionary& fields) : archive_(archive), fields_(fields) {}
        void encode(std::u16string_view key, const ArchivedValue& value) override {
            fields_.insert_or_assign(std::u16string(key), archive_.add(value));
        }

    private:
        Archive& archive_;
        List::Dictionary& fields_;
    };

    PropertyListUid object(const NSNumber& number) {
        return place(number.visit([](auto value) { return List(value); }));
    }
    PropertyListUid object(const std::u16string& text) { return place(text); }
    PropertyListUid object(const ArchivedValue::Data& data) { return place(data); }
    PropertyListUid object(NSDate date) {
        return instance({u"NSDate", u"NSObject"}, [date](List::Dictionary& fields) {
            fields.emplace(u"NS.time", date.timeIntervalSinceReferenceDate());
        });
    }
    PropertyListUid object(NSNull) {
        return instance({u"NSNull", u"NSObject"}, [](List::Dictionary&) {});
    }
    PropertyListUid object(const ArchivedValue::Array& array) {
        return instance({u"NSArray", u"NSObject"},
                        [&](List::Dictionary& fields) { fields.emplace(u"NS.objects", references(array)); });
    }
    PropertyListUid object(const ArchivedValue::Set& set) {
        return instance({u"NSSet", u"NSObject"},
                        [&](List::Dictionary& fields) { fields.emplace(u"NS.objects", references(set.members)); });
    }
    PropertyListUid object(const ArchivedValue::Dictionary& dictionary) {
        return instance({u"NSDictionary", u"NSObject"}, [&](List::Dictionary& fields) {
            List::Array keys;
            List::Array values;
            for (const auto& entry : dictionary) keys.emplace_back(object(entry.first));
            for (const auto& entry : dictionary) values.emplace_back(add(entry.second));
            fields.emplace(u"NS.keys", std::move(keys));
            fields.emplace(u"NS.objects", std::move(values));
        });
    }
    PropertyListUid object(const ArchivedValue::Object& object) {
        const auto [known, isNew] = shared_.try_emplace(object.get(), PropertyListUid{objects_.size()});
        if (!isNew) return known->second;
        const NSCoding& content = *object;
        const auto coding =
            findCoding([&content](const NSCodingEntry& entry) { return *entry.type == typeid(content); });
        if (!coding) throw CannotArchive();
        return instance(classChain(*coding), [&](List::Dictionary& fields) {
            ObjectEncoder encoder(*this, fields);
            content.encodeWithCoder(encoder);
        });
    }

    List::Array references(const std::vector<ArchivedValue>& values) {
        List::Array uids;
        uids.reserve(values.size());
        for (const ArchivedValue& value : values) uids.emplace_back(add(value));
        return uids;
    }

    // An object's place is taken before its content is written: the content may lead back to it, and the platform's
    // archives have this order too. The class comes after the content.
    template <class Fill>
    PropertyListUid instance(const std::vector<std::u16string_view>& classes, Fill fill) {
        const PropertyListUid uid = place({});
        List::Dictionary fields;
        fill(fields);
        fields.insert_or_assign(u"$class", classPlace(classes));
        objects_[uid.value] = std::move(fields);
        return uid;
    }

    static std::vector<std::u16string_view> classChain(const NSCodingEntry& entry) {
        std::vector<std::u16string_view> names{entry.name};
        for (std::optional<TypeDescriptor> type = findTypeDescriptor(*entry.type);
             type && (type = superclassOf(*type));) {
            names.push_back(type->name());
        }
        names.push_back(u"NSObject");
        return names;
    }

    PropertyListUid classPlace(const std::vector<std::u16string_view>& names) {
        const auto [known, isNew] = classes_.try_emplace(names.front(), PropertyListUid{objects_.size()});
        if (isNew) {
            objects_.emplace_back(List::Dictionary{{u"$classname", names.front()},
                                                   {u"$classes", List::Array(names.begin(), names.end())}});
        }
        return known->second;
    }

    PropertyListUid place(List value) {
        objects_.push_back(std::move(value));
        return {objects_.size() - 1};
    }

    List list_ = List::Array();
    List::Array& objects_ = *list_.as<List::Array>();
    std::map<std::u16string_view, PropertyListUid> classes_;
    std::unordered_map<const NSCoding*, PropertyListUid> shared_;
    std::size_t depth_ = 0;
};

class Unarchive {
public:
    Unarchive(const List::Array& objects, std::size_t size)
        : objects_(objects),
          states_(objects.size(), State::unread),
          budget_(kBytesForAnyArchive + kBytesForEachByte * size) {}

    std::optional<ArchivedValue> value(const List& reference) {
        const std::optional<std::uint64_t> uid = uidOf(reference);
        // A number or truth value may stand where a reference would.
        if (!uid) return direct(reference);
        if (*uid == 0 || *uid >= objects_.size() || depth_ == kMaximumDepth || !spend(kBytesForEachValue))
            return std::nullopt;
        State& state = states_[*uid];
        if (state == State::reading) return std::nullopt;  // It holds itself.
        if (const auto known = made_.find(*uid); known != made_.end()) return ArchivedValue(known->second);
        state = State::reading;
        ++depth_;
        std::optional<ArchivedValue> result = content(objects_[*uid]);
        --depth_;
        state = State::unread;
        if (result) {
            if (const auto* object = result->as<ArchivedValue::Object>()) made_.emplace(*uid, *object);
        }
        return result;
    }

private:
    enum class State : std::uint8_t { unread, reading };

    class ObjectDecoder : public KeyedDecoder {
    public:
        ObjectDecoder(Unarchive& unarchive, const List::Dictionary& fields) : unarchive_(unarchive), fields_(fields) {}
        [[nodiscard]] std::optional<ArchivedValue> decode(std::u16string_view key) const override {
            const auto field = fields_.find(key);
            if (field == fields_.end()) return std::nullopt;
            return unarchive_.value(field->second);
        }

    private:
        Unarchive& unarchive_;
        const List::Dictionary& fields_;
    };

    // The binary form has a kind of its own for references; the XML form writes them as a dictionary with one key.
    static std::optional<std::uint64_t> uidOf(const List& value) {
        if (const auto* uid = value.as<PropertyListUid>()) return uid->value;
        const auto* dictionary = value.as<List::Dictionary>();
        if (dictionary == nullptr || dictionary->size() != 1 || dictionary->begin()->first != u"CF$UID") {
            return std::nullopt;
        }
        return dictionary->begin()->second.unsignedValue();
    }

    std::optional<ArchivedValue> direct(const List& value) {
        return value.visit([this](const auto& content) -> std::optional<ArchivedValue> {
            using Kind = std::remove_cvref_t<decltype(content)>;
            if constexpr (std::is_arithmetic_v<Kind> || std::is_same_v<Kind, NSDate>) {
                return ArchivedValue(content);
            } else if constexpr (std::is_same_v<Kind, std::u16string> || std::is_same_v<Kind, List::Data>) {
                if (!spend(content.size() * sizeof(content[0]))) return std::nullopt;
                return ArchivedValue(content);
            } else {
                return std::nullopt;
            }
        });
    }

    std::optional<ArchivedValue> content(const List& object) {
        const auto* fields = object.as<List::Dictionary>();
        if (fields == nullptr) return direct(object);
        const auto reference = fields->find(u"$class");
        if (reference == fields->end()) return std::nullopt;
        const std::optional<std::uint64_t> uid = uidOf(reference->second);
        if (!uid || *uid >= objects_.size()) return std::nullopt;
        const auto* description = objects_[*uid].as<List::Dictionary>();
        if (description == nullptr) return std::nullopt;
        if (std::optional<ArchivedValue> own = applicationObject(*description, *fields)) return own;

        const auto names = description->find(u"$classes");
        const auto* chain = names != description->end() ? names->second.as<List::Array>() : nullptr;
        if (chain == nullptr) return std::nullopt;
        // Mutable kinds name the immutable one further up their chain.
        for (const List& name : *chain) {
            const auto* text = name.as<std::u16string>();
            if (text == nullptr) return std::nullopt;
            if (*text == u"NSString") return field(*fields, u"NS.string");
            if (*text == u"NSData") return field(*fields, u"NS.data");
            if (*text == u"NSDate") return date(*fields);
            if (*text == u"NSNull") return ArchivedValue(NSNull());
            if (*text == u"NSArray") return wrapped<ArchivedValue::Array>(elements(*fields, u"NS.objects"));
            if (*text == u"NSDictionary") return dictionary(*fields);
            if (*text == u"NSSet") {
                std::optional<ArchivedValue::Array> members = elements(*fields, u"NS.objects");
                if (!members) return std::nullopt;
                return ArchivedValue(ArchivedValue::Set{std::move(*members)});
            }
        }
        return std::nullopt;
    }

    std::optional<ArchivedValue> applicationObject(const List::Dictionary& description,
                                                   const List::Dictionary& fields) {
        const auto name = description.find(u"$classname");
        const auto* text = name != description.end() ? name->second.as<std::u16string>() : nullptr;
        if (text == nullptr) return std::nullopt;
        const auto coding = findCoding([text](const NSCodingEntry& entry) { return entry.name == *text; });
        if (!coding) return std::nullopt;
        std::shared_ptr<NSCoding> object;
        try {
            object = coding->make(ObjectDecoder(*this, fields));
        } catch (const std::exception&) {
            // The application refuses what the archive holds of its object.
            return std::nullopt;
        }
        if (!object) return std::nullopt;
        return ArchivedValue(std::move(object));
    }

    std::optional<ArchivedValue> field(const List::Dictionary& fields, std::u16string_view key) {
        const auto found = fields.find(key);
        return found != fields.end() ? value(found->second) : std::nullopt;
    }

    std::optional<ArchivedValue> date(const List::Dictionary& fields) {
        const std::optional<ArchivedValue> seconds = field(fields, u"NS.time");
        const auto* number = seconds ? seconds->as<NSNumber>() : nullptr;
        if (number == nullptr) return std::nullopt;
        return ArchivedValue(NSDate::sinceReferenceDate(number->doubleValue()));
    }

    std::optional<ArchivedValue::Array> elements(const List::Dictionary& fields, std::u16string_view key) {
        const auto found = fields.find(key);
        const auto* references = found != fields.end() ? found->second.as<List::Array>() : nullptr;
        if (references == nullptr) return std::nullopt;
        ArchivedValue::Array values;
        for (const List& reference : *references) {
            std::optional<ArchivedValue> element = value(reference);
            if (!element) return std::nullopt;
            values.push_back(std::move(*element));
        }
        return values;
    }

    std::optional<ArchivedValue> dictionary(const List::Dictionary& fields) {
        const std::optional<ArchivedValue::Array> keys = elements(fields, u"NS.keys");
        std::optional<ArchivedValue::Array> values = elements(fields, u"NS.objects");
        if (!keys || !values || keys->size() != values->size()) return std::nullopt;
        ArchivedValue::Dictionary entries;
        for (std::size_t i = 0; i < keys->size(); ++i) {
            const auto* key = (*keys)[i].as<std::u16string>();
            if (key == nullptr) return std::nullopt;
            entries.insert_or_assign(*key, std::move((*values)[i]));
        }
        return ArchivedValue(std::move(entries));
    }

    template <class Kind>
    static std::optional<ArchivedValue> wrapped(std::optional<Kind> content) {
        if (!content) return std::nullopt;
        return ArchivedValue(std::move(*content));
    }

    bool spend(std::size_t bytes) noexcept {
        if (bytes > budget_) return false;
        budget_ -= bytes;
        return true;
    }

    const List::Array& objects_;
    std::vector<State> states_;
    std::unordered_map<std::uint64_t, ArchivedValue::Object> made_;
    std::size_t budget_;
    std::size_t depth_ = 0;
};

template <class AList>
AList* under(AList& list, std::u16string_view key) {
    auto* dictionary = list.template as<List::Dictionary>();
    if (dictionary == nullptr) return nullptr;
    const auto found = dictionary->find(key);
    return found != dictionary->end() ? &found->second : nullptr;
}

std::optional<ArchivedValue> valueIn(const List& archive, const List& objects, std::size_t size) {
    const List* archiver = under(archive, u"$archiver");
    const List* top = under(archive, u"$top");
    const List* root = top != nullptr ? under(*top, u"root") : nullptr;
    const auto* array = objects.as<List::Array>();
    if (archiver == nullptr || root == nullptr || array == nullptr || *archiver != List(kArchiverName)) {
        return std::nullopt;
    }
    return Unarchive(*array, size).value(*root);
}

}  // namespace

KeyedEncoder::~KeyedEncoder() = default;
KeyedDecoder::~KeyedDecoder() = default;
NSCoding::~NSCoding() = default;

void linkCodingEntry(NSCodingEntry& entry) noexcept {
    const std::scoped_lock lock(codingMutex);
    entry.next = firstCoding;
    firstCoding = &entry;
}

void unlinkCodingEntry(NSCodingEntry& entry) noexcept {
    const std::scoped_lock lock(codingMutex);
    for (NSCodingEntry** link = &firstCoding; *link != nullptr; link = &(*link)->next) {
        if (*link == &entry) {
            *link = entry.next;
            return;
        }
    }
}

std::optional<std::vector<std::uint8_t>> NSKeyedArchiver::archivedDataWithRootObject(const ArchivedValue& root) {
    try {
        return Archive().data(root);
    } catch (const CannotArchive&) {
        return std::nullopt;
    }
}

std::optional<ArchivedValue> NSKeyedUnarchiver::unarchiveObjectWithData(std::span<const std::uint8_t> data) {
    NSPropertyListFormat format{};
    std::optional<List> archive = NSPropertyListSerialization::propertyListWithData(data, &format);
    if (!archive || format == NSPropertyListFormat::openStep) return std::nullopt;
    List* objects = under(*archive, u"$objects");
    if (objects == nullptr) return std::nullopt;
    std::optional<ArchivedValue> value = valueIn(std::as_const(*archive), std::as_const(*objects), data.size());
    wipeObjects(*objects);
    return value;
}

}  // namespace ZORPlatform
