// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <ZORPlatform/Foundation/NSDate.h>
#include <ZORPlatform/Foundation/NSError.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSNull.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <cxxabi.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

// Constant-initialised, so registrations of other translation units may link in any order at start-up.
constinit std::mutex registryMutex;
constinit TypeEntry* firstEntry = nullptr;
constinit TypeEntry* lastEntry = nullptr;

const TypeRegistration<std::u16string> kText(u"NSString");
const TypeRegistration<bool> kBoolean(u"NSNumber");
const TypeRegistration<std::int32_t> kInteger32(u"NSNumber");
const TypeRegistration<std::int64_t> kInteger64(u"NSNumber");
const TypeRegistration<std::uint32_t> kUnsigned32(u"NSNumber");
const TypeRegistration<std::uint64_t> kUnsigned64(u"NSNumber");
const TypeRegistration<float> kFloat(u"NSNumber");
const TypeRegistration<double> kDouble(u"NSNumber");
const TypeRegistration<std::vector<std::uint8_t>> kData(u"NSData");
const TypeRegistration<NSDate> kDate(u"NSDate");
const TypeRegistration<NSNull> kNull(u"NSNull");
const TypeRegistration<NSError> kError(u"NSError");
const TypeRegistration<NSException> kException(u"NSException");

const TypeEntry* findUnlocked(const std::type_info& type) noexcept {
    for (const TypeEntry* entry = firstEntry; entry != nullptr; entry = entry->next) {
        if (*entry->type == type) return entry;
    }
    return nullptr;
}

}  // namespace

void linkTypeEntry(TypeEntry& entry) noexcept {
    const std::scoped_lock lock(registryMutex);
    entry.previous = lastEntry;
    entry.next = nullptr;
    (lastEntry != nullptr ? lastEntry->next : firstEntry) = &entry;
    lastEntry = &entry;
}

void unlinkTypeEntry(TypeEntry& entry) noexcept {
    const std::scoped_lock lock(registryMutex);
    (entry.previous != nullptr ? entry.previous->next : firstEntry) = entry.next;
    (entry.next != nullptr ? entry.next->previous : lastEntry) = entry.previous;
}

std::optional<TypeDescriptor> findTypeDescriptor(const std::type_info& type) noexcept {
    const std::scoped_lock lock(registryMutex);
    const TypeEntry* entry = findUnlocked(type);
    return entry != nullptr ? std::optional(TypeDescriptor(*entry)) : std::nullopt;
}

std::optional<TypeDescriptor> superclassOf(const TypeDescriptor& descriptor) noexcept {
    if (descriptor.type() == nullptr) return std::nullopt;
    const std::scoped_lock lock(registryMutex);
    const TypeEntry* entry = findUnlocked(*descriptor.type());
    if (entry == nullptr || entry->superclass == nullptr) return std::nullopt;
    const TypeEntry* superclass = findUnlocked(*entry->superclass);
    return superclass != nullptr ? std::optional(TypeDescriptor(*superclass)) : std::nullopt;
}

std::vector<RegisteredType> registeredTypes() {
    std::vector<RegisteredType> types;
    const std::scoped_lock lock(registryMutex);
    for (const TypeEntry* entry = firstEntry; entry != nullptr; entry = entry->next) types.push_back(*entry);
    return types;
}

std::u16string className(const std::type_info& type) {
    if (const std::optional<TypeDescriptor> descriptor = findTypeDescriptor(type)) {
        return std::u16string(descriptor->name());
    }
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free);
    return utf16(name ? name.get() : type.name());
}

}  // namespace ZORPlatform
