// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/Filter.h>

#include <tools/zor/filter/LineSplitter.h>

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace zor {
namespace {

bool wouldWait(int descriptor) noexcept {
    pollfd waiting{descriptor, POLLIN, 0};
    return ::poll(&waiting, 1, 0) == 0;
}

// @return 0 at the end
std::size_t readSome(int descriptor, std::span<char> room) {
    for (;;) {
        const ssize_t bytes = ::read(descriptor, room.data(), room.size());
        if (bytes >= 0) return static_cast<std::size_t>(bytes);
        if (errno == EAGAIN) {
            // The descriptor is shared with a process that made it non-blocking.
            pollfd waiting{descriptor, POLLIN, 0};
            ::poll(&waiting, 1, -1);
        } else if (errno != EINTR) {
            throw StreamError(std::string("cannot read: ") + std::strerror(errno));
        }
    }
}

std::string statisticsText(Statistics form, const Counts& counts) {
    const std::string valid = std::to_string(counts.valid);
    const std::string invalid = std::to_string(counts.invalid);
    const std::string absent = std::to_string(counts.absent);
    switch (form) {
        case Statistics::none:
            return {};
        case Statistics::stderr_:
            return "zor: " + std::to_string(counts.valid + counts.invalid + counts.absent) + " records, " + valid +
                   " valid, " + invalid + " invalid, " + absent + " absent\n";
        case Statistics::hadoop:
            return "reporter:counter:zor,valid," + valid + "\nreporter:counter:zor,invalid," + invalid +
                   "\nreporter:counter:zor,absent," + absent + "\n";
    }
    return {};
}

}  // namespace

ExitCode runFilter(const FilterOptions& options, int input, int output) {
    const std::unique_ptr<RecordSink> sink = makeRecordSink(options, output);
    LineSplitter splitter(options.maxRecordBytes, *sink);
    for (;;) {
        if (options.flush == FlushRule::drain && wouldWait(input)) sink->flush();
        const std::size_t bytes = readSome(input, splitter.room());
        if (bytes == 0) break;
        splitter.commit(bytes);
        if (options.flush == FlushRule::line) sink->flush();
    }
    splitter.finish();
    sink->finish();
    const Counts counts = sink->counts();
    const std::string statistics = statisticsText(options.statistics, counts);
    if (!statistics.empty()) writeAll(STDERR_FILENO, statistics);
    return options.failOnInvalid && counts.invalid > 0 ? ExitCode::someInvalid : ExitCode::success;
}

}  // namespace zor
