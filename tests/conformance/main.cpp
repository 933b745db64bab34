// SPDX-License-Identifier: Apache-2.0
//
// zor-conformance DIR...
//
// Runs the vector files of the directories. Prints each failing line with what was expected and what came, ends with
// "N passed, N failed" and exits 0 only when nothing failed; 2 when called without a directory.

#include "Groups.h"
#include "Operations.h"
#include "Runner.h"

#include <cstdio>
#include <filesystem>
#include <vector>

namespace {

using namespace conformance;

// One line a group, alphabetical.
// clang-format off
constexpr void (*kGroups[])(Operations&) = {
    registerAccountNumberOperations,
    registerAmountOperations,
    registerCardNumberOperations,
    registerCipherOperations,
    registerDateOperations,
    registerDigestOperations,
    registerErrorOperations,
    registerIdentityNumberOperations,
    registerInputValidationOperations,
    registerPatternOperations,
    registerSecurityOperations,
    registerStringOperations,
    registerStructuredCommentOperations,
};
// clang-format on

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: zor-conformance DIR...\n");
        return 2;
    }
    Operations operations;
    for (const auto registerGroup : kGroups) registerGroup(operations);

    const Tally tally = run(operations, std::vector<std::filesystem::path>(argv + 1, argv + argc));
    std::printf("%zu passed, %zu failed\n", tally.passed, tally.failed);
    return tally.failed == 0 ? 0 : 1;
}
