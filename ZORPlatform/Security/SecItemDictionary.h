// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the item store is asked with and answers with.
//
//     SecItemDictionary item{{kSecClass, kSecClassGenericPassword}, {kSecAttrService, u"be.example.bank"}};
//     item.set(kSecValueData, SecItemValue::Data{1, 2, 3});

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>
#include <ZORPlatform/Security/SecCertificate.h>
#include <ZORPlatform/Security/SecKey.h>

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace ZORPlatform {

/// The value of an attribute: text, bytes, integer, boolean, date, or the handle of a key or certificate. Bytes are
/// wiped when the value goes. Equal when kind and content are; handles when they are the same key or certificate.
class ZOR_EXPORT SecItemValue {
public:
    using Data = std::vector<std::uint8_t>;

    SecItemValue(std::u16string text) : content_(std::move(text)) {}
    SecItemValue(std::u16string_view text) : content_(std::u16string(text)) {}
    SecItemValue(const char16_t* text) : content_(std::u16string(text)) {}
    SecItemValue(Data bytes) : content_(std::move(bytes)) {}
    SecItemValue(std::same_as<bool> auto boolean) : content_(boolean) {}
    template <std::integral Integer>
    requires(!std::same_as<Integer, bool>) SecItemValue(Integer integer)
        : content_(static_cast<std::int64_t>(integer)) {}
    SecItemValue(NSDate date) : content_(date) {}
    SecItemValue(SecKey key) : content_(std::move(key)) {}
    SecItemValue(SecCertificate certificate) : content_(std::move(certificate)) {}
    SecItemValue(const SecItemValue&) = default;
    SecItemValue(SecItemValue&&) noexcept = default;
    SecItemValue& operator=(SecItemValue other) noexcept {
        content_.swap(other.content_);
        return *this;
    }
    ~SecItemValue();

    /// The content when it is of that kind, else a null pointer. `Kind` is one of `std::u16string`, `Data`,
    /// `std::int64_t`, `bool`, `NSDate`, `SecKey`, `SecCertificate`.
    template <class Kind>
    [[nodiscard]] const Kind* as() const noexcept {
        return std::get_if<Kind>(&content_);
    }
    template <class Kind>
    [[nodiscard]] Kind* as() noexcept {
        return std::get_if<Kind>(&content_);
    }

    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), content_);
    }

    friend bool operator==(const SecItemValue&, const SecItemValue&) = default;

private:
    std::variant<std::u16string, Data, std::int64_t, bool, NSDate, SecKey, SecCertificate> content_;
};

/// Attributes of an item, or a query: values under the names that SecItem.h lists. A value type; the order of the
/// entries has no meaning.
class ZOR_EXPORT SecItemDictionary {
public:
    using Entry = std::pair<std::u16string, SecItemValue>;

    SecItemDictionary() = default;
    /// Of two entries with one name the later stays.
    SecItemDictionary(std::initializer_list<std::pair<std::u16string_view, SecItemValue>> entries);

    /// Puts a value under a name, in place of the one that is there.
    void set(std::u16string_view name, SecItemValue value);
    /// @return whether there was a value
    bool remove(std::u16string_view name);

    /// The value, or a null pointer. It stays where it is until the dictionary changes.
    [[nodiscard]] const SecItemValue* find(std::u16string_view name) const noexcept;
    /// The value when it is there and of that kind, else a null pointer.
    template <class Kind>
    [[nodiscard]] const Kind* find(std::u16string_view name) const noexcept {
        const SecItemValue* value = find(name);
        return value != nullptr ? value->as<Kind>() : nullptr;
    }

    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
    [[nodiscard]] auto begin() const noexcept { return entries_.begin(); }
    [[nodiscard]] auto end() const noexcept { return entries_.end(); }

    [[nodiscard]] bool operator==(const SecItemDictionary& other) const;

private:
    // A dozen entries at most in practice: looked through faster than a tree.
    std::vector<Entry> entries_;
};

/// What a call gives back: bytes, a handle, a dictionary, or an array of these; nothing before a call has succeeded.
/// Bytes are wiped when the result goes; what has been moved out of it is the caller's.
class ZOR_EXPORT SecItemResult {
public:
    using Data = std::vector<std::uint8_t>;
    using Array = std::vector<SecItemResult>;

    SecItemResult() = default;
    SecItemResult(Data bytes) : content_(std::move(bytes)) {}
    SecItemResult(SecItemDictionary dictionary) : content_(std::move(dictionary)) {}
    SecItemResult(SecKey key) : content_(std::move(key)) {}
    SecItemResult(SecCertificate certificate) : content_(std::move(certificate)) {}
    SecItemResult(Array array) : content_(std::move(array)) {}
    SecItemResult(const SecItemResult&) = default;
    SecItemResult(SecItemResult&&) noexcept = default;
    SecItemResult& operator=(SecItemResult other) noexcept {
        content_.swap(other.content_);
        return *this;
    }
    ~SecItemResult();

    /// The content when it is of that kind, else a null pointer. `Kind` is one of `Data`, `SecItemDictionary`,
    /// `SecKey`, `SecCertificate`, `Array`.
    template <class Kind>
    [[nodiscard]] const Kind* as() const noexcept {
        return std::get_if<Kind>(&content_);
    }
    template <class Kind>
    [[nodiscard]] Kind* as() noexcept {
        return std::get_if<Kind>(&content_);
    }

    [[nodiscard]] bool isEmpty() const noexcept { return std::holds_alternative<std::monostate>(content_); }

    friend bool operator==(const SecItemResult&, const SecItemResult&) = default;

private:
    std::variant<std::monostate, Data, SecItemDictionary, SecKey, SecCertificate, Array> content_;
};

}  // namespace ZORPlatform
