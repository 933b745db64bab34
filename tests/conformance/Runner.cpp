// SPDX-License-Identifier: Apache-2.0
#include "Runner.h"

#include <ZORPlatform/Foundation/Error.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <system_error>

namespace conformance {
namespace {

namespace fs = std::filesystem;
using Line = std::variant<Case, Malformed>;

/// Why a case failed; absent when it passed.
using Verdict = std::optional<std::string>;

// ---- One case, in the process at hand -------------------------------------------------------------------------

std::string described(const std::variant<Value, ExpectedException, ExpectedStop>& outcome) {
    if (const auto* value = std::get_if<Value>(&outcome)) return value->description();
    if (const auto* exception = std::get_if<ExpectedException>(&outcome)) {
        return "exception " + ZORPlatform::utf8(exception->name) +
               (exception->reason ? ": " + ZORPlatform::utf8(*exception->reason) : "");
    }
    return "the process to stop";
}

std::string mismatch(const Case& vector, const std::string& got) {
    return vector.operation + ": expected " + described(vector.outcome) + ", got " + got;
}

Verdict judgeResult(const Case& vector, const Value& result) {
    const auto* expected = std::get_if<Value>(&vector.outcome);
    if (expected == nullptr || !expected->matches(result)) return mismatch(vector, result.description());
    return std::nullopt;
}

Verdict judgeError(const Case& vector, const Operations::Operation& operation, const Operations::ErrorSlot& slot) {
    if (!vector.error) return std::nullopt;
    if (!operation.hasErrorSlot) return vector.operation + ": the operation has no error out-parameter";
    if (vector.error->matches(slot)) return std::nullopt;
    return vector.operation + ": expected the error " + vector.error->description() + ", got the error " +
           Value(slot).description();
}

Verdict judgeException(const Case& vector, const ZORPlatform::NSException& exception) {
    const auto* expected = std::get_if<ExpectedException>(&vector.outcome);
    if (expected != nullptr && expected->name == exception.name() &&
        (!expected->reason || *expected->reason == exception.reason())) {
        return std::nullopt;
    }
    return mismatch(vector, std::string("exception ") + exception.what());
}

Verdict evaluate(const Operations& operations, const Case& vector) {
    const Operations::Operation* operation = operations.find(vector.operation);
    if (operation == nullptr) return "unknown operation " + vector.operation;
    try {
        const Arguments arguments(vector);
        Operations::ErrorSlot slot;
        const Value result = operation->call(arguments, &slot);
        if (!arguments.areUsed()) return vector.operation + ": more arguments than the operation takes";
        if (Verdict failure = judgeResult(vector, result)) return failure;
        return judgeError(vector, *operation, slot);
    } catch (const ZORPlatform::NSException& exception) {
        return judgeException(vector, exception);
    } catch (const WrongKind& problem) {
        return vector.operation + ": " + problem.what();
    } catch (const std::exception& exception) {
        return mismatch(vector, std::string("a C++ exception: ") + exception.what());
    }
}

// ---- The child process ----------------------------------------------------------------------------------------

[[noreturn]] void throwSystemError(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

/// A file without a name that a child has as its standard error, so that its last words outlive it.
class ErrorOutput {
public:
    ErrorOutput() : descriptor_(memfd_create("stderr", MFD_CLOEXEC)) {
        if (descriptor_ < 0) throwSystemError("memfd_create");
    }
    ~ErrorOutput() { close(descriptor_); }
    ErrorOutput(const ErrorOutput&) = delete;
    ErrorOutput& operator=(const ErrorOutput&) = delete;

    void becomeStandardError() const {
        if (dup2(descriptor_, STDERR_FILENO) < 0) throwSystemError("dup2");
    }
    void clear() const {
        if (ftruncate(descriptor_, 0) != 0 || lseek(descriptor_, 0, SEEK_SET) != 0) throwSystemError("ftruncate");
    }
    [[nodiscard]] std::string text() const {
        std::string content;
        std::array<char, 4096> piece{};
        for (;;) {
            const ssize_t count = pread(descriptor_, piece.data(), piece.size(), static_cast<off_t>(content.size()));
            if (count <= 0) return content;
            content.append(piece.data(), static_cast<std::size_t>(count));
        }
    }

private:
    int descriptor_;
};

/// The verdicts on their way from the child to its parent.
class VerdictPipe {
public:
    VerdictPipe() {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) throwSystemError("pipe");
        readEnd_ = ends[0];
        writeEnd_ = ends[1];
    }
    ~VerdictPipe() {
        close(readEnd_);
        closeWriteEnd();
    }
    VerdictPipe(const VerdictPipe&) = delete;
    VerdictPipe& operator=(const VerdictPipe&) = delete;

    void closeWriteEnd() {
        if (writeEnd_ >= 0) close(std::exchange(writeEnd_, -1));
    }

    // A verdict travels as the size of its text, which is never empty, and the text; size 0 is a pass.
    void send(const Verdict& verdict) const {
        const std::string text = verdict.value_or("");
        const auto size = static_cast<std::uint32_t>(text.size());
        std::string message(reinterpret_cast<const char*>(&size), sizeof size);
        message += text;
        for (std::string_view rest = message; !rest.empty();) {
            const ssize_t written = write(writeEnd_, rest.data(), rest.size());
            if (written < 0 && errno != EINTR) throwSystemError("write");
            if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    /// Everything sent until the other end is closed.
    [[nodiscard]] std::vector<Verdict> receiveAll() const {
        std::string bytes;
        std::array<char, 4096> piece{};
        for (;;) {
            const ssize_t count = read(readEnd_, piece.data(), piece.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            bytes.append(piece.data(), static_cast<std::size_t>(count));
        }
        std::vector<Verdict> verdicts;
        for (std::string_view rest = bytes; rest.size() >= sizeof(std::uint32_t);) {
            std::uint32_t size = 0;
            std::memcpy(&size, rest.data(), sizeof size);
            rest.remove_prefix(sizeof size);
            verdicts.push_back(size == 0 ? Verdict() : Verdict(rest.substr(0, size)));
            rest.remove_prefix(std::min<std::size_t>(size, rest.size()));
        }
        return verdicts;
    }

private:
    int readEnd_ = -1;
    int writeEnd_ = -1;
};

/// A child that stops on purpose leaves no core file behind. A core pattern that is a pipe ignores the size limit.
void refuseCoreFiles() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_DUMPABLE, 0);
}

/// What every case runs with.
struct Setup {
    const Operations& operations;
    unsigned secondsForACase;
};

[[noreturn]] void runInChild(const Setup& setup, std::span<const Line> lines, const ErrorOutput& errorOutput,
                             const VerdictPipe& verdicts) {
    refuseCoreFiles();
    errorOutput.becomeStandardError();
    for (const Line& line : lines) {
        errorOutput.clear();
        alarm(setup.secondsForACase);
        Verdict verdict;
        if (const auto* malformed = std::get_if<Malformed>(&line)) {
            verdict = "malformed: " + malformed->reason;
        } else {
            verdict = evaluate(setup.operations, std::get<Case>(line));
        }
        // The library logs nothing.
        if (const std::string written = errorOutput.text(); !verdict && !written.empty()) {
            verdict = "written to standard error: " + written;
        }
        verdicts.send(verdict);
    }
    errorOutput.clear();
    // The leak sanitizer's check at exit needs a process that can be traced.
    prctl(PR_SET_DUMPABLE, 1);
    std::exit(EXIT_SUCCESS);
}

// ---- The parent -----------------------------------------------------------------------------------------------

std::string describedEnd(int status, std::string_view lastWords) {
    while (lastWords.ends_with('\n')) lastWords.remove_suffix(1);
    std::string text = "the process ended with ";
    if (!WIFSIGNALED(status)) {
        text += "status " + std::to_string(WEXITSTATUS(status));
    } else if (WTERMSIG(status) == SIGALRM) {
        text += "no answer in time";
    } else {
        text += std::string("signal ") + strsignal(WTERMSIG(status));
    }
    if (!lastWords.empty()) text.append(" and the message: ").append(lastWords);
    return text;
}

bool isIdentifierCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

std::string_view identifierAt(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isIdentifierCharacter);
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

/// Whether `message` begins with `name` ("Class.operation:labels:"): the operation's first label, alone or behind its
/// class, and just the class for a constructor.
bool beginsWithName(std::string_view message, std::string_view name) {
    const std::size_t dot = name.rfind('.');
    const std::string_view label = identifierAt(dot == std::string_view::npos ? name : name.substr(dot + 1));
    const std::string_view className = identifierAt(name);
    std::string_view first = identifierAt(message);
    if (first == className && dot != std::string_view::npos) {
        if (label == "init") return true;
        message.remove_prefix(first.size());
        message.remove_prefix(std::min(message.find_first_not_of(".:"), message.size()));
        first = identifierAt(message);
    }
    return !label.empty() && first == label;
}

/// Whether the process's last words are one line of preconditionFailure's, which names the operation first.
bool isOwnMessage(std::string_view operation, std::string_view lastWords) {
    if (lastWords.empty() || lastWords.find('\n') != lastWords.size() - 1) return false;
    // "A/b" makes a formatter with A and asks it b.
    const std::size_t slash = operation.find('/');
    return beginsWithName(lastWords, operation.substr(0, slash)) ||
           (slash != std::string_view::npos && beginsWithName(lastWords, operation.substr(slash + 1)));
}

Verdict judgeEnd(const Line& line, int status, const std::string& lastWords) {
    const auto* vector = std::get_if<Case>(&line);
    if (vector == nullptr) return describedEnd(status, lastWords);
    const bool mayStop = std::holds_alternative<ExpectedStop>(vector->outcome);
    if (mayStop && WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT && isOwnMessage(vector->operation, lastWords)) {
        return std::nullopt;
    }
    return mismatch(*vector, describedEnd(status, lastWords)) +
           (mayStop ? " (wanted: SIGABRT after one line that begins with the operation's name)" : "");
}

int waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) throwSystemError("waitpid");
    }
    return status;
}

/// Runs lines in one child until it ends. Gives at least one verdict; the child's end belongs to the last of them.
std::vector<Verdict> runUntilEnd(const Setup& setup, std::span<const Line> lines) {
    const ErrorOutput errorOutput;
    VerdictPipe pipe;
    std::fflush(stdout);  // What is buffered would be written by both processes.
    const pid_t child = fork();
    if (child < 0) throwSystemError("fork");
    if (child == 0) runInChild(setup, lines, errorOutput, pipe);

    pipe.closeWriteEnd();
    std::vector<Verdict> verdicts = pipe.receiveAll();
    const int status = waitFor(child);
    if (verdicts.size() < lines.size()) {
        verdicts.push_back(judgeEnd(lines[verdicts.size()], status, errorOutput.text()));
    } else if (status != 0 && !verdicts.back()) {
        verdicts.back() = "after the last case, " + describedEnd(status, errorOutput.text());
    }
    return verdicts;
}

Tally runFile(const Setup& setup, const fs::path& file) {
    Tally tally;
    const std::vector<Line> lines = readVectorFile(file);
    if (lines.empty()) {
        std::printf("%s: no case in this file\n", file.c_str());
        ++tally.failed;
    }
    for (std::size_t next = 0; next < lines.size();) {
        for (const Verdict& verdict : runUntilEnd(setup, std::span(lines).subspan(next))) {
            ++next;
            if (!verdict) {
                ++tally.passed;
                continue;
            }
            ++tally.failed;
            std::printf("%s:%zu: %s\n", file.c_str(), next, verdict->c_str());
        }
    }
    return tally;
}

}  // namespace

Tally run(const Operations& operations, const std::vector<fs::path>& directories, unsigned secondsForACase) {
    const Setup setup{operations, secondsForACase};
    Tally total;
    for (const fs::path& directory : directories) {
        const std::vector<fs::path> files = vectorFiles(directory);
        if (files.empty()) {
            std::printf("%s: no *.jsonl file in this directory\n", directory.c_str());
            ++total.failed;
        }
        for (const fs::path& file : files) {
            const Tally tally = runFile(setup, file);
            total.passed += tally.passed;
            total.failed += tally.failed;
        }
    }
    return total;
}

}  // namespace conformance
