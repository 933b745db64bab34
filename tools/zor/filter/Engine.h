// SPDX-License-Identifier: Apache-2.0
#pragma once

// From lines to results, without a system call: what one thread of the filter does.

#include <tools/zor/filter/FilterOptions.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace zor {

/// How many records came to which verdict.
struct Counts {
    std::uint64_t valid = 0;
    std::uint64_t invalid = 0;
    std::uint64_t absent = 0;

    Counts& operator+=(const Counts& other) noexcept {
        valid += other.valid;
        invalid += other.invalid;
        absent += other.absent;
        return *this;
    }
};

/// Writes one record for each line. Not for several threads at once; engines of the same options agree.
class Engine {
public:
    static constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

    /// @param options  must outlive the engine
    explicit Engine(const FilterOptions& options);

    /// Handles lines until all are handled, `limit` is used up, or `out` holds `outputBytes`.
    ///
    /// @param lines  whole lines, the last one with its LF; kScanSlack bytes behind them may be read
    /// @param limit  how many records to handle at most; what is left of it on return
    /// @return the bytes that were handled
    std::size_t process(std::string_view lines, std::uint64_t& limit, Output& out, std::size_t outputBytes);

    /// A piece of a line that is too long to be kept; `endOverlong` follows the last one.
    void skimOverlong(std::string_view piece) { reader_->skim(piece, skim_); }
    void endOverlong(Output& out);

    [[nodiscard]] const Counts& counts() const noexcept { return counts_; }

private:
    // A verdict with its LF, in a size that copies as one machine word or two.
    struct Token {
        std::array<char, 16> bytes{};
        std::size_t size = 0;
    };

    std::size_t processVerdicts(std::string_view lines, std::uint64_t& limit, Output& out, std::size_t outputBytes);
    void processRecord(std::string_view line, Output& out);
    void judge(std::u16string_view text);
    void judgeUnreadable();
    void judgeAbsent();
    std::u16string_view widened(std::string_view text);
    void count(Verdict verdict) noexcept;

    const FilterOptions& options_;
    std::unique_ptr<RecordReader> reader_;
    std::unique_ptr<RecordWriter> writer_;
    bool onlyPlainVerdicts_ = false;  ///< Nothing is written but a token a line, and nothing is parsed.
    bool needsExplanation_ = false;
    bool needsNormalized_ = false;
    bool needsFormatted_ = false;
    std::array<Token, 2> tokens_;

    Record record_;
    Outcome outcome_;
    std::u16string units_;
    std::string normalized_;
    std::string formatted_;
    Skim skim_;
    Counts counts_;
};

}  // namespace zor
