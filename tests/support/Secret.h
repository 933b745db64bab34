// SPDX-License-Identifier: Apache-2.0
#pragma once

// Secrets that are looked for in all of the memory that this process can write to: heap, stacks and static data, freed
// parts included. What an operation has left behind is found there.

#include <ZORPlatform/Foundation/Arc4Random.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace support {

/// Random lower-case letters that the process holds under a mask only, so that finding them means finding a copy.
class Secret {
public:
    explicit Secret(std::size_t size) : masked_(size) {
        ZORPlatform::arc4random_buf(masked_.data(), masked_.size());
        for (std::uint8_t& byte : masked_) byte = static_cast<std::uint8_t>(('a' + byte % 26) ^ kMask);
    }

    [[nodiscard]] std::size_t size() const noexcept { return masked_.size(); }
    /// The first `count` letters.
    [[nodiscard]] Secret first(std::size_t count) const {
        Secret beginning(*this);
        beginning.masked_.resize(count);
        return beginning;
    }

    /// Writes the letters, as bytes or as UTF-16 units.
    template <class Unit>
    void write(Unit* to) const noexcept {
        for (std::size_t i = 0; i < masked_.size(); ++i) to[i] = static_cast<Unit>(masked_[i] ^ kMask);
    }

    /// How many copies there are, as bytes. The sanitizers' own tables, larger than any heap here, are left out.
    [[nodiscard]] std::size_t copies() const {
        constexpr std::uintptr_t kLargest = std::uintptr_t{1} << 30;
        std::size_t count = 0;
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);) {
            std::uintptr_t begin = 0;
            std::uintptr_t end = 0;
            char rights[5] = {};
            if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, rights) != 3) continue;
            if (rights[0] != 'r' || rights[1] != 'w' || end - begin > kLargest) continue;
            count += copiesIn(reinterpret_cast<const std::uint8_t*>(begin), end - begin);
        }
        return count;
    }

private:
    static constexpr std::uint8_t kMask = 0xA5;

    // Memory that belongs to nobody any more is read on purpose.
    [[gnu::no_sanitize_address, gnu::no_sanitize_thread, gnu::noinline]] std::size_t copiesIn(
        const std::uint8_t* memory, std::size_t size) const noexcept {
        const std::uint8_t* const masked = masked_.data();
        const std::size_t length = masked_.size();
        std::size_t count = 0;
        for (std::size_t at = 0; at + length <= size; ++at) {
            std::size_t same = 0;
            while (same < length && (memory[at + same] ^ kMask) == masked[same]) ++same;
            if (same == length) ++count;
        }
        return count;
    }

    std::vector<std::uint8_t> masked_;
};

}  // namespace support
