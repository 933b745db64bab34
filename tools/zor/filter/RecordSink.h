// SPDX-License-Identifier: Apache-2.0
#pragma once

// Where lines go: through engines, in order, to a descriptor.

#include <tools/zor/filter/Engine.h>

#include <memory>
#include <string_view>

namespace zor {

/// Takes the input in order and writes one record for each line.
struct RecordSink {
    RecordSink() = default;
    RecordSink(const RecordSink&) = delete;
    RecordSink& operator=(const RecordSink&) = delete;
    virtual ~RecordSink() = default;

    /// Whole lines, the last one with its LF; kScanSlack bytes behind them may be read.
    virtual void lines(std::string_view lines) = 0;
    /// A line longer than is kept, in pieces without its LF, then its end.
    virtual void overlongPiece(std::string_view piece) = 0;
    virtual void endOverlong() = 0;
    /// Writes everything that can be said about the lines so far.
    virtual void flush() = 0;
    /// After the last line: flushes. @throws StreamError when a chunk is not complete
    virtual void finish() = 0;
    /// After `finish`.
    [[nodiscard]] virtual Counts counts() const = 0;
};

/// The sink that the options ask for; with more than one job it has as many threads.
[[nodiscard]] std::unique_ptr<RecordSink> makeRecordSink(const FilterOptions& options, int descriptor);

/// The sink for more than one job.
[[nodiscard]] std::unique_ptr<RecordSink> makeParallelSink(const FilterOptions& options, int descriptor);

}  // namespace zor
