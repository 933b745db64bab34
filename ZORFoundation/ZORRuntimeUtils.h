// SPDX-License-Identifier: Apache-2.0
#pragma once

// Questions to the registry of classes.
//
//     const TypeRegistration<Savings, Account, Printable> kSavings(u"Savings");
//
//     ZORRuntimeUtils::classStringsForClassesOfType(typeid(Account));              // {u"Savings"}
//     ZORRuntimeUtils::classStringsForClassesAdoptingProtocol(typeid(Printable));  // {u"Savings"}

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <string>
#include <typeinfo>
#include <vector>

namespace ZORFoundation {

using ZORPlatform::TypeRegistration;

/// Class-level operations. Thread-safe, as long as no object file with registered classes is being unloaded.
class ZORRuntimeUtils {
public:
    ZORRuntimeUtils() = delete;

    /// `classStringsForClassesAdoptingProtocol:`
    ///
    /// The names of the registered classes that themselves declare to conform to `protocol`. What a class has from its
    /// superclass does not count.
    ///
    /// @return in the order of registration: that of the file within one object file, that of loading between several
    [[nodiscard]] ZOR_EXPORT static std::vector<std::u16string> classStringsForClassesAdoptingProtocol(
        const std::type_info& protocol);

    /// `classStringsForClassesOfType:`
    ///
    /// The names of the registered classes that have `type` among their superclasses, at any depth. `type` itself is
    /// not listed; it need not be registered.
    ///
    /// @return as above
    [[nodiscard]] ZOR_EXPORT static std::vector<std::u16string> classStringsForClassesOfType(
        const std::type_info& type);
};

}  // namespace ZORFoundation
