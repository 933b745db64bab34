// SPDX-License-Identifier: Apache-2.0
#include <benchmarks/Comparison.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace benchmarks {
namespace {

// A goal counts as met within this share of its limit: the machine itself is not steadier.
constexpr double kTolerance = 0.05;

std::vector<Comparison>& comparisons() {
    static std::vector<Comparison> list;
    return list;
}

// How a run is marked whose CPU time counts.
constexpr const char* kThreadTime = "";

// CPU time of all children that were waited for.
double childSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::string runName(const Comparison& comparison, const Comparison::Contestant& contestant) {
    return comparison.name() + "/" + contestant.name;
}

struct Times {
    double low;
    double median;
    double high;
};

Times summary(std::vector<double> seconds, std::size_t items) {
    std::sort(seconds.begin(), seconds.end());
    const double nanoseconds = 1e9 / static_cast<double>(items);
    return {seconds[seconds.size() / 4] * nanoseconds, seconds[seconds.size() / 2] * nanoseconds,
            seconds[seconds.size() * 3 / 4] * nanoseconds};
}

/// Keeps every round's time and prints nothing until all are in.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            // The function's own name: no suffix for repetitions or times.
            const double seconds =
                run.run_name.time_type == kThreadTime ? run.cpu_accumulated_time : run.real_accumulated_time;
            rounds_[run.run_name.function_name].push_back(seconds / static_cast<double>(run.iterations));
        }
    }

    /// Prints the table. @return the number of goals missed
    int printTable() const {
        int missed = 0;
        for (const Comparison& comparison : comparisons()) missed += print(comparison);
        return missed;
    }

private:
    int print(const Comparison& comparison) const {
        const auto times = timesOf(comparison);
        if (times.empty()) return 0;
        std::printf("\n%s\n", comparison.name().c_str());
        const auto candidate = times.find(Comparison::kCandidate);
        for (const Comparison::Contestant& contestant : comparison.contestants()) {
            const auto found = times.find(contestant.name);
            if (found == times.end()) continue;
            const Times& time = found->second;
            std::printf("  %-44s %12.2f ns  [%.2f .. %.2f]", contestant.name.c_str(), time.median, time.low, time.high);
            if (candidate != times.end() && contestant.name != Comparison::kCandidate) {
                std::printf("  candidate is x%.3f", candidate->second.median / time.median);
            }
            std::printf("\n");
        }
        int missed = 0;
        if (comparison.expected()) std::printf("  the size to expect: %.0f ns\n", *comparison.expected());
        for (const Comparison::Goal& goal : comparison.goals()) {
            if (candidate == times.end() || (goal.against && !times.contains(*goal.against))) continue;
            const double value = candidate->second.median / (goal.against ? times.at(*goal.against).median : 1.0);
            const bool met = value <= goal.limit * (1 + kTolerance);
            missed += met ? 0 : 1;
            if (goal.against) {
                std::printf("  goal: at most x%.3f of %s: x%.3f, %s\n", goal.limit, goal.against->c_str(), value,
                            met ? "met" : "MISSED");
            } else {
                std::printf("  goal: at most %.1f ns: %.1f ns, %s\n", goal.limit, value, met ? "met" : "MISSED");
            }
        }
        return missed;
    }

    std::map<std::string, Times> timesOf(const Comparison& comparison) const {
        std::map<std::string, Times> times;
        for (const Comparison::Contestant& contestant : comparison.contestants()) {
            if (const auto found = rounds_.find(runName(comparison, contestant)); found != rounds_.end()) {
                times.emplace(contestant.name, summary(found->second, comparison.items()));
            }
        }
        return times;
    }

    std::map<std::string, std::vector<double>> rounds_;
};

void runWork(const Comparison& comparison, const Comparison::Work& work, benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        if (work.isTimedByItself()) {
            state.SetIterationTime(std::chrono::duration<double>(work.time()).count());
        } else if (comparison.clock() == Comparison::Clock::childProcesses) {
            const double before = childSeconds();
            work.run();
            state.SetIterationTime(childSeconds() - before);
        } else {
            work.run();
        }
    }
}

void registerAll(bool smoke) {
    for (const Comparison& comparison : comparisons()) {
        for (const Comparison::Contestant& contestant : comparison.contestants()) {
            auto* run = benchmark::RegisterBenchmark(
                runName(comparison, contestant).c_str(),
                [&comparison, &contestant, isPrepared = smoke](benchmark::State& state) mutable {
                    // What the first call makes ready is no part of a round, nor of the guess how many calls fill one.
                    if (!std::exchange(isPrepared, true) && !contestant.work.isTimedByItself()) contestant.work.run();
                    runWork(comparison, contestant.work, state);
                });
            if (contestant.work.isTimedByItself() || comparison.clock() == Comparison::Clock::childProcesses) {
                run->UseManualTime();
            } else if (comparison.clock() == Comparison::Clock::elapsed) {
                run->UseRealTime();
            }
            if (smoke) {
                run->Iterations(1);
            } else if (contestant.work.isTimedByItself()) {
                run->Repetitions(15)->Iterations(1);
            } else {
                run->Repetitions(15)->MinTime(0.02);
            }
        }
    }
}

}  // namespace

Comparison::Comparison(std::string name) : name_(std::move(name)) {}

Comparison& Comparison::itemsPerCall(std::size_t items) {
    items_ = items;
    return *this;
}

Comparison& Comparison::inChildProcesses() {
    clock_ = Clock::childProcesses;
    return *this;
}

Comparison& Comparison::inElapsedTime() {
    clock_ = Clock::elapsed;
    return *this;
}

Comparison& Comparison::candidate(Work work) { return peer(kCandidate, std::move(work)); }

Comparison& Comparison::floor(std::string name, Work work) { return peer(std::move(name), std::move(work)); }

Comparison& Comparison::peer(std::string name, Work work) {
    contestants_.push_back({std::move(name), std::move(work)});
    return *this;
}

Comparison& Comparison::atMost(double factor, std::string contestant) {
    goals_.push_back({factor, std::move(contestant)});
    return *this;
}

Comparison& Comparison::atMostNanoseconds(double nanoseconds) {
    goals_.push_back({nanoseconds, std::nullopt});
    return *this;
}

Comparison& Comparison::expectedNanoseconds(double nanoseconds) {
    expected_ = nanoseconds;
    return *this;
}

Comparison& Comparison::add() {
    comparisons().push_back(*this);
    return *this;
}

}  // namespace benchmarks

// Usage: bench-UNIT [--smoke | --benchmark_filter=REGEX]. Exits 0 whatever the ratios are: they are for reading.
int main(int argc, char** argv) {
    bool smoke = false;
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments{argv[0]};
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--smoke") == 0) {
            smoke = true;
        } else {
            arguments.push_back(argv[i]);
        }
    }
    if (!smoke) arguments.push_back(interleave);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

    benchmarks::registerAll(smoke);
    benchmarks::RatioReporter reporter;
    if (benchmark::RunSpecifiedBenchmarks(&reporter) == 0) return 1;
    const int missed = reporter.printTable();
    if (!smoke && missed > 0) std::printf("\n%d goals missed\n", missed);
    return 0;
}
