// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/filter/Output.h>

#include <ZORFoundation/ZORFileSystemObserver.h>

#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <memory>
#include <semaphore>

namespace zor {
namespace {

using ZORFoundation::ZORFileSystemObserver;

constexpr std::array kOptions{Option{"--count", "N", "ends after N lines"}};

constexpr std::int32_t kNotWatched = -1;

std::optional<std::uint64_t> mostLines(const Arguments& arguments) {
    const auto given = arguments.value("--count");
    if (!given) return std::nullopt;
    std::uint64_t count = 0;
    const auto read = std::from_chars(given->data(), given->data() + given->size(), count);
    if (read.ec != std::errc{} || read.ptr != given->data() + given->size() || count == 0) {
        throw UsageError("--count: a number from 1 is needed");
    }
    return count;
}

ExitCode run(const Arguments& arguments) {
    if (arguments.words.size() != 1) throw UsageError("watch: one PATH is needed");
    const std::string& path = arguments.words[0];
    const std::optional<std::uint64_t> most = mostLines(arguments);

    // The block of a stopped observer may still be under way.
    const auto changes = std::make_shared<std::counting_semaphore<>>(0);
    const auto observer = [&] { return ZORFileSystemObserver(path, [changes] { changes->release(); }); };
    ZORFileSystemObserver watching = observer();
    if (watching.fileDescriptor() == kNotWatched) throw StreamError(path + ": cannot be watched");
    for (std::uint64_t lines = 1;; ++lines) {
        changes->acquire();
        while (changes->try_acquire()) continue;
        // Programs save by putting another file in the place of the old one; the next observer is that file's. It is
        // there before the line is: whoever reads the line may change the file again.
        ZORFileSystemObserver next = observer();
        watching.stopObserving();
        watching = std::move(next);
        writeAll(STDOUT_FILENO, path + "\n");
        if (lines == most || watching.fileDescriptor() == kNotWatched) break;
    }
    watching.stopObserving();
    return ExitCode::success;
}

}  // namespace

const Command kWatchCommand{
    .name = "watch", .synopsis = "PATH", .help = "a line for each change", .options = kOptions, .run = run};

}  // namespace zor
