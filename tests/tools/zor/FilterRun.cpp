// SPDX-License-Identifier: Apache-2.0
#include "FilterRun.h"

#include <tools/zor/ArgumentParser.h>
#include <tools/zor/FilterArguments.h>
#include <tools/zor/filter/Filter.h>

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <system_error>

namespace zor::testing {
namespace {

using ZORFoundation::BrokenRule;
using ZORFoundation::Explanation;

Explanation explainTest(std::u16string_view text, const KindSettings&) {
    if (text.empty()) return {.rule = BrokenRule::empty};
    if (!text.starts_with(u'v')) return {.rule = BrokenRule::unexpectedCharacter};
    if (text.starts_with(u"vv")) return {.rule = BrokenRule::checkDigits, .position = 1};
    return {};
}

constexpr Kind kTestKind{
    "test",
    "begins with v",
    [](std::u16string_view text, const KindSettings& settings) { return explainTest(text, settings).isValid(); },
    explainTest,
    [](std::u16string_view text, const KindSettings&) { return u"=" + std::u16string(text); },
    [](std::u16string_view text, const KindSettings&) { return u"<" + std::u16string(text) + u">"; },
    {}};

class MemoryFile {
public:
    explicit MemoryFile(std::string_view content) : descriptor_(::memfd_create("zor-test", MFD_CLOEXEC)) {
        if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
        if (::write(descriptor_, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
            throw std::system_error(errno, std::generic_category(), "write");
        }
        ::lseek(descriptor_, 0, SEEK_SET);
    }
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    [[nodiscard]] std::string content() const {
        std::string bytes(static_cast<std::size_t>(::lseek(descriptor_, 0, SEEK_END)), '\0');
        ::lseek(descriptor_, 0, SEEK_SET);
        bytes.resize(static_cast<std::size_t>(::read(descriptor_, bytes.data(), bytes.size())));
        return bytes;
    }

private:
    int descriptor_;
};

}  // namespace

const Kind& testKind() { return kTestKind; }

FilterOptions testOptions(const std::vector<std::string>& options) {
    std::vector<std::string> words = options;
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    return filterOptions(kTestKind, parseArguments(filterOptionRows(), pointers), "verdict");
}

FilterResult runTestFilter(const FilterOptions& options, std::string_view input) {
    const MemoryFile in(input);
    const MemoryFile out("");
    const ExitCode code = runFilter(options, in.descriptor(), out.descriptor());
    return {out.content(), static_cast<int>(code)};
}

std::string filtered(const std::vector<std::string>& options, std::string_view input) {
    return runTestFilter(testOptions(options), input).out;
}

}  // namespace zor::testing
