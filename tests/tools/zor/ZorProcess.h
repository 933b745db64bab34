// SPDX-License-Identifier: Apache-2.0
#pragma once

// The built command as a child process: run to its end, or talked to through its pipes.

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zor::testing {

using Words = std::vector<std::string>;

struct RunResult {
    std::string out;
    std::string err;
    int exitCode = -1;  ///< -1 when a signal ended it.
    int signal = 0;
    long peakKilobytes = 0;
};

/// A running child. All descriptors are pipes.
class ZorProcess {
public:
    struct Setting {
        std::string program;               ///< Empty: zor.
        std::optional<Words> environment;  ///< Absent: that of the test.
        std::string directory;             ///< Empty: that of the test.
        bool ignoresSigpipe = false;
    };

    explicit ZorProcess(Words arguments) : ZorProcess(std::move(arguments), Setting()) {}
    ZorProcess(Words arguments, const Setting& setting);
    ~ZorProcess();
    ZorProcess(const ZorProcess&) = delete;
    ZorProcess& operator=(const ZorProcess&) = delete;

    void write(std::string_view bytes);
    void closeInput();
    void closeOutput();
    /// The next `count` lines of output, or what came of them until the time was over.
    std::string readLines(std::size_t count, std::chrono::milliseconds limit);
    /// Writes all of `input` while reading all of both outputs, then waits for the end.
    RunResult finish(std::string_view input = {});
    /// Waits for the end without reading.
    RunResult wait();

    [[nodiscard]] pid_t id() const noexcept { return id_; }
    [[nodiscard]] int inputDescriptor() const noexcept { return input_; }
    [[nodiscard]] int outputDescriptor() const noexcept { return output_; }

private:
    pid_t id_ = -1;
    int input_ = -1;
    int output_ = -1;
    int errors_ = -1;
};

/// Runs zor to its end.
RunResult runZor(Words arguments, std::string_view input = {});
RunResult runZor(Words arguments, std::string_view input, const ZorProcess::Setting& setting);

/// A record has to be answered within this time of being written.
inline constexpr std::chrono::milliseconds kAnswerLimit{100};
/// For everything that only has to happen at all.
inline constexpr std::chrono::milliseconds kPatience{30000};

}  // namespace zor::testing
