// SPDX-License-Identifier: Apache-2.0
#pragma once

// Rows that have been read, for those who read them again.

#include <ZORPlatform/Security/ItemStorageInternal.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ZORPlatform {

/// What visits have found in one committed state of a storage: for each prefix its rows, or that it has none. As sealed
/// as in the storage. Takes at most `kMostBytes`, the allocator's share aside; what comes on top begins anew.
class CommittedRows {
public:
    /// Bytes that no other state of the storage has.
    using State = std::array<std::uint32_t, 12>;

    /// The rows of one visit.
    class Visit {
    public:
        /// Does nothing once there are more than `kMostBytesOfVisit`.
        void add(const ItemRow& row);
        /// Hands every row to `visitor`, up to the first status that is not success.
        [[nodiscard]] OSStatus replay(const ItemStorage::Visitor& visitor) const;
        /// Absent for a visit of too many bytes.
        [[nodiscard]] std::optional<std::size_t> bytes() const noexcept { return bytes_; }

    private:
        struct Row {
            std::int64_t number;
            std::size_t identityBytes;
            std::size_t attributesBytes;
            std::string bytes;  ///< The identity, the attributes and the sealed value.
        };

        std::vector<Row> rows_;
        std::optional<std::size_t> bytes_ = 0;
    };

    static constexpr std::size_t kMostBytesOfVisit = std::size_t{16} << 10;
    static constexpr std::size_t kMostBytes = std::size_t{1} << 20;

    /// What a visit found in `state`, if it is known. Another state than before makes everything forgotten.
    [[nodiscard]] const Visit* find(const State& state, std::string_view prefix);
    /// Remembers a visit in the state of the last `find`.
    void remember(std::string_view prefix, Visit&& visit);

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    State state_{};
    std::unordered_map<std::string, Visit, Hash, std::equal_to<>> visits_;
    std::size_t bytes_ = 0;
};

}  // namespace ZORPlatform
