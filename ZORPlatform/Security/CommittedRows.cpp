// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/CommittedRowsInternal.h>

#include <utility>

namespace ZORPlatform {

void CommittedRows::Visit::add(const ItemRow& row) {
    if (!bytes_) return;
    const std::size_t size = row.identity.size() + row.attributes.size() + row.sealed.size();
    if (size > kMostBytesOfVisit - *bytes_) {
        bytes_.reset();
        rows_.clear();
        return;
    }
    std::string bytes;
    bytes.reserve(size);
    bytes.append(row.identity).append(row.attributes).append(row.sealed);
    rows_.push_back({row.number, row.identity.size(), row.attributes.size(), std::move(bytes)});
    *bytes_ += size;
}

OSStatus CommittedRows::Visit::replay(const ItemStorage::Visitor& visitor) const {
    for (const Row& row : rows_) {
        const std::string_view bytes = row.bytes;
        const std::size_t sealed = row.identityBytes + row.attributesBytes;
        const OSStatus status = visitor({row.number, bytes.substr(0, row.identityBytes),
                                         bytes.substr(row.identityBytes, row.attributesBytes), bytes.substr(sealed)});
        if (status != errSecSuccess) return status;
    }
    return errSecSuccess;
}

const CommittedRows::Visit* CommittedRows::find(const State& state, std::string_view prefix) {
    if (state != state_) {
        visits_.clear();
        bytes_ = 0;
        state_ = state;
    }
    const auto found = visits_.find(prefix);
    return found != visits_.end() ? &found->second : nullptr;
}

void CommittedRows::remember(std::string_view prefix, Visit&& visit) {
    if (!visit.bytes()) return;
    // A prefix without rows takes memory, too.
    const std::size_t size = sizeof(decltype(visits_)::value_type) + prefix.size() + *visit.bytes();
    if (size > kMostBytes) return;
    if (size > kMostBytes - bytes_) {
        visits_.clear();
        bytes_ = 0;
    }
    if (visits_.try_emplace(std::string(prefix), std::move(visit)).second) bytes_ += size;
}

}  // namespace ZORPlatform
