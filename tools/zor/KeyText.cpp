// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/KeyText.h>

#include <tools/zor/ByteInput.h>
#include <tools/zor/Failure.h>
#include <tools/zor/filter/Output.h>

#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace zor {
namespace {

constexpr std::size_t kLongestKey = std::size_t{64} * 1024;
constexpr std::size_t kLongestLine = 4096;  // What a terminal gives for one line.

std::string_view withoutLineEnd(std::string_view text) {
    if (!text.ends_with('\n')) return text;
    text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

constexpr std::array kFatalSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// A terminal that does not show what is typed, for as long as the object lives or until a signal ends the process.
class SilentTerminal {
public:
    SilentTerminal() : descriptor_(::open("/dev/tty", O_RDWR | O_CLOEXEC)) {
        if (descriptor_ < 0 || ::tcgetattr(descriptor_, &shown) != 0) {
            if (descriptor_ >= 0) ::close(descriptor_);
            throw UsageError("--key-file is needed where there is no terminal to ask for the key");
        }
        terminal = descriptor_;
        struct sigaction restore = {};
        restore.sa_handler = [](int number) {
            ::tcsetattr(terminal, TCSANOW, &shown);
            std::signal(number, SIG_DFL);
            std::raise(number);
        };
        for (std::size_t i = 0; i < kFatalSignals.size(); ++i) ::sigaction(kFatalSignals[i], &restore, &before_[i]);
        termios silent = shown;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(descriptor_, TCSAFLUSH, &silent);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;
    ~SilentTerminal() {
        ::tcsetattr(descriptor_, TCSAFLUSH, &shown);
        for (std::size_t i = 0; i < kFatalSignals.size(); ++i) ::sigaction(kFatalSignals[i], &before_[i], nullptr);
        ::close(descriptor_);
    }

    // @return the bytes of the line, without its end
    std::size_t readLine(std::string_view prompt, std::span<char> line) {
        writeAll(descriptor_, prompt);
        std::size_t filled = 0;
        while (filled < line.size()) {
            const ssize_t count = ::read(descriptor_, line.data() + filled, line.size() - filled);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            filled += static_cast<std::size_t>(count);
            if (line[filled - 1] == '\n') break;
        }
        writeAll(descriptor_, "\n");
        // Not even a line end: whoever ends the input has given no key, and none is not the empty one.
        if (filled == 0) throw UsageError("no key was typed");
        return withoutLineEnd({line.data(), filled}).size();
    }

private:
    static inline termios shown = {};
    static inline int terminal = -1;

    int descriptor_;
    std::array<struct sigaction, kFatalSignals.size()> before_ = {};
};

}  // namespace

KeyText::KeyText(std::string_view bytes) {
    if (!ZORPlatform::isWellFormedUtf8(bytes)) throw UsageError("the key is not UTF-8");
    text_.resize(bytes.size());
    text_.resize(ZORPlatform::utf16Unchecked(bytes, text_.data()));
}

KeyText::~KeyText() { ZORPlatform::wipe(text_.data(), text_.size() * sizeof(char16_t)); }

KeyText KeyText::fromFile(const std::string& path, bool exactly) {
    ByteInput input(path, kLongestKey + 1);
    const auto bytes = input.next();
    if (bytes.size() > kLongestKey) throw UsageError("the key file is longer than 65536 bytes");
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return KeyText(exactly ? text : withoutLineEnd(text));
}

KeyText KeyText::fromTerminal(bool twice) {
    ZORPlatform::WipingArray<char, kLongestLine> first;
    ZORPlatform::WipingArray<char, kLongestLine> second;
    SilentTerminal terminal;
    const std::string_view key(first.data(), terminal.readLine("Key: ", first.span()));
    if (twice && key != std::string_view(second.data(), terminal.readLine("Key again: ", second.span()))) {
        throw UsageError("the two keys differ");
    }
    return KeyText(key);
}

}  // namespace zor
