// SPDX-License-Identifier: Apache-2.0
#pragma once

// How an application's own types go into keyed archives and come back.
//
//     class Account : public NSCoding {
//     public:
//         explicit Account(const KeyedDecoder& decoder);   // decoder.decode(u"name"), decoder.decode(u"balance"), ...
//         void encodeWithCoder(KeyedEncoder& encoder) const override { encoder.encode(u"name", name_); }
//         ...
//     };
//     namespace { const NSCodingRegistration<Account> kAccount(u"Account"); }

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <memory>
#include <optional>
#include <string_view>
#include <typeinfo>

namespace ZORPlatform {

class ArchivedValue;

/// What an object writes of itself into an archive.
class ZOR_EXPORT KeyedEncoder {
public:
    virtual ~KeyedEncoder();
    /// `encodeObject:forKey:`
    virtual void encode(std::u16string_view key, const ArchivedValue& value) = 0;
};

/// What an archive holds of one object.
class ZOR_EXPORT KeyedDecoder {
public:
    virtual ~KeyedDecoder();
    /// `decodeObjectForKey:`
    ///
    /// @return the value, or `std::nullopt` when there is none under `key` or it cannot be read
    [[nodiscard]] virtual std::optional<ArchivedValue> decode(std::u16string_view key) const = 0;
};

/// A type of the application's that can stand in a keyed archive. Its class is registered with
/// `NSCodingRegistration`; an object of an unregistered class cannot be archived.
class ZOR_EXPORT NSCoding {
public:
    virtual ~NSCoding();
    /// `encodeWithCoder:`: writes everything from which the object can be made again.
    virtual void encodeWithCoder(KeyedEncoder& encoder) const = 0;

protected:
    NSCoding() = default;
    NSCoding(const NSCoding&) = default;
    NSCoding& operator=(const NSCoding&) = default;
};

/// How the archives find a class. Made by `NSCodingRegistration`; lives as long as that object.
struct NSCodingEntry {
    /// Makes the object, or answers null when what the archive holds makes none. May throw: the archive is then
    /// unreadable.
    using Maker = std::shared_ptr<NSCoding> (*)(const KeyedDecoder& decoder);

    std::u16string_view name;
    const std::type_info* type;
    Maker make;
    NSCodingEntry* next = nullptr;
};

/// Adds an entry to, or takes it from, what the archives know. Takes no memory. Thread-safe.
ZOR_EXPORT void linkCodingEntry(NSCodingEntry& entry) noexcept;
ZOR_EXPORT void unlinkCodingEntry(NSCodingEntry& entry) noexcept;

/// Makes objects of `Class` archivable, for its own lifetime, and enters the class into the type registry.
///
/// @tparam Class       derives from `NSCoding`, has a constructor that takes a `const KeyedDecoder&`
/// @tparam Superclass  the registered class it derives from; `void` for none
template <class Class, class Superclass = void>
class NSCodingRegistration {
public:
    /// @param name  the class name in archives; must outlive the registration: a literal
    explicit NSCodingRegistration(std::u16string_view name) noexcept
        : type_(name), entry_{name, &typeid(Class), &make} {
        linkCodingEntry(entry_);
    }
    ~NSCodingRegistration() { unlinkCodingEntry(entry_); }
    NSCodingRegistration(const NSCodingRegistration&) = delete;
    NSCodingRegistration& operator=(const NSCodingRegistration&) = delete;

private:
    static std::shared_ptr<NSCoding> make(const KeyedDecoder& decoder) { return std::make_shared<Class>(decoder); }

    TypeRegistration<Class, Superclass, NSCoding> type_;
    NSCodingEntry entry_;
};

}  // namespace ZORPlatform
