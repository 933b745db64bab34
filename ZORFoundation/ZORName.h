// SPDX-License-Identifier: Apache-2.0
#pragma once

// The name of a class, asked of the class or of one of its objects.
//
//     struct Account { virtual ~Account(); };
//     struct Savings : Account {};
//     const TypeRegistration<Savings, Account> kSavings(u"Savings");
//
//     ZORName::xun_className<Savings>();                       // u"Savings"
//     ZORName::xun_className(static_cast<Account&>(savings));  // u"Savings"

#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <string>
#include <typeinfo>

namespace ZORFoundation {

using ZORPlatform::TypeRegistration;

namespace ZORName {

/// `xun_className`, asked of a class
///
/// The name under which `Class` is registered, or else the qualified name that it has in C++, such as u"shop::Basket".
/// Thread-safe.
template <class Class>
[[nodiscard]] std::u16string xun_className() {
    return ZORPlatform::className(typeid(Class));
}

/// `xun_className`, asked of an object: the name of its own class, also through a reference to a polymorphic base.
/// Thread-safe.
template <class Object>
[[nodiscard]] std::u16string xun_className(const Object& object) {
    return ZORPlatform::className(typeid(object));
}

}  // namespace ZORName
}  // namespace ZORFoundation
