// SPDX-License-Identifier: Apache-2.0
//
// The binary form, "bplist00": a header, the objects, a table of their offsets, a trailer. Containers hold numbers of
// objects; an object may be held many times.
#include <ZORPlatform/Foundation/PropertyListFormsInternal.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <unordered_map>
#include <utility>

namespace ZORPlatform::PropertyListForms {
namespace {

constexpr std::string_view kHeader = "bplist00";
constexpr std::size_t kTrailerSize = 32;

// High half of an object's first byte.
enum Marker : std::uint8_t {
    kSimple = 0x0,
    kInteger = 0x1,
    kReal = 0x2,
    kDate = 0x3,
    kData = 0x4,
    kAscii = 0x5,
    kUtf16 = 0x6,
    kUid = 0x8,
    kArray = 0xA,
    kDictionary = 0xD,
};
constexpr std::uint8_t kFalse = 0x08;
constexpr std::uint8_t kTrue = 0x09;
constexpr std::uint8_t kDateMarker = 0x33;
constexpr std::uint8_t kLongCount = 0xF;

// Shared objects are materialised once for each place that holds them, so a small file could ask for any amount of
// memory. Reading stops at this many bytes for each byte of the file, plus a start that small files never need. What
// the writer below shares is short enough to stay within it.
constexpr std::size_t kBytesForEachByte = 128;
constexpr std::size_t kBytesForAnyFile = std::size_t{64} << 20;
constexpr std::size_t kBytesForEachValue = 16;
constexpr std::size_t kLongestSharedText = (kBytesForEachByte - kBytesForEachValue) / sizeof(char16_t);

std::uint64_t bigEndian(const std::uint8_t* bytes, std::size_t count) noexcept {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value << 8 | bytes[i];
    return value;
}

class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::optional<PropertyListValue> document() {
        if (bytes_.size() < kHeader.size() + kTrailerSize) return std::nullopt;
        const std::uint8_t* trailer = bytes_.data() + bytes_.size() - kTrailerSize;
        offsetSize_ = trailer[6];
        referenceSize_ = trailer[7];
        objectCount_ = bigEndian(trailer + 8, 8);
        const std::uint64_t root = bigEndian(trailer + 16, 8);
        const std::uint64_t table = bigEndian(trailer + 24, 8);
        objectsEnd_ = bytes_.size() - kTrailerSize;
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) return std::nullopt;
        if (table < kHeader.size() || table > objectsEnd_) return std::nullopt;
        if (objectCount_ > (objectsEnd_ - table) / offsetSize_) return std::nullopt;
        offsets_ = bytes_.data() + table;
        objectsEnd_ = static_cast<std::size_t>(table);
        budget_ = kBytesForAnyFile + kBytesForEachByte * bytes_.size();
        return object(root, 0);
    }

private:
    // What follows a marker: the count, and where the content begins.
    struct Extent {
        std::size_t count;
        std::size_t begin;
    };

    std::optional<PropertyListValue> object(std::uint64_t number, std::size_t depth) {
        if (number >= objectCount_ || depth >= kMaximumDepth || !spend(kBytesForEachValue)) return std::nullopt;
        const std::uint64_t offset = bigEndian(offsets_ + number * offsetSize_, offsetSize_);
        if (offset < kHeader.size() || offset >= objectsEnd_) return std::nullopt;
        const auto at = static_cast<std::size_t>(offset);
        const std::uint8_t marker = bytes_[at];
        const unsigned low = marker & 0xF;
        switch (marker >> 4) {
            case kSimple:
                if (marker == kFalse) return false;
                if (marker == kTrue) return true;
                return std::nullopt;
            case kInteger:
                return integer(at + 1, low);
            case kReal:
                return real(at + 1, low);
            case kDate:
                if (marker != kDateMarker || !has(at + 1, 8)) return std::nullopt;
                return NSDate::sinceReferenceDate(std::bit_cast<double>(bigEndian(&bytes_[at + 1], 8)));
            case kData:
                return data(at, low);
            case kAscii:
                return text(at, low, 1);
            case kUtf16:
                return text(at, low, 2);
            case kUid:
                if (low > 7 || !has(at + 1, low + 1)) return std::nullopt;
                return PropertyListUid{bigEndian(&bytes_[at + 1], low + 1)};
            case kArray:
                return array(at, low, depth);
            case kDictionary:
                return dictionary(at, low, depth);
            default:
                return std::nullopt;
        }
    }

    // Up to four bytes are unsigned, eight are signed, sixteen hold what eight cannot.
    std::optional<PropertyListValue> integer(std::size_t at, unsigned exponent) {
        if (exponent > 4 || !has(at, std::size_t{1} << exponent)) return std::nullopt;
        if (exponent < 3) return bigEndian(&bytes_[at], std::size_t{1} << exponent);
        if (exponent == 3) return static_cast<std::int64_t>(bigEndian(&bytes_[at], 8));
        const std::uint64_t high = bigEndian(&bytes_[at], 8);
        const std::uint64_t value = bigEndian(&bytes_[at + 8], 8);
        if (high == 0) return value;
        if (high == std::numeric_limits<std::uint64_t>::max() && value >> 63 == 1)
            return static_cast<std::int64_t>(value);
        return std::nullopt;
    }

    std::optional<PropertyListValue> real(std::size_t at, unsigned exponent) {
        if (exponent == 2 && has(at, 4)) {
            return std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(&bytes_[at], 4)));
        }
        if (exponent == 3 && has(at, 8)) return std::bit_cast<double>(bigEndian(&bytes_[at], 8));
        return std::nullopt;
    }

    std::optional<PropertyListValue> data(std::size_t at, unsigned low) {
        const std::optional<Extent> extent = extentOf(at, low, 1);
        if (!extent || !spend(extent->count)) return std::nullopt;
        const auto content = bytes_.subspan(extent->begin, extent->count);
        return PropertyListValue::Data(content.begin(), content.end());
    }

    std::optional<std::u16string> textContent(std::size_t at, unsigned low, std::size_t unitSize) {
        const std::optional<Extent> extent = extentOf(at, low, unitSize);
        if (!extent || !spend(extent->count * sizeof(char16_t))) return std::nullopt;
        const std::uint8_t* bytes = bytes_.data() + extent->begin;
        std::u16string content(extent->count, u'\0');
        if (unitSize == 1) {
            std::copy_n(bytes, extent->count, content.begin());
        } else {
            for (char16_t& unit : content) {
                unit = static_cast<char16_t>(bytes[0] << 8 | bytes[1]);
                bytes += 2;
            }
        }
        return content;
    }

    std::optional<PropertyListValue> text(std::size_t at, unsigned low, std::size_t unitSize) {
        std::optional<std::u16string> content = textContent(at, low, unitSize);
        if (!content) return std::nullopt;
        return PropertyListValue(std::move(*content));
    }

    std::optional<PropertyListValue> array(std::size_t at, unsigned low, std::size_t depth) {
        const std::optional<Extent> extent = extentOf(at, low, referenceSize_);
        if (!extent || !spend(extent->count)) return std::nullopt;
        PropertyListValue::Array elements;
        elements.reserve(extent->count);
        for (std::size_t i = 0; i < extent->count; ++i) {
            std::optional<PropertyListValue> element = object(reference(extent->begin, i), depth + 1);
            if (!element) return std::nullopt;
            elements.push_back(std::move(*element));
        }
        return PropertyListValue(std::move(elements));
    }

    std::optional<PropertyListValue> dictionary(std::size_t at, unsigned low, std::size_t depth) {
        const std::optional<Extent> extent = extentOf(at, low, 2 * referenceSize_);
        if (!extent) return std::nullopt;
        PropertyListValue::Dictionary entries;
        for (std::size_t i = 0; i < extent->count; ++i) {
            std::optional<PropertyListValue> key = object(reference(extent->begin, i), depth + 1);
            if (!key || key->as<std::u16string>() == nullptr) return std::nullopt;
            std::optional<PropertyListValue> value = object(reference(extent->begin, extent->count + i), depth + 1);
            if (!value) return std::nullopt;
            // Written in order by most writers, so the end is the likeliest place.
            entries.insert_or_assign(entries.end(), std::move(*key->as<std::u16string>()), std::move(*value));
        }
        return PropertyListValue(std::move(entries));
    }

    [[nodiscard]] std::uint64_t reference(std::size_t begin, std::size_t index) const noexcept {
        return bigEndian(&bytes_[begin + index * referenceSize_], referenceSize_);
    }

    // The count of an object of several elements: the low half of its marker or, where that is 15, an integer object.
    [[nodiscard]] std::optional<Extent> extentOf(std::size_t at, unsigned low, std::size_t elementSize) const {
        std::uint64_t count = low;
        std::size_t begin = at + 1;
        if (low == kLongCount) {
            if (!has(begin, 1) || bytes_[begin] >> 4 != kInteger) return std::nullopt;
            const unsigned exponent = bytes_[begin] & 0xF;
            if (exponent > 3 || !has(begin + 1, std::size_t{1} << exponent)) return std::nullopt;
            count = bigEndian(&bytes_[begin + 1], std::size_t{1} << exponent);
            begin += 1 + (std::size_t{1} << exponent);
        }
        if (count > (objectsEnd_ - begin) / elementSize) return std::nullopt;
        return Extent{static_cast<std::size_t>(count), begin};
    }

    [[nodiscard]] bool has(std::size_t at, std::size_t count) const noexcept {
        return at <= objectsEnd_ && count <= objectsEnd_ - at;
    }

    bool spend(std::size_t bytes) noexcept {
        if (bytes > budget_) return false;
        budget_ -= bytes;
        return true;
    }

    std::span<const std::uint8_t> bytes_;
    const std::uint8_t* offsets_ = nullptr;
    std::uint64_t objectCount_ = 0;
    std::size_t objectsEnd_ = 0;
    std::size_t budget_ = 0;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
};

std::size_t bytesFor(std::uint64_t value) noexcept {
    if (value <= 0xFF) return 1;
    if (value <= 0xFFFF) return 2;
    return value <= 0xFFFFFFFF ? 4 : 8;
}

/// Numbers the objects parents first, then writes them in that order.
class Writer {
public:
    std::optional<std::vector<std::uint8_t>> document(const PropertyListValue& list) {
        if (!number(list, 0)) return std::nullopt;
        referenceSize_ = bytesFor(objects_.size() - 1);
        // Room for all, so that nothing is left behind by growing: what is archived may be secret.
        const std::size_t most = kHeader.size() + longestContent_ + references_.size() * referenceSize_;
        bytes_.reserve(most + objects_.size() * bytesFor(most) + kTrailerSize);
        append(kHeader);
        std::vector<std::uint64_t> offsets;
        offsets.reserve(objects_.size());
        std::size_t nextReference = 0;
        for (const Object& object : objects_) {
            offsets.push_back(bytes_.size());
            write(object, nextReference);
        }
        const std::uint64_t table = bytes_.size();
        const std::size_t offsetSize = bytesFor(table);
        for (const std::uint64_t offset : offsets) bigEndianInteger(offset, offsetSize);
        bytes_.insert(bytes_.end(), 6, 0);
        bytes_.push_back(static_cast<std::uint8_t>(offsetSize));
        bytes_.push_back(static_cast<std::uint8_t>(referenceSize_));
        bigEndianInteger(objects_.size(), 8);
        bigEndianInteger(0, 8);
        bigEndianInteger(table, 8);
        return std::move(bytes_);
    }

private:
    // A key is an object too, but no value.
    struct Object {
        const PropertyListValue* value;
        const std::u16string* key;
    };

    // Gives `list` and what it holds their numbers. Containers are numbered by going through them once; the numbers
    // of their elements are kept, in the same order, for writing.
    bool number(const PropertyListValue& list, std::size_t depth) {
        if (depth >= kMaximumDepth) return false;
        add({&list, nullptr});
        if (const auto* array = list.as<PropertyListValue::Array>()) {
            std::size_t at = reserveReferences(array->size());
            for (const PropertyListValue& element : *array) {
                references_[at++] = shared(element);
                if (references_[at - 1] == kUnshared) {
                    references_[at - 1] = objects_.size();
                    if (!number(element, depth + 1)) return false;
                }
            }
        } else if (const auto* dictionary = list.as<PropertyListValue::Dictionary>()) {
            std::size_t at = reserveReferences(2 * dictionary->size());
            for (const auto& entry : *dictionary)
                references_[at++] = numberOfText(entry.first, {nullptr, &entry.first});
            for (const auto& entry : *dictionary) {
                references_[at++] = shared(entry.second);
                if (references_[at - 1] == kUnshared) {
                    references_[at - 1] = objects_.size();
                    if (!number(entry.second, depth + 1)) return false;
                }
            }
        }
        return true;
    }

    void add(Object object) {
        objects_.push_back(object);
        longestContent_ += object.key != nullptr
                               ? longestSize(*object.key)
                               : object.value->visit([](const auto& content) { return longestSize(content); });
    }

    // Most bytes that an object can take, without the references of a container.
    template <class Content>
    static std::size_t longestSize(const Content& content) noexcept {
        constexpr std::size_t kLongestHead = 1 + 1 + 8;
        if constexpr (std::is_same_v<Content, std::u16string>) {
            return kLongestHead + content.size() * sizeof(char16_t);
        } else if constexpr (std::is_same_v<Content, PropertyListValue::Data>) {
            return kLongestHead + content.size();
        } else if constexpr (std::is_same_v<Content, std::uint64_t>) {
            return 1 + 16;
        } else {
            return kLongestHead;
        }
    }

    std::size_t reserveReferences(std::size_t count) {
        const std::size_t begin = references_.size();
        references_.resize(begin + count);
        return begin;
    }

    static constexpr std::size_t kUnshared = std::numeric_limits<std::size_t>::max();

    // The number of an element that is a text; any other kind stands for itself.
    std::size_t shared(const PropertyListValue& element) {
        const auto* text = element.as<std::u16string>();
        return text != nullptr ? numberOfText(*text, {&element, nullptr}) : kUnshared;
    }

    std::size_t numberOfText(std::u16string_view text, Object object) {
        if (text.size() > kLongestSharedText) {
            add(object);
            return objects_.size() - 1;
        }
        const auto [found, isNew] = texts_.try_emplace(text, objects_.size());
        if (isNew) add(object);
        return found->second;
    }

    void write(const Object& object, std::size_t& nextReference) {
        if (object.key != nullptr) return content(*object.key);
        if (const auto* array = object.value->as<PropertyListValue::Array>()) {
            return container(kArray, array->size(), array->size(), nextReference);
        }
        if (const auto* dictionary = object.value->as<PropertyListValue::Dictionary>()) {
            return container(kDictionary, dictionary->size(), 2 * dictionary->size(), nextReference);
        }
        object.value->visit([this](const auto& value) {
            using Kind = std::remove_cvref_t<decltype(value)>;
            if constexpr (!std::is_same_v<Kind, PropertyListValue::Array> &&
                          !std::is_same_v<Kind, PropertyListValue::Dictionary>) {
                content(value);
            }
        });
    }

    void container(Marker kind, std::size_t count, std::size_t referenceCount, std::size_t& nextReference) {
        marker(kind, count);
        for (std::size_t i = 0; i < referenceCount; ++i) bigEndianInteger(references_[nextReference++], referenceSize_);
    }

    void content(bool value) { bytes_.push_back(value ? kTrue : kFalse); }

    void content(std::int64_t value) {
        if (value < 0) {
            bytes_.push_back(kInteger << 4 | 3);
            bigEndianInteger(static_cast<std::uint64_t>(value), 8);
        } else {
            smallestInteger(static_cast<std::uint64_t>(value));
        }
    }

    // Only values above 2^63−1 come here; eight bytes would be read as negative.
    void content(std::uint64_t value) {
        bytes_.push_back(kInteger << 4 | 4);
        bigEndianInteger(0, 8);
        bigEndianInteger(value, 8);
    }

    void content(float value) {
        bytes_.push_back(kReal << 4 | 2);
        bigEndianInteger(std::bit_cast<std::uint32_t>(value), 4);
    }

    void content(double value) {
        bytes_.push_back(kReal << 4 | 3);
        bigEndianInteger(std::bit_cast<std::uint64_t>(value), 8);
    }

    void content(NSDate value) {
        bytes_.push_back(kDateMarker);
        bigEndianInteger(std::bit_cast<std::uint64_t>(value.timeIntervalSinceReferenceDate()), 8);
    }

    void content(const PropertyListValue::Data& value) {
        marker(kData, value.size());
        bytes_.insert(bytes_.end(), value.begin(), value.end());
    }

    void content(PropertyListUid uid) {
        const std::size_t size = bytesFor(uid.value);
        bytes_.push_back(static_cast<std::uint8_t>(std::size_t{kUid} << 4 | (size - 1)));
        bigEndianInteger(uid.value, size);
    }

    void content(const std::u16string& value) {
        const bool ascii = std::all_of(value.begin(), value.end(), [](char16_t unit) { return unit < 0x80; });
        marker(ascii ? kAscii : kUtf16, value.size());
        const std::size_t begin = bytes_.size();
        bytes_.resize(begin + value.size() * (ascii ? 1 : 2));
        std::uint8_t* out = bytes_.data() + begin;
        for (const char16_t unit : value) {
            if (!ascii) *out++ = static_cast<std::uint8_t>(unit >> 8);
            *out++ = static_cast<std::uint8_t>(unit);
        }
    }

    void marker(Marker kind, std::size_t count) {
        bytes_.push_back(static_cast<std::uint8_t>(std::size_t{kind} << 4 | std::min<std::size_t>(count, kLongCount)));
        if (count >= kLongCount) smallestInteger(count);
    }

    void smallestInteger(std::uint64_t value) {
        const std::size_t size = bytesFor(value);
        bytes_.push_back(
            static_cast<std::uint8_t>(unsigned{kInteger} << 4 | static_cast<unsigned>(std::countr_zero(size))));
        bigEndianInteger(value, size);
    }

    void bigEndianInteger(std::uint64_t value, std::size_t size) {
        const std::size_t begin = bytes_.size();
        bytes_.resize(begin + size);
        for (std::size_t i = size; i-- > 0; value >>= 8) bytes_[begin + i] = static_cast<std::uint8_t>(value);
    }

    void append(std::string_view content) { bytes_.insert(bytes_.end(), content.begin(), content.end()); }

    std::vector<Object> objects_;
    std::size_t longestContent_ = 0;
    std::vector<std::size_t> references_;
    std::unordered_map<std::u16string_view, std::size_t> texts_;
    std::vector<std::uint8_t> bytes_;
    std::size_t referenceSize_ = 0;
};

}  // namespace

std::optional<PropertyListValue> readBinary(std::span<const std::uint8_t> bytes) { return Reader(bytes).document(); }

std::optional<std::vector<std::uint8_t>> writeBinary(const PropertyListValue& list) { return Writer().document(list); }

}  // namespace ZORPlatform::PropertyListForms
