// SPDX-License-Identifier: Apache-2.0
#pragma once

// Benchmarks that compare: a candidate beside the floor the machine sets and the peers a user would pick, in one
// process, their rounds in random order. The program ends with a table of ratios between medians of CPU time.
//
//     const Comparison iban = Comparison("isValidIban, mixed million")
//         .itemsPerCall(numbers.size())
//         .candidate([] { for (const auto& n : numbers) benchmark::DoNotOptimize(isValidIban(n)); })
//         .floor("bytes read once", [] { ... })
//         .peer("textbook", [] { ... })
//         .atMostNanoseconds(20)
//         .atMost(0.5, "textbook")
//         .add();

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace benchmarks {

/// One group of contestants and the goals of its candidate. Declare as objects of namespace scope.
class Comparison {
public:
    /// Does the group's work once.
    using Work = std::function<void()>;

    explicit Comparison(std::string name);

    /// How many items one call of the work handles; times are printed for one item. Default 1.
    Comparison& itemsPerCall(std::size_t items);
    /// The work is done by child processes that it waits for: their CPU time counts, not this thread's.
    Comparison& inChildProcesses();
    Comparison& candidate(Work work);
    Comparison& floor(std::string name, Work work);
    Comparison& peer(std::string name, Work work);

    /// Goal: at most `factor` times the time of the named contestant. "At least 5 times faster" is `atMost(0.2, …)`.
    Comparison& atMost(double factor, std::string contestant);
    /// Goal: an item in at most this time on the machine at hand.
    Comparison& atMostNanoseconds(double nanoseconds);

    /// Registers the group with the program.
    Comparison& add();

    struct Contestant {
        std::string name;
        Work work;
    };
    struct Goal {
        double limit;
        std::optional<std::string> against;  ///< Absent for a limit in nanoseconds.
    };
    static constexpr const char* kCandidate = "candidate";

    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] std::size_t items() const noexcept { return items_; }
    [[nodiscard]] bool isInChildProcesses() const noexcept { return inChildProcesses_; }
    [[nodiscard]] const std::vector<Contestant>& contestants() const noexcept { return contestants_; }
    [[nodiscard]] const std::vector<Goal>& goals() const noexcept { return goals_; }

private:
    std::string name_;
    std::size_t items_ = 1;
    bool inChildProcesses_ = false;
    std::vector<Contestant> contestants_;
    std::vector<Goal> goals_;
};

}  // namespace benchmarks
