// SPDX-License-Identifier: Apache-2.0
#pragma once

// Waits until another thread waits, so that a test can stand in the very moment in which two threads meet.
//
//     ThreadRest rest;
//     std::thread other([&] { rest.entersHere(); operation->completeOperation(result); });
//     rest.waitUntilItSleepsOrHasEnded();     // held up inside completeOperation, or through it

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>

namespace support {

class ThreadRest {
public:
    /// Called by the thread in question, right before the call that may hold it up.
    void entersHere() { thread_ = ::gettid(); }

    /// Returns once that thread has entered and then sleeps or is gone.
    void waitUntilItSleepsOrHasEnded() const {
        while (thread_ == 0 || isRunning()) std::this_thread::yield();
    }

private:
    [[nodiscard]] bool isRunning() const {
        std::ifstream stat("/proc/self/task/" + std::to_string(thread_) + "/stat");
        std::string line;
        if (!std::getline(stat, line)) return false;
        // The state is the letter after the name, which stands in parentheses and may hold any character.
        const std::size_t end = line.rfind(") ");
        return end != std::string::npos && end + 2 < line.size() && line[end + 2] == 'R';
    }

    std::atomic<pid_t> thread_{0};
};

}  // namespace support
