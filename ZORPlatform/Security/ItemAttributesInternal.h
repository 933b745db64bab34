// SPDX-License-Identifier: Apache-2.0
#pragma once

// The attributes that each class of items has, which of them make its primary key, and their bytes in the store.
// docs/item-store.md has the layout.
//
// A value has one canonical payload, by which it is compared, whatever form it was given in: text is UTF-8, a number
// eight bytes, a date the eight bytes of its double, all big-endian. The form is kept beside it, so that a value comes
// back as it was given.

#include <ZORPlatform/Security/SecBase.h>
#include <ZORPlatform/Security/SecItemDictionary.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ZORPlatform {

/// The four letters of a class or an attribute as one number; 0 for a name of another shape.
constexpr std::uint32_t fourLetterCode(std::u16string_view name) noexcept {
    if (name.size() != 4) return 0;
    std::uint32_t code = 0;
    for (const char16_t unit : name) {
        if (unit > 0x7F) return 0;
        code = code << 8 | unit;
    }
    return code;
}

enum class AttributeKind : std::uint8_t { text, accessibility, bytes, textOrBytes, number, date };

struct AttributeRule {
    std::uint32_t code;
    AttributeKind kind;
};

struct ItemClass {
    std::u16string_view name;
    std::u16string_view defaultAccessibility;
    /// The attributes of the primary key, in the order in which they stand in an identity.
    std::span<const AttributeRule> key;
    /// The attributes of this class that are no part of its key, without those that every class has.
    std::span<const AttributeRule> others;

    /// The rule of an attribute that items of this class can have, or a null pointer.
    [[nodiscard]] const AttributeRule* find(std::uint32_t attribute) const noexcept;
    [[nodiscard]] bool isKey(std::uint32_t attribute) const noexcept;
};

/// The class of that name, or a null pointer.
[[nodiscard]] const ItemClass* findItemClass(std::uint32_t code) noexcept;

[[nodiscard]] std::span<const ItemClass> itemClasses() noexcept;

/// How a value was given.
enum class AttributeForm : char { text = 't', bytes = 'b', integer = 'i', boolean = 'f', digits = 's', date = 'd' };

/// One attribute with its canonical payload.
template <class Bytes>
struct BasicItemAttribute {
    std::uint32_t code = 0;
    AttributeForm form = AttributeForm::bytes;
    Bytes payload;
};
using ItemAttribute = BasicItemAttribute<std::string>;
using ItemAttributeView = BasicItemAttribute<std::string_view>;

/// Encodes a value given by the application.
///
/// @return `errSecParam` for a value that the attribute cannot have
[[nodiscard]] OSStatus encodeAttribute(const AttributeRule& rule, const SecItemValue& value, ItemAttribute& attribute);

/// The value as it was given; absent when the payload is damaged.
[[nodiscard]] std::optional<SecItemValue> decodeAttribute(const ItemAttributeView& attribute);

/// The attributes of one item, each at most once.
class ItemAttributes {
public:
    /// Puts an attribute in place of the one with its code.
    void set(ItemAttribute attribute);
    [[nodiscard]] const ItemAttribute* find(std::uint32_t code) const noexcept;
    [[nodiscard]] auto begin() const noexcept { return attributes_.begin(); }
    [[nodiscard]] auto end() const noexcept { return attributes_.end(); }

    /// The bytes in the store.
    [[nodiscard]] std::string encoded() const;
    /// @return absent when the bytes are no attributes
    [[nodiscard]] static std::optional<ItemAttributes> decoded(std::string_view bytes);

private:
    std::vector<ItemAttribute> attributes_;
};

/// Reads the attributes in the store one by one.
class AttributeReader {
public:
    explicit AttributeReader(std::string_view bytes) noexcept : rest_(bytes) {}

    /// @return false at the end, and before bytes that are no attribute
    [[nodiscard]] bool next(ItemAttributeView& attribute) noexcept;
    [[nodiscard]] bool isDamaged() const noexcept { return !rest_.empty(); }

private:
    std::string_view rest_;
};

/// The bytes that no two items share: class and primary key.
[[nodiscard]] std::string identityOf(const ItemClass& itemClass, const ItemAttributes& attributes);

/// The beginning that the identities of all items have whose attributes are those given, as long as it can be known.
[[nodiscard]] std::string identityPrefix(const ItemClass& itemClass, const ItemAttributes& attributes,
                                         std::size_t& keyAttributesCovered);

/// The code of the class that an identity begins with; 0 for bytes that are none.
[[nodiscard]] std::uint32_t classCodeOf(std::string_view identity) noexcept;

/// @param size  at most eight
void appendBigEndian(std::string& bytes, std::uint64_t value, std::size_t size);
/// @param bytes  at most eight
[[nodiscard]] std::uint64_t readBigEndian(std::string_view bytes) noexcept;

}  // namespace ZORPlatform
