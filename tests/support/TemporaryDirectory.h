// SPDX-License-Identifier: Apache-2.0
#pragma once

// A directory of a test's own, gone with the object.
//
//     const TemporaryDirectory directory;
//     directory.write("cases.jsonl", "...");

#include <stdlib.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace support {

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "zor-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), "mkdtemp");
        path_ = name;
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
    [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

    /// How many entries the directory itself holds.
    [[nodiscard]] std::size_t count() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator()));
    }

    /// Writes a file below the directory, making folders on the way. @return its path
    std::filesystem::path write(const std::filesystem::path& name, std::string_view content) const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream stream(file, std::ios::binary);
        stream << content;
        stream.close();
        if (!stream) throw std::runtime_error("cannot write " + file.string());
        return file;
    }

private:
    std::filesystem::path path_;
};

inline std::vector<std::uint8_t> bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

inline void writeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) throw std::runtime_error("cannot write " + path.string());
}

inline std::vector<std::uint8_t> readFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    const std::string content(std::istreambuf_iterator<char>(stream), {});
    return bytesOf(content);
}

}  // namespace support
