// SPDX-License-Identifier: Apache-2.0
#include "ZorProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace zor::testing {
namespace {

void require(bool condition, const char* what) {
    if (!condition) throw std::system_error(errno, std::generic_category(), what);
}

struct Pipe {
    int read = -1;
    int write = -1;

    Pipe() {
        std::array<int, 2> ends{};
        require(::pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
        read = ends[0];
        write = ends[1];
    }
};

void closeOnce(int& descriptor) {
    if (descriptor >= 0) ::close(descriptor);
    descriptor = -1;
}

std::vector<char*> pointers(Words& words) {
    std::vector<char*> result;
    for (std::string& word : words) result.push_back(word.data());
    result.push_back(nullptr);
    return result;
}

// Appends what is there. @return false at the end
bool readAvailable(int descriptor, std::string& bytes) {
    std::array<char, 65536> room;
    const ssize_t count = ::read(descriptor, room.data(), room.size());
    if (count > 0) bytes.append(room.data(), static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

}  // namespace

ZorProcess::ZorProcess(Words arguments, const Setting& setting) {
    // A test writes to children that may be gone.
    ::signal(SIGPIPE, SIG_IGN);
    Pipe input;
    Pipe output;
    Pipe errors;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.read, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.write, STDERR_FILENO);
    if (!setting.directory.empty()) posix_spawn_file_actions_addchdir_np(&actions, setting.directory.c_str());
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    if (!setting.ignoresSigpipe) {
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &defaults);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    }
    arguments.insert(arguments.begin(), setting.program.empty() ? ZOR_PROGRAM : setting.program);
    Words environment = setting.environment.value_or(Words());
    const std::vector<char*> argumentPointers = pointers(arguments);
    const std::vector<char*> environmentPointers = pointers(environment);
    const int failure = ::posix_spawn(&id_, arguments.front().c_str(), &actions, &attributes, argumentPointers.data(),
                                      setting.environment ? environmentPointers.data() : environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    ::close(input.read);
    ::close(output.write);
    ::close(errors.write);
    input_ = input.write;
    output_ = output.read;
    errors_ = errors.read;
    if (failure != 0) throw std::system_error(failure, std::generic_category(), "posix_spawn");
}

ZorProcess::~ZorProcess() {
    closeInput();
    closeOutput();
    closeOnce(errors_);
    if (id_ > 0) {
        ::kill(id_, SIGKILL);
        ::waitpid(id_, nullptr, 0);
    }
}

void ZorProcess::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(input_, bytes.data(), bytes.size());
        require(count > 0, "write");
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void ZorProcess::closeInput() { closeOnce(input_); }
void ZorProcess::closeOutput() { closeOnce(output_); }

std::string ZorProcess::readLines(std::size_t count, std::chrono::milliseconds limit) {
    std::string lines;
    const auto end = std::chrono::steady_clock::now() + limit;
    while (static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')) < count) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd waiting{output_, POLLIN, 0};
        if (left <= 0 || ::poll(&waiting, 1, static_cast<int>(left)) <= 0) break;
        if (!readAvailable(output_, lines)) break;
    }
    return lines;
}

RunResult ZorProcess::finish(std::string_view input) {
    ::fcntl(input_, F_SETFL, O_NONBLOCK);
    std::string out;
    std::string err;
    while (output_ >= 0 || errors_ >= 0) {
        if (input.empty()) closeInput();
        std::array<pollfd, 3> waiting{{{input_, POLLOUT, 0}, {output_, POLLIN, 0}, {errors_, POLLIN, 0}}};
        require(::poll(waiting.data(), waiting.size(), static_cast<int>(kPatience.count())) > 0, "poll");
        if (waiting[0].revents != 0) {
            const ssize_t count = ::write(input_, input.data(), input.size());
            if (count >= 0) {
                input.remove_prefix(static_cast<std::size_t>(count));
            } else if (errno != EAGAIN) {
                closeInput();
                input = {};
            }
        }
        if (waiting[1].revents != 0 && !readAvailable(output_, out)) closeOutput();
        if (waiting[2].revents != 0 && !readAvailable(errors_, err)) closeOnce(errors_);
    }
    RunResult result = wait();
    result.out = std::move(out);
    result.err = std::move(err);
    return result;
}

RunResult ZorProcess::wait() {
    RunResult result;
    while (errors_ >= 0) {
        if (!readAvailable(errors_, result.err)) closeOnce(errors_);
    }
    int status = 0;
    rusage usage{};
    require(::wait4(id_, &status, 0, &usage) == id_, "wait4");
    id_ = -1;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.peakKilobytes = usage.ru_maxrss;
    return result;
}

RunResult runZor(Words arguments, std::string_view input) { return ZorProcess(std::move(arguments)).finish(input); }

RunResult runZor(Words arguments, std::string_view input, const ZorProcess::Setting& setting) {
    return ZorProcess(std::move(arguments), setting).finish(input);
}

}  // namespace zor::testing
