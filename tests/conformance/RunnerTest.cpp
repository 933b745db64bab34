// SPDX-License-Identifier: Apache-2.0
#include "Runner.h"

#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/TemporaryDirectory.h>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace conformance {
namespace {

using support::TemporaryDirectory;
using testing::HasSubstr;
using testing::IsEmpty;
using ZORPlatform::NSError;
using ZORPlatform::NSException;

Operations testOperations() {
    Operations operations;
    operations.add("Test.echo:", [](const Arguments& a) { return a[0]; });
    operations.add("Test.locale", [](const Arguments& a) {
        return Value(std::u16string(a.environment().locale.begin(), a.environment().locale.end()));
    });
    operations.add("Test.stop:", [](const Arguments& a) -> Value {
        if (a[0].isAbsent()) ZORPlatform::preconditionFailure("stop: an argument is needed");
        return a[0];
    });
    operations.add("Test.stopUnnamed", [](const Arguments&) -> Value {
        ZORPlatform::preconditionFailure("somethingElse: this is not the operation's name");
    });
    operations.add("Test.assertion", [](const Arguments&) -> Value {
        std::fputs("program: file.cpp:1: void assertion(): Assertion `false' failed.\n", stderr);
        std::abort();
    });
    operations.add("Test.report", [](const Arguments&) -> Value {
        std::fputs("report: begins like ours\nbut has a second line\n", stderr);
        std::abort();
    });
    operations.add("Test.silentAbort", [](const Arguments&) -> Value { std::abort(); });
    operations.add("Test.exit", [](const Arguments&) -> Value {
        std::fputs("exit: ends without a signal\n", stderr);
        std::_Exit(0);
    });
    operations.add("Test.otherSignal", [](const Arguments&) -> Value {
        std::fputs("otherSignal: begins like ours\n", stderr);
        std::raise(SIGKILL);
        return std::nullopt;
    });
    operations.add("Test.hang", [](const Arguments&) -> Value {
        for (;;) pause();
    });
    operations.add("Test.failAtExit", [](const Arguments&) {
        std::atexit([] { std::_Exit(3); });
        return true;
    });
    operations.add("Test.raise",
                   [](const Arguments&) -> Value { throw NSException(u"OddException", u"Because of the test"); });
    operations.add("Test.throwCpp", [](const Arguments&) -> Value { throw std::runtime_error("a C++ failure"); });
    operations.add("Test.chatter", [](const Arguments&) {
        std::fputs("a line on standard error\n", stderr);
        return true;
    });
    operations.add("Test.withError:", [](const Arguments& a, Operations::ErrorSlot* error) -> Value {
        if (a[0].isAbsent()) *error = NSError(u"TestDomain", -7);
        return std::nullopt;
    });
    operations.add("Formatters.make:/ask:", [](const Arguments&) -> Value {
        ZORPlatform::preconditionFailure("make: always stops");
    });
    return operations;
}

struct Outcome {
    Tally tally;
    std::string printed;
};

Outcome outcomeOf(std::string_view lines) {
    const TemporaryDirectory directory;
    directory.write("cases.jsonl", lines);
    testing::internal::CaptureStdout();
    const Tally tally = run(testOperations(), {directory.path()});
    return {tally, testing::internal::GetCapturedStdout()};
}

void expectPass(std::string_view line) {
    const Outcome outcome = outcomeOf(line);
    EXPECT_EQ(outcome.tally.passed, 1U) << line;
    EXPECT_THAT(outcome.printed, IsEmpty());
}

void expectFailure(std::string_view line, const std::string& printed) {
    const Outcome outcome = outcomeOf(line);
    EXPECT_EQ(outcome.tally.passed, 0U) << line;
    EXPECT_EQ(outcome.tally.failed, 1U) << line;
    EXPECT_THAT(outcome.printed, HasSubstr("cases.jsonl:1: "));
    EXPECT_THAT(outcome.printed, HasSubstr(printed));
}

TEST(ConformanceRunner, TheStatedResultPasses) {
    expectPass(R"({"op": "Test.echo:", "args": ["a"], "result": "a"})");
    expectPass(R"({"op": "Test.echo:", "args": [null], "result": null, "note": "absent"})");
}

TEST(ConformanceRunner, AnotherResultFailsAndBothArePrinted) {
    expectFailure(R"({"op": "Test.echo:", "args": ["a"], "result": "b"})", R"(Test.echo:: expected "b", got "a")");
    expectFailure(R"({"op": "Test.echo:", "args": [null], "result": ""})", R"(expected "", got null)");
    expectFailure(R"({"op": "Test.echo:", "args": [1], "result": true})", "expected true, got 1");
}

TEST(ConformanceRunner, AnUnknownOperationFailsWhateverItsOutcome) {
    expectFailure(R"({"op": "Test.unknown", "args": [], "result": 1})", "unknown operation Test.unknown");
    expectFailure(R"({"op": "Test.unknown", "args": [], "fatal": true})", "unknown operation Test.unknown");
    expectFailure(R"({"op": "test.echo:", "args": [1], "result": 1})", "unknown operation test.echo:");
}

TEST(ConformanceRunner, AMalformedLineFailsAndTheNextLineRuns) {
    const Outcome outcome = outcomeOf("{\"op\": \n{\"op\": \"Test.echo:\", \"args\": [1], \"result\": 1}\n");
    EXPECT_EQ(outcome.tally.passed, 1U);
    EXPECT_EQ(outcome.tally.failed, 1U);
    EXPECT_THAT(outcome.printed, HasSubstr("cases.jsonl:1: malformed"));
}

TEST(ConformanceRunner, ArgumentsOfAnotherNumberOrKindFail) {
    expectFailure(R"({"op": "Test.echo:", "args": [1, 2], "result": 1})", "more arguments than the operation takes");
    expectFailure(R"({"op": "Test.echo:", "args": [], "result": 1})", "asks for argument 0, the case has 0");
}

TEST(ConformanceRunner, TheEnvironmentReachesTheOperation) {
    expectPass(R"({"op": "Test.locale", "args": [], "env": {"locale": "nl_BE"}, "result": "nl_BE"})");
    expectPass(R"({"op": "Test.locale", "args": [], "result": "en_US_POSIX"})");
}

TEST(ConformanceRunner, ExceptionsAreOutcomes) {
    expectPass(
        R"({"op": "Test.raise", "args": [], "throws": {"name": "OddException", "reason": "Because of the test"}})");
    expectFailure(R"({"op": "Test.raise", "args": [], "throws": {"name": "OddException", "reason": "Other"}})",
                  "got exception OddException: Because of the test");
    expectFailure(R"({"op": "Test.raise", "args": [], "result": null})", "got exception OddException");
    expectFailure(R"({"op": "Test.echo:", "args": [1], "throws": {"name": "OddException"}})", "got 1");
    expectFailure(R"({"op": "Test.throwCpp", "args": [], "result": null})", "a C++ exception: a C++ failure");
    expectFailure(R"({"op": "Test.throwCpp", "args": [], "throws": {"name": "OddException"}})", "a C++ failure");
}

TEST(ConformanceRunner, TheErrorOutParameterIsCompared) {
    expectPass(R"({"op": "Test.withError:", "args": [1], "result": null, "error": null})");
    expectPass(
        R"({"op": "Test.withError:", "args": [null], "result": null, "error": {"domain": "TestDomain", "code": -7}})");
    expectPass(
        R"({"op": "Test.withError:", "args": [null], "result": null, "error": {"domain": "TestDomain", "code": "any"}})");
    expectFailure(R"({"op": "Test.withError:", "args": [null], "result": null, "error": null})",
                  "expected the error null");
    expectFailure(
        R"({"op": "Test.withError:", "args": [1], "result": null, "error": {"domain": "TestDomain", "code": "any"}})",
        "got the error null");
    expectFailure(R"({"op": "Test.echo:", "args": [1], "result": 1, "error": null})", "no error out-parameter");
}

TEST(ConformanceRunner, AStopWithTheOperationsOwnMessagePasses) {
    expectPass(R"({"op": "Test.stop:", "args": [null], "fatal": true})");
    expectPass(R"({"op": "Formatters.make:/ask:", "args": [], "fatal": true})");
}

TEST(ConformanceRunner, AStopThatDoesNotComeFails) {
    expectFailure(R"({"op": "Test.stop:", "args": [1], "fatal": true})", "expected the process to stop, got 1");
}

TEST(ConformanceRunner, AnAbortThatIsNotThePreconditionsOwnFails) {
    for (const std::string operation : {"stopUnnamed", "assertion", "report", "silentAbort", "exit", "otherSignal"}) {
        expectFailure(R"({"op": "Test.)" + operation + R"(", "args": [], "fatal": true})", "the process ended with");
    }
}

TEST(ConformanceRunner, AnUnexpectedStopIsOneFailedLineAndTheOthersRun) {
    const Outcome outcome = outcomeOf(R"({"op": "Test.echo:", "args": [1], "result": 1}
{"op": "Test.stop:", "args": [null], "result": 1}
{"op": "Test.silentAbort", "args": [], "result": 1}
{"op": "Test.stop:", "args": [null], "fatal": true}
{"op": "Test.echo:", "args": [1], "result": 1}
)");
    EXPECT_EQ(outcome.tally.passed, 3U);
    EXPECT_EQ(outcome.tally.failed, 2U);
    EXPECT_THAT(outcome.printed, HasSubstr("cases.jsonl:2: Test.stop:: expected 1, got the process ended with signal"));
    EXPECT_THAT(outcome.printed, HasSubstr("cases.jsonl:3: "));
}

TEST(ConformanceRunner, ACaseThatDoesNotEndIsOneFailedLineAndTheOthersRun) {
    const TemporaryDirectory directory;
    directory.write("cases.jsonl", R"({"op": "Test.hang", "args": [], "fatal": true}
{"op": "Test.echo:", "args": [1], "result": 1}
)");
    const Tally tally = run(testOperations(), {directory.path()}, /*secondsForACase=*/1);
    EXPECT_EQ(tally.passed, 1U);
    EXPECT_EQ(tally.failed, 1U);
}

TEST(ConformanceRunner, AProcessThatFailsAfterItsLastCaseFails) {
    expectFailure(R"({"op": "Test.failAtExit", "args": [], "result": true})", "after the last case");
}

TEST(ConformanceRunner, AnOperationThatWritesToStandardErrorFails) {
    expectFailure(R"({"op": "Test.chatter", "args": [], "result": true})", "a line on standard error");
}

TEST(ConformanceRunner, FilesOfAllDirectoriesAreRun) {
    const TemporaryDirectory first;
    const TemporaryDirectory second;
    first.write("a.jsonl", "{\"op\": \"Test.echo:\", \"args\": [1], \"result\": 1}");
    first.write("b.jsonl", "{\"op\": \"Test.echo:\", \"args\": [1], \"result\": 1}\n");
    first.write("c.json", "no vectors");
    second.write("a.jsonl", "{\"op\": \"Test.echo:\", \"args\": [1], \"result\": 1}\n");
    const Tally tally = run(testOperations(), {first.path(), second.path()});
    EXPECT_EQ(tally.passed, 3U);
    EXPECT_EQ(tally.failed, 0U);
}

TEST(ConformanceRunner, ADirectoryOrFileWithoutACaseFails) {
    const TemporaryDirectory empty;
    const TemporaryDirectory noVectors;
    noVectors.write("FORMAT.md", "# Test vectors");
    const TemporaryDirectory emptyFile;
    emptyFile.write("a.jsonl", "");
    for (const auto& path : {empty.path(), noVectors.path(), emptyFile.path(), empty.path() / "missing"}) {
        EXPECT_EQ(run(testOperations(), {path}).failed, 1U) << path;
    }
}

TEST(ConformanceRunner, AnOperationIsRegisteredOnce) {
    Operations operations = testOperations();
    EXPECT_THROW(operations.add("Test.echo:", [](const Arguments& a) { return a[0]; }), std::logic_error);
}

}  // namespace
}  // namespace conformance
