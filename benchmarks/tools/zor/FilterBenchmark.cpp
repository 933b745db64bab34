// SPDX-License-Identifier: Apache-2.0
//
// The filter over a mixed file, half of it Belgian and a fifth corrupted, from memory to nowhere. What it can cost at
// least is a loop that reads the lines and writes "1" for each, and the validator's own time for the same numbers.

#include <benchmarks/Comparison.h>

#include <tools/zor/KindGroups.h>
#include <tools/zor/filter/Filter.h>

#include <ZORFoundation/ZORAccountNumberValidator.h>
#include <ZORFoundation/ZORMod97.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace benchmarks;
using ZORFoundation::ZORAccountNumberValidator;
using ZORFoundation::ZORMod97;

constexpr std::size_t kLines = 1'000'000;

// The country's number with this body, its check digits computed.
std::string numberOf(const std::string& country, const std::string& body) {
    std::u16string digits;
    for (const char letter : body + country + "00") {
        if (letter >= 'A') digits += static_cast<char16_t>(u'0' + (letter - 'A' + 10) / 10);
        digits += static_cast<char16_t>(u'0' + (letter >= 'A' ? letter - 'A' + 10 : letter - '0') % 10);
    }
    const int check = 98 - ZORMod97::modulo97(digits);
    return country + static_cast<char>('0' + check / 10) + static_cast<char>('0' + check % 10) + body;
}

std::string mixedNumber(std::mt19937& random) {
    std::string body(12, '0');
    std::string country = "BE";
    if (random() % 2 == 0) {
        country = {static_cast<char>('C' + random() % 24), static_cast<char>('A' + random() % 26)};
        body.resize(11 + random() % 17);
    }
    for (char& unit : body) unit = static_cast<char>('0' + random() % 10);
    if (random() % 4 == 0 && country != "BE") body[random() % 4] = static_cast<char>('A' + random() % 26);
    std::string number = numberOf(country, body);
    if (random() % 5 == 0) number[4 + random() % (number.size() - 4)] = "0123456789X-"[random() % 12];
    return number;
}

// The numbers as lines of a file in memory, and as texts.
class Sample {
public:
    Sample() {
        std::mt19937 random(2);
        std::string lines;
        for (std::size_t line = 0; line < kLines; ++line) {
            const std::string number = mixedNumber(random);
            lines += number + '\n';
            units_.append(number.begin(), number.end());
            lengths_.push_back(number.size());
        }
        file_ = ::memfd_create("numbers", MFD_CLOEXEC);
        nowhere_ = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (file_ < 0 || ::write(file_, lines.data(), lines.size()) != static_cast<ssize_t>(lines.size())) std::abort();
    }

    [[nodiscard]] int rewoundFile() const {
        ::lseek(file_, 0, SEEK_SET);
        return file_;
    }
    [[nodiscard]] int nowhere() const { return nowhere_; }

    /// Asks `operation` of the first `count` texts.
    template <typename Operation>
    void overFirst(std::size_t count, Operation operation) const {
        const char16_t* at = units_.data();
        for (std::size_t index = 0; index < count; at += lengths_[index++]) {
            benchmark::DoNotOptimize(operation(std::u16string_view(at, lengths_[index])));
        }
    }

private:
    std::u16string units_;
    std::vector<std::size_t> lengths_;
    int file_ = -1;
    int nowhere_ = -1;
};

const Sample& sample() {
    static const Sample numbers;
    return numbers;
}

void filter(const std::vector<const zor::Column*>& emitted, const char* format) {
    zor::FilterOptions options;
    options.kind = zor::findKind("iban");
    options.in = options.out = zor::findFormat(format);
    options.inLayout.emitted = options.outLayout.emitted = emitted;
    benchmark::DoNotOptimize(zor::runFilter(options, sample().rewoundFile(), sample().nowhere()));
}

// Reads the lines and writes "1" for each, in the filter's own block sizes.
void readLinesAndWriteOnes() {
    std::vector<char> room(std::size_t{128} * 1024);
    std::string out;
    const int file = sample().rewoundFile();
    std::size_t kept = 0;
    for (;;) {
        const ssize_t bytes = ::read(file, room.data() + kept, room.size() - kept);
        if (bytes <= 0) break;
        const char* line = room.data();
        const char* const end = line + kept + bytes;
        while (const auto* lineEnd =
                   static_cast<const char*>(std::memchr(line, '\n', static_cast<std::size_t>(end - line)))) {
            out += "1\n";
            line = lineEnd + 1;
        }
        kept = static_cast<std::size_t>(end - line);
        std::memmove(room.data(), line, kept);
        if (out.size() >= zor::Output::kBlockBytes) {
            zor::writeAll(sample().nowhere(), out);
            out.clear();
        }
    }
    zor::writeAll(sample().nowhere(), out);
}

void validate(std::size_t count) {
    sample().overFirst(count, [](std::u16string_view text) { return ZORAccountNumberValidator::isValidIban(text); });
}

// Runs a program to its end, without input.
void start(const char* program, std::vector<const char*> arguments) {
    static const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, nothing, STDIN_FILENO);
    arguments.insert(arguments.begin(), program);
    arguments.push_back(nullptr);
    pid_t child = -1;
    if (::posix_spawn(&child, program, &actions, nullptr, const_cast<char**>(arguments.data()), environ) != 0) {
        std::abort();
    }
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (::waitpid(child, &status, 0) != child || status != 0) std::abort();
}

const std::string kBudget = "the loop, and 1.3 times the validator";

const Comparison kVerdicts = Comparison("zor check iban, a mixed file")
                                 .itemsPerCall(kLines)
                                 .candidate([] { filter({zor::findColumn("verdict")}, "plain"); })
                                 .floor("loop that reads lines and writes 1", readLinesAndWriteOnes)
                                 .peer("the validator alone", [] { validate(kLines); })
                                 .peer(kBudget,
                                       [] {
                                           readLinesAndWriteOnes();
                                           validate(kLines);
                                           validate(kLines * 3 / 10);
                                       })
                                 .atMost(1, kBudget)
                                 .add();

const Comparison kTable =
    Comparison("zor check iban --format=tsv --emit=verdict,reason,offset")
        .itemsPerCall(kLines)
        .candidate([] {
            filter({zor::findColumn("verdict"), zor::findColumn("reason"), zor::findColumn("offset")}, "tsv");
        })
        .floor("loop that reads lines and writes 1", readLinesAndWriteOnes)
        .peer("the validator alone", [] { validate(kLines); })
        .add();

const Comparison kStart = Comparison("starting zor check iban without input")
                              .inChildProcesses()
                              .candidate([] {
                                  start(ZOR_PROGRAM, {"check", "iban"});
                              })
                              .floor("an empty program with the same libraries", [] { start(ZOR_EMPTY_PROGRAM, {}); })
#ifdef ZOR_FILTER_PROGRAM
                              .peer("zor-filter",
                                    [] {
                                        start(ZOR_FILTER_PROGRAM, {"check", "iban"});
                                    })
#endif
                              .atMost(1.3, "an empty program with the same libraries")
                              .add();

}  // namespace
