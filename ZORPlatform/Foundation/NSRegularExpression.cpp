// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSRegularExpression.h>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <limits>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

constexpr std::size_t kMostUnits = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kInvalidValueCode = 2048;

// ICU counts ten thousand saved states of backtracking as one step of its time limit. A pattern without backtracking
// saves one or two states a unit.
constexpr std::size_t kBaseSteps = 1000;
constexpr std::size_t kUnitsPerStep = 500;

constexpr std::int64_t kBaseNanoseconds = 1'000'000'000;
constexpr std::int64_t kNanosecondsPerUnit = 1000;

icu::UnicodeString readOnlyAlias(std::u16string_view text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

std::int64_t threadNanoseconds() noexcept {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// Bounds the work that ICU's own limit does not see: reading on and on within an atomic group saves no states, so it
// costs no steps, yet may go over the rest of the text from every position. Asked at every attempt to match.
class ProcessorTimeLimit {
public:
    explicit ProcessorTimeLimit(std::size_t units) noexcept
        : allowance_(kBaseNanoseconds + kNanosecondsPerUnit * static_cast<std::int64_t>(units)),
          // Reading the clock costs as much as many short attempts; one attempt may be as long as the text.
          interval_(std::clamp<std::size_t>(4'000'000 / (units + 1), 8, 256)) {}

    [[nodiscard]] bool isExceeded() noexcept {
        if (++attempts_ % interval_ != 0) return false;
        const std::int64_t now = threadNanoseconds();
        if (attempts_ == interval_) deadline_ = now + allowance_;
        return now > deadline_;
    }

private:
    std::int64_t allowance_;
    std::size_t interval_;
    std::size_t attempts_ = 0;
    std::int64_t deadline_ = 0;
};

UBool mayAttemptNext(const void* limit, std::int64_t) {
    return !static_cast<ProcessorTimeLimit*>(const_cast<void*>(limit))->isExceeded();
}

UBool mayTakeNextStep(const void* limit, std::int32_t) { return mayAttemptNext(limit, 0); }

NSRange groupRange(const icu::RegexMatcher& matcher, std::int32_t group, UErrorCode& status) {
    const std::int32_t start = matcher.start(group, status);
    const std::int32_t end = matcher.end(group, status);
    if (start < 0) return {NSNotFound, 0};
    return {static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)};
}

}  // namespace

struct NSRegularExpression::Pattern {
    std::unique_ptr<const icu::RegexPattern> compiled;
    std::size_t groups;
};

NSRegularExpression::NSRegularExpression(std::shared_ptr<const Pattern> pattern) noexcept
    : pattern_(std::move(pattern)) {}

std::optional<NSRegularExpression> NSRegularExpression::regularExpressionWithPattern(std::u16string_view pattern,
                                                                                     std::optional<NSError>* error) {
    if (error != nullptr) error->reset();
    UErrorCode status = U_ZERO_ERROR;
    // The platform refuses a pattern of nothing, which ICU would take for one that matches everywhere.
    if (pattern.empty()) status = U_REGEX_RULE_SYNTAX;
    if (pattern.size() > kMostUnits) status = U_REGEX_PATTERN_TOO_BIG;
    if (U_SUCCESS(status)) {
        std::unique_ptr<const icu::RegexPattern> compiled(
            icu::RegexPattern::compile(readOnlyAlias(pattern), 0, status));
        if (U_SUCCESS(status)) {
            const std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(status));
            const auto groups = static_cast<std::size_t>(matcher ? matcher->groupCount() : 0);
            if (U_SUCCESS(status)) {
                return NSRegularExpression(std::make_shared<const Pattern>(Pattern{std::move(compiled), groups}));
            }
        }
    }
    if (error != nullptr) {
        error->emplace(NSCocoaErrorDomain, kInvalidValueCode,
                       NSError::UserInfo{{u"NSInvalidValue", std::u16string(pattern)}});
    }
    return std::nullopt;
}

std::size_t NSRegularExpression::numberOfCaptureGroups() const noexcept { return pattern_->groups; }

bool NSRegularExpression::enumerateMatchesInString(std::u16string_view text, const MatchBlock& usingBlock) const {
    if (text.size() > kMostUnits) return false;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> matcher(pattern_->compiled->matcher(status));
    if (U_FAILURE(status)) return false;

    const icu::UnicodeString alias = readOnlyAlias(text);
    ProcessorTimeLimit processorTime(text.size());
    matcher->reset(alias);
    matcher->setTimeLimit(static_cast<std::int32_t>(kBaseSteps + text.size() / kUnitsPerStep), status);
    matcher->setFindProgressCallback(mayAttemptNext, &processorTime, status);
    matcher->setMatchCallback(mayTakeNextStep, &processorTime, status);

    std::vector<NSRange> ranges(pattern_->groups + 1);
    while (matcher->find(status)) {
        for (std::size_t group = 0; group < ranges.size(); ++group) {
            ranges[group] = groupRange(*matcher, static_cast<std::int32_t>(group), status);
        }
        if (!usingBlock(ranges)) return true;
        if (processorTime.isExceeded()) return false;
    }
    return U_SUCCESS(status) != 0;
}

}  // namespace ZORPlatform
