// SPDX-License-Identifier: Apache-2.0
//
// Runs a fuzz target over files and folders of seeds, for compilers without libFuzzer.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

int replay(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> content(std::istreambuf_iterator<char>(stream), {});
    // A buffer of exactly the input's size, so that a read past the end is seen.
    const std::vector<std::uint8_t> bytes(content.begin(), content.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        const fs::path path = argv[i];
        if (!fs::is_directory(path)) {
            files += replay(path);
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(path)) files += replay(entry.path());
    }
    std::printf("%d inputs replayed\n", files);
    return files > 0 ? 0 : 1;
}
