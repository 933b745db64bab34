// SPDX-License-Identifier: Apache-2.0
#pragma once

// Secrets that are looked for in all of the memory that this process can write to: heap, stacks and static data, freed
// parts included. What an operation has left behind is found there.

#include <ZORPlatform/Foundation/Arc4Random.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace support {

/// The memory of this process, copied out by the kernel. Copies are kept where no copy is made of.
class MemoryWindow {
public:
    static constexpr std::uintptr_t kPage = 4096;
    static constexpr std::uintptr_t kPages = 256;

    MemoryWindow()
        : memory_(::open("/proc/self/mem", O_RDONLY | O_CLOEXEC)),
          pages_(::open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC)),
          window_(static_cast<std::uint8_t*>(
              ::mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {}
    MemoryWindow(const MemoryWindow&) = delete;
    MemoryWindow& operator=(const MemoryWindow&) = delete;
    ~MemoryWindow() {
        ::munmap(window_, kBytes);
        ::close(pages_);
        ::close(memory_);
    }

    /// A page of the window that is not used for copies.
    [[nodiscard]] std::uint8_t* scratch() const noexcept { return window_; }
    /// Where copies are.
    [[nodiscard]] const std::uint8_t* copy() const noexcept { return window_ + kPage; }

    /// Copies up to kPages pages and one more. @return the bytes that could be copied
    [[nodiscard]] std::size_t read(std::uintptr_t begin, std::uintptr_t end) const {
        const ssize_t count = ::pread(memory_, window_ + kPage, end - begin, static_cast<off_t>(begin));
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }

    /// Which of kPages pages from `begin` on hold something. Untouched ones do not, and the sanitizers have very many.
    /// Where the kernel does not tell, all do.
    [[nodiscard]] std::array<bool, kPages> used(std::uintptr_t begin) const {
        std::array<std::uint64_t, kPages> entries{};
        entries.fill(~std::uint64_t{0});
        static_cast<void>(
            ::pread(pages_, entries.data(), sizeof entries, static_cast<off_t>(begin / kPage * sizeof entries[0])) < 0);
        const auto own = reinterpret_cast<std::uintptr_t>(window_);
        std::array<bool, kPages> areUsed{};
        for (std::size_t i = 0; i < kPages; ++i) {
            const std::uintptr_t page = begin + i * kPage;
            // The upper two bits: in memory, in swap.
            areUsed[i] = (entries[i] >> 62) != 0 && (page < own || page >= own + kBytes);
        }
        return areUsed;
    }

private:
    static constexpr std::uintptr_t kBytes = (kPages + 2) * kPage;

    int memory_;
    int pages_;
    std::uint8_t* window_;
};

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

    /// How many copies there are, as bytes.
    [[nodiscard]] std::size_t copies() const {
        // The sanitizers' own tables, larger than any heap here, are left out.
        constexpr std::uintptr_t kLargest = std::uintptr_t{1} << 30;
        const MemoryWindow window;
        write(window.scratch());
        std::size_t count = 0;
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);) {
            std::uintptr_t begin = 0;
            std::uintptr_t end = 0;
            char rights[5] = {};
            if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, rights) != 3) continue;
            if (rights[0] == 'r' && rights[1] == 'w' && end - begin <= kLargest) count += copiesIn(begin, end, window);
        }
        return count;
    }

private:
    static constexpr std::uint8_t kMask = 0xA5;

    [[nodiscard]] std::size_t copiesIn(std::uintptr_t begin, std::uintptr_t end, const MemoryWindow& window) const {
        std::size_t count = 0;
        for (; begin < end; begin += MemoryWindow::kPages * MemoryWindow::kPage) {
            const auto areUsed = window.used(begin);
            for (std::size_t first = 0; first < areUsed.size(); ++first) {
                if (!areUsed[first]) continue;
                const auto last = std::find(areUsed.begin() + static_cast<std::ptrdiff_t>(first), areUsed.end(), false);
                const auto behind = static_cast<std::size_t>(last - areUsed.begin());
                const std::uintptr_t from = begin + first * MemoryWindow::kPage;
                const std::uintptr_t to = std::min(end, begin + behind * MemoryWindow::kPage);
                if (from < to) count += copiesBetween(from, to, end, window);
                first = behind;
            }
        }
        return count;
    }

    // Copies that begin between `from` and `to`; they end before `end`.
    [[nodiscard]] std::size_t copiesBetween(std::uintptr_t from, std::uintptr_t to, std::uintptr_t end,
                                            const MemoryWindow& window) const {
        const std::size_t available = window.read(from, std::min(end, to + size() - 1));
        const std::uint8_t* at = window.copy();
        const std::uint8_t* const behind = at + available;
        std::size_t count = 0;
        while ((at = static_cast<const std::uint8_t*>(
                    ::memmem(at, static_cast<std::size_t>(behind - at), window.scratch(), size()))) != nullptr) {
            ++count;
            ++at;
        }
        return count;
    }

    std::vector<std::uint8_t> masked_;
};

}  // namespace support
