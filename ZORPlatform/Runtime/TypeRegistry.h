// SPDX-License-Identifier: Apache-2.0
#pragma once

// Names of types at run time: a registry of classes with their superclass and the protocols they declare. A type is
// entered by one object of static storage duration:
//
//     namespace { const TypeRegistration<AccountView, BaseView, Printable> kAccountView(u"AccountView"); }
//
//     typeDescriptor<AccountView>()->name();   // u"AccountView"

#include <ZORPlatform/Export.h>

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace ZORPlatform {

/// What the registry knows of a type. Valid as long as the type's registration lives.
struct RegisteredType {
    std::u16string_view name;
    const std::type_info* type;
    const std::type_info* superclass;                  ///< Null for a root class.
    std::span<const std::type_info* const> protocols;  ///< What the type itself declares.
};

/// A type's place in the registry. Made by `TypeRegistration`; lives as long as that object.
struct TypeEntry : RegisteredType {
    TypeEntry* previous = nullptr;
    TypeEntry* next = nullptr;
};

/// A registered class, or a name standing for one. A small value; the name must outlive it, as the name of a
/// registered type does.
class ZOR_EXPORT TypeDescriptor {
public:
    /// A descriptor known by its name only. It has no superclass and declares no protocol.
    explicit constexpr TypeDescriptor(std::u16string_view name) noexcept : name_(name) {}
    explicit TypeDescriptor(const TypeEntry& entry) noexcept : name_(entry.name), type_(entry.type) {}

    /// `NSStringFromClass`
    [[nodiscard]] constexpr std::u16string_view name() const noexcept { return name_; }
    /// The C++ type, or null for a descriptor known by its name only.
    [[nodiscard]] constexpr const std::type_info* type() const noexcept { return type_; }

    friend bool operator==(const TypeDescriptor&, const TypeDescriptor&) noexcept = default;

private:
    std::u16string_view name_;
    const std::type_info* type_ = nullptr;
};

/// The entry of a type, or `std::nullopt` when it is not registered. Thread-safe.
[[nodiscard]] ZOR_EXPORT std::optional<TypeDescriptor> findTypeDescriptor(const std::type_info& type) noexcept;

/// `class_getSuperclass`: the class that `descriptor` derives from, or `std::nullopt` when it is a root class, when
/// either is not registered, or when the descriptor is known by its name only. Thread-safe.
[[nodiscard]] ZOR_EXPORT std::optional<TypeDescriptor> superclassOf(const TypeDescriptor& descriptor) noexcept;

/// The descriptor of `Type`, or `std::nullopt` when it is not registered. Thread-safe.
///
/// Registered from the start: "NSString" (`std::u16string`), "NSNumber" (`bool`, the integers, `float`, `double`),
/// "NSData" (`std::vector<std::uint8_t>`), "NSDate", "NSNull", "NSError", "NSException".
template <class Type>
[[nodiscard]] std::optional<TypeDescriptor> typeDescriptor() noexcept {
    return findTypeDescriptor(typeid(Type));
}

/// `objc_getClassList`: all registered types, in the order of their registration. Thread-safe.
[[nodiscard]] ZOR_EXPORT std::vector<RegisteredType> registeredTypes();

/// `NSStringFromClass`: the name under which a type is registered, or else the qualified name that it has in C++, such
/// as u"shop::Basket". Thread-safe.
[[nodiscard]] ZOR_EXPORT std::u16string className(const std::type_info& type);

/// Links an entry at the end of the registry. Takes no memory. Thread-safe.
ZOR_EXPORT void linkTypeEntry(TypeEntry& entry) noexcept;
/// Takes an entry out of the registry. Thread-safe.
ZOR_EXPORT void unlinkTypeEntry(TypeEntry& entry) noexcept;

/// Enters `Type` into the registry for its own lifetime.
///
/// @tparam Superclass  the registered class that `Type` derives from; `void` for a root class
/// @tparam Protocols   what `Type` itself declares to conform to; what its superclass declares is not repeated
template <class Type, class Superclass = void, class... Protocols>
class TypeRegistration {
public:
    /// @param name  must outlive the registration: a literal
    explicit TypeRegistration(std::u16string_view name) noexcept
        : entry_{{name, &typeid(Type), superclass(), kProtocols}} {
        linkTypeEntry(entry_);
    }
    ~TypeRegistration() { unlinkTypeEntry(entry_); }
    TypeRegistration(const TypeRegistration&) = delete;
    TypeRegistration& operator=(const TypeRegistration&) = delete;

private:
    static const std::type_info* superclass() noexcept {
        if constexpr (std::is_void_v<Superclass>) {
            return nullptr;
        } else {
            static_assert(std::is_base_of_v<Superclass, Type> && !std::is_same_v<Superclass, Type>,
                          "a type's superclass must be one of its base classes");
            return &typeid(Superclass);
        }
    }
    static inline const std::array<const std::type_info*, sizeof...(Protocols)> kProtocols{&typeid(Protocols)...};

    TypeEntry entry_;
};

}  // namespace ZORPlatform
