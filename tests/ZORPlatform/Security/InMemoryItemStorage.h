// SPDX-License-Identifier: Apache-2.0
#pragma once

// The rows of the item store in memory: the plainest thing that keeps the contract of ItemStorage.

#include <ZORPlatform/Security/ItemStorageInternal.h>

#include <map>
#include <optional>
#include <string>

namespace support {

class InMemoryItemStorage : public ZORPlatform::ItemStorage {
public:
    using OSStatus = ZORPlatform::OSStatus;

    OSStatus visit(std::string_view prefix, const Visitor& visitor) override {
        for (const auto& [number, row] : content_.rows) {
            if (!std::string_view(row.identity).starts_with(prefix)) continue;
            if (const OSStatus status = visitRow(number, visitor); status != ZORPlatform::errSecSuccess) return status;
        }
        return ZORPlatform::errSecSuccess;
    }
    OSStatus visitRow(std::int64_t number, const Visitor& visitor) override {
        const auto found = content_.rows.find(number);
        if (found == content_.rows.end()) return ZORPlatform::errSecSuccess;
        const Row& row = found->second;
        return visitor({number, row.identity, row.attributes, row.sealed});
    }
    OSStatus contains(std::string_view identity, bool& isThere) override {
        isThere = isTaken(identity, 0);
        return ZORPlatform::errSecSuccess;
    }
    OSStatus insert(std::string_view identity, std::string_view attributes, std::string_view sealed,
                    std::int64_t& number) override {
        if (isTaken(identity, 0)) return ZORPlatform::errSecDuplicateItem;
        number = ++content_.lastNumber;
        content_.rows[number] = {std::string(identity), std::string(attributes), std::string(sealed)};
        return ZORPlatform::errSecSuccess;
    }
    OSStatus replace(std::int64_t number, std::optional<std::string_view> identity, std::string_view attributes,
                     std::string_view sealed) override {
        if (identity && isTaken(*identity, number)) return ZORPlatform::errSecDuplicateItem;
        Row& row = content_.rows.at(number);
        row = {identity ? std::string(*identity) : row.identity, std::string(attributes), std::string(sealed)};
        return ZORPlatform::errSecSuccess;
    }
    OSStatus remove(std::int64_t number) override {
        content_.rows.erase(number);
        return ZORPlatform::errSecSuccess;
    }
    OSStatus begin() override {
        before_ = content_;
        return ZORPlatform::errSecSuccess;
    }
    OSStatus commit() override {
        before_.reset();
        return ZORPlatform::errSecSuccess;
    }
    void rollback() noexcept override {
        if (before_) content_ = std::move(*before_);
        before_.reset();
    }
    OSStatus keyCheck(std::optional<std::string>& mark) override {
        mark = content_.mark;
        return ZORPlatform::errSecSuccess;
    }
    OSStatus check(bool& isSound) override {
        isSound = true;
        return ZORPlatform::errSecSuccess;
    }
    OSStatus setKeyCheck(std::string_view mark) override {
        content_.mark = std::string(mark);
        return ZORPlatform::errSecSuccess;
    }

private:
    struct Row {
        std::string identity;
        std::string attributes;
        std::string sealed;
    };
    struct Content {
        std::map<std::int64_t, Row> rows;
        std::int64_t lastNumber = 0;
        std::optional<std::string> mark;
    };

    [[nodiscard]] bool isTaken(std::string_view identity, std::int64_t exceptNumber) const {
        for (const auto& [number, row] : content_.rows) {
            if (number != exceptNumber && row.identity == identity) return true;
        }
        return false;
    }

    Content content_;
    std::optional<Content> before_;
};

}  // namespace support
