// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecItemDictionary.h>

#include <ZORPlatform/Foundation/Wiping.h>

#include <algorithm>

namespace ZORPlatform {
namespace {

// What queries and items have, so that room is made once.
constexpr std::size_t kUsualEntries = 8;

void wipe(std::vector<std::uint8_t>* bytes) noexcept {
    if (bytes != nullptr) ZORPlatform::wipe(bytes->data(), bytes->size());
}

}  // namespace

SecItemValue::~SecItemValue() { wipe(as<Data>()); }

SecItemResult::~SecItemResult() { wipe(as<Data>()); }

SecItemDictionary::SecItemDictionary(std::initializer_list<std::pair<std::u16string_view, SecItemValue>> entries) {
    entries_.reserve(entries.size());
    for (const auto& [name, value] : entries) set(name, value);
}

void SecItemDictionary::set(std::u16string_view name, SecItemValue value) {
    for (Entry& entry : entries_) {
        if (entry.first == name) {
            entry.second = std::move(value);
            return;
        }
    }
    if (entries_.capacity() == 0) entries_.reserve(kUsualEntries);
    entries_.emplace_back(name, std::move(value));
}

bool SecItemDictionary::remove(std::u16string_view name) {
    return std::erase_if(entries_, [name](const Entry& entry) { return entry.first == name; }) != 0;
}

const SecItemValue* SecItemDictionary::find(std::u16string_view name) const noexcept {
    for (const Entry& entry : entries_) {
        if (entry.first == name) return &entry.second;
    }
    return nullptr;
}

bool SecItemDictionary::operator==(const SecItemDictionary& other) const {
    return size() == other.size() && std::all_of(begin(), end(), [&other](const Entry& entry) {
               const SecItemValue* value = other.find(entry.first);
               return value != nullptr && *value == entry.second;
           });
}

}  // namespace ZORPlatform
