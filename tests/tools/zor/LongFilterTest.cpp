// SPDX-License-Identifier: Apache-2.0
//
// Streams of a size that engines send.

#include "ZorProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <random>

namespace zor::testing {
namespace {

struct StreamResult {
    std::size_t lines = 0;
    RunResult end;
};

// Sends `block` `count` times while counting the lines that come back.
StreamResult stream(ZorProcess& zor, std::string_view block, std::size_t count) {
    ::fcntl(zor.inputDescriptor(), F_SETFL, O_NONBLOCK);
    StreamResult result;
    std::string_view left = block;
    std::vector<char> room(1 << 20);
    for (;;) {
        if (left.empty() && count > 0 && --count > 0) left = block;
        if (left.empty()) zor.closeInput();
        std::array<pollfd, 2> waiting{{{zor.inputDescriptor(), POLLOUT, 0}, {zor.outputDescriptor(), POLLIN, 0}}};
        if (::poll(waiting.data(), waiting.size(), static_cast<int>(kPatience.count())) <= 0) break;
        if (waiting[0].revents != 0) {
            const ssize_t written = ::write(zor.inputDescriptor(), left.data(), left.size());
            if (written > 0) left.remove_prefix(static_cast<std::size_t>(written));
        }
        if (waiting[1].revents != 0) {
            const ssize_t bytes = ::read(zor.outputDescriptor(), room.data(), room.size());
            if (bytes <= 0) break;
            result.lines += static_cast<std::size_t>(std::count(room.begin(), room.begin() + bytes, '\n'));
        }
    }
    result.end = zor.wait();
    return result;
}

std::string numbers(std::size_t lines) {
    std::mt19937 random(31);
    std::string block;
    for (std::size_t line = 0; line < lines; ++line) {
        block += random() % 5 == 0 ? "BE6853900754703" : "BE68539007547034";
        block += random() % 7 == 0 ? " \n" : "\n";
    }
    return block;
}

TEST(LongFilter, TenMillionLinesGiveTenMillionAnswers) {
    for (const char* jobs : {"--jobs=1", "--jobs=8"}) {
        ZorProcess zor({"check", "iban", jobs});
        const StreamResult result = stream(zor, numbers(100000), 100);
        EXPECT_EQ(result.lines, 10'000'000U);
        EXPECT_EQ(result.end.exitCode, 0);
    }
}

TEST(LongFilter, MemoryDoesNotGrowWithTheStream) {
    const std::string block = numbers(100000);
    long small = 0;
    {
        ZorProcess zor({"explain", "iban", "--format=tsv", "--emit=verdict,reason,offset,formatted"});
        small = stream(zor, block, 5).end.peakKilobytes;
    }
    // Two gigabytes: whatever leaks with the stream shows.
    ZorProcess zor({"check", "iban"});
    EXPECT_LE(stream(zor, block, 1200).end.peakKilobytes, small + 4096);
    ZorProcess parallel({"check", "iban", "--jobs=4"});
    EXPECT_LE(stream(parallel, block, 1200).end.peakKilobytes, small + 16384);
}

TEST(LongFilter, AHundredMegabytesMayBeOneLine) {
    const std::string piece(1'000'000, 'x');
    for (const char* format : {"--format=plain", "--format=tsv", "--format=csv", "--format=jsonl"}) {
        ZorProcess zor({"check", "iban", format});
        const StreamResult result = stream(zor, piece, 100);
        EXPECT_EQ(result.lines, 1U);
        EXPECT_EQ(result.end.exitCode, 0);
        EXPECT_LE(result.end.peakKilobytes, 32 * 1024);
    }
}

}  // namespace
}  // namespace zor::testing
