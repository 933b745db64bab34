// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ErrorMapping.h>

#include <cstring>
#include <map>
#include <mutex>
#include <utility>

namespace ZORFoundation {
namespace {

/// Any order will do, so the quickest to decide: domains seldom have the same length.
struct ShorterFirst {
    using is_transparent = void;
    bool operator()(std::u16string_view left, std::u16string_view right) const noexcept {
        if (left.size() != right.size()) return left.size() < right.size();
        return !left.empty() && std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) < 0;
    }
};

}  // namespace

struct ErrorMapping::Storage {
    // Held for a look-up and the copy of a small entry: a lock that readers share costs more than it saves.
    std::mutex mutex;
    std::map<std::u16string, Entry, ShorterFirst> entries;
};

ErrorMapping::ErrorMapping() : storage_(std::make_unique<Storage>()) {}
ErrorMapping::~ErrorMapping() = default;

std::optional<ErrorMapping::Entry> ErrorMapping::find(std::u16string_view domain) const {
    const std::scoped_lock lock(storage_->mutex);
    const auto found = storage_->entries.find(domain);
    if (found == storage_->entries.end()) return std::nullopt;
    return found->second;
}

bool ErrorMapping::contains(std::u16string_view domain) const {
    const std::scoped_lock lock(storage_->mutex);
    return storage_->entries.find(domain) != storage_->entries.end();
}

void ErrorMapping::set(std::u16string_view domain, Entry entry) {
    std::u16string key(domain);
    {
        const std::scoped_lock lock(storage_->mutex);
        std::swap(storage_->entries[std::move(key)], entry);
    }
    // The entry that was there goes here, unlocked: destroying its factory may run the application's code.
}

bool ErrorMapping::remove(std::u16string_view domain) {
    decltype(storage_->entries)::node_type removed;  // Outlives the lock, as in set().
    const std::scoped_lock lock(storage_->mutex);
    const auto found = storage_->entries.find(domain);
    if (found == storage_->entries.end()) return false;
    removed = storage_->entries.extract(found);
    return true;
}

std::vector<std::u16string> ErrorMapping::keys() const {
    const std::scoped_lock lock(storage_->mutex);
    std::vector<std::u16string> keys;
    keys.reserve(storage_->entries.size());
    for (const auto& [domain, entry] : storage_->entries) keys.push_back(domain);
    return keys;
}

}  // namespace ZORFoundation
