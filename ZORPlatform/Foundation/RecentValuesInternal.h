// SPDX-License-Identifier: Apache-2.0
#pragma once

// A small memory for what is costly to make and asked for again.

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace ZORPlatform {

/// The most recently made values for a few keys, oldest thrown out. Not thread-safe: one lives in each thread.
template <class Key, class Value, std::size_t kCount = 8>
class RecentValues {
public:
    /// @param key   anything that compares equal to a Key and makes one
    /// @return valid until the next call
    template <class Sought = Key, class Make>
    const Value& find(const Sought& key, Make&& make) {
        for (const auto& entry : entries_) {
            if (entry && entry->first == key) return entry->second;
        }
        auto& entry = entries_[next_];
        entry.emplace(key, make());
        next_ = (next_ + 1) % entries_.size();
        return entry->second;
    }

private:
    std::array<std::optional<std::pair<Key, Value>>, kCount> entries_;
    std::size_t next_ = 0;
};

}  // namespace ZORPlatform
