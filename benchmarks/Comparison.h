// SPDX-License-Identifier: Apache-2.0
#pragma once

// Benchmarks that compare: a candidate beside the floor the machine sets and the peers a user would pick, in one
// process, their rounds in random order. The program ends with a table of ratios between medians of CPU time, or of
// elapsed time where the work goes on on other threads.
//
//     const Comparison iban = Comparison("isValidIban, mixed million")
//         .itemsPerCall(numbers.size())
//         .candidate([] { for (const auto& n : numbers) benchmark::DoNotOptimize(isValidIban(n)); })
//         .floor("bytes read once", [] { ... })
//         .peer("textbook", [] { ... })
//         .expectedNanoseconds(20)
//         .atMost(0.5, "textbook")
//         .add();

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace benchmarks {

/// One group of contestants and the goals of its candidate. Declare as objects of namespace scope.
class Comparison {
public:
    /// Does the group's work once. One that returns nanoseconds says itself what counts, and is called once a round.
    class Work {
    public:
        template <class Function>
        Work(Function function) {  // Implicit: a lambda stands for it.
            using Returned = std::invoke_result_t<Function&>;
            static_assert(std::is_void_v<Returned> || std::is_same_v<Returned, std::chrono::nanoseconds>);
            if constexpr (std::is_void_v<Returned>) {
                run_ = std::move(function);
            } else {
                time_ = std::move(function);
            }
        }
        [[nodiscard]] bool isTimedByItself() const noexcept { return time_ != nullptr; }
        void run() const { run_(); }
        [[nodiscard]] std::chrono::nanoseconds time() const { return time_(); }

    private:
        std::function<void()> run_;
        std::function<std::chrono::nanoseconds()> time_;
    };
    /// Whose time counts.
    enum class Clock { thisThread, childProcesses, elapsed };

    explicit Comparison(std::string name);

    /// How many items one call of the work handles; times are printed for one item. Default 1.
    Comparison& itemsPerCall(std::size_t items);
    /// The work is done by child processes that it waits for: their CPU time counts, not this thread's.
    Comparison& inChildProcesses();
    /// The work waits, for other threads or for a disk: elapsed time counts, so the machine is to be at rest.
    Comparison& inElapsedTime();
    Comparison& candidate(Work work);
    Comparison& floor(std::string name, Work work);
    Comparison& peer(std::string name, Work work);

    /// Goal: at most `factor` times the time of the named contestant. "At least 5 times faster" is `atMost(0.2, …)`.
    Comparison& atMost(double factor, std::string contestant);
    /// Goal: an item in at most this time, whatever the machine. For what a user waits for.
    Comparison& atMostNanoseconds(double nanoseconds);
    /// The size to expect, as once seen on a machine at rest. Printed and not judged: machines differ, ratios less.
    Comparison& expectedNanoseconds(double nanoseconds);

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
    [[nodiscard]] Clock clock() const noexcept { return clock_; }
    [[nodiscard]] const std::vector<Contestant>& contestants() const noexcept { return contestants_; }
    [[nodiscard]] const std::vector<Goal>& goals() const noexcept { return goals_; }
    [[nodiscard]] std::optional<double> expected() const noexcept { return expected_; }

private:
    std::string name_;
    std::size_t items_ = 1;
    Clock clock_ = Clock::thisThread;
    std::vector<Contestant> contestants_;
    std::vector<Goal> goals_;
    std::optional<double> expected_;
};

}  // namespace benchmarks
