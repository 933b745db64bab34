// SPDX-License-Identifier: Apache-2.0
#include "../FilterRun.h"

#include <tools/zor/Failure.h>
#include <tools/zor/filter/RecordSink.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <random>

namespace zor::testing {
namespace {

std::string mixedLines(std::size_t count) {
    std::mt19937 random(17);
    std::string lines;
    for (std::size_t line = 0; line < count; ++line) {
        if (random() % 3 != 0) lines += 'v';
        lines.append(random() % 30, 'x');
        if (random() % 100 == 0) lines += "\xFF\r";
        if (random() % 5000 == 0) lines.append(200000, 'y');
        lines += '\n';
    }
    return lines;
}

TEST(ParallelSink, EightJobsWriteWhatOneDoes) {
    const std::string lines = mixedLines(200000);
    for (const char* format : {"--format=plain", "--format=tsv", "--format=csv"}) {
        const std::string emit = "--emit=verdict,reason,formatted";
        EXPECT_EQ(filtered({format, emit, "--jobs=8"}, lines), filtered({format, emit}, lines)) << format;
    }
    EXPECT_EQ(filtered({"--jobs=3", "--flush=line"}, lines), filtered({}, lines));
}

TEST(ParallelSink, NothingInIsNothingOut) { EXPECT_EQ(filtered({"--jobs=4"}, ""), ""); }

TEST(ParallelSink, CountsWhatAllJobsSaw) {
    FilterOptions options = testOptions({"--jobs=4", "--fail-on-invalid"});
    EXPECT_EQ(runTestFilter(options, mixedLines(50000)).exitCode, 1);
    EXPECT_EQ(runTestFilter(options, std::string(50000, 'v')).exitCode, 0 + 1);
    std::string valid;
    for (int line = 0; line < 50000; ++line) valid += "v\n";
    EXPECT_EQ(runTestFilter(options, valid).exitCode, 0);
}

TEST(ParallelSink, AFullDeviceEndsTheRun) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    FilterOptions options = testOptions({"--jobs=4"});
    const std::unique_ptr<RecordSink> sink = makeRecordSink(options, full);
    const std::string lines = mixedLines(50000);
    const std::string padded = lines + std::string(kScanSlack, '\n');
    EXPECT_THROW(
        {
            for (int round = 0; round < 1000; ++round) sink->lines({padded.data(), lines.size()});
            sink->finish();
        },
        StreamError);
    ::close(full);
}

}  // namespace
}  // namespace zor::testing
