// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/ByteInput.h>

#include <tools/zor/Failure.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace zor {
namespace {

int opened(const std::string& path) {
    if (path.empty() || path == "-") return STDIN_FILENO;
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) throw StreamError(path + ": " + std::strerror(errno));
    return descriptor;
}

}  // namespace

ByteInput::ByteInput(const std::string& path, std::size_t pieceBytes) : descriptor_(opened(path)), piece_(pieceBytes) {}

ByteInput::~ByteInput() {
    if (descriptor_ != STDIN_FILENO) ::close(descriptor_);
}

std::span<const std::uint8_t> ByteInput::next() {
    std::size_t filled = 0;
    while (filled < piece_.size()) {
        const ssize_t count = ::read(descriptor_, piece_.data() + filled, piece_.size() - filled);
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw StreamError(std::string("input: ") + std::strerror(errno));
        filled += static_cast<std::size_t>(count);
    }
    return piece_.span().first(filled);
}

}  // namespace zor
