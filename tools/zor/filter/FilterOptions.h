// SPDX-License-Identifier: Apache-2.0
#pragma once

// What a run of the filter does.

#include <tools/zor/Kind.h>
#include <tools/zor/filter/Format.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zor {

/// When results are written that do not fill a block yet.
enum class FlushRule {
    drain,  ///< Before a read that would wait.
    line,   ///< After every record.
    block,  ///< At the end only.
};

enum class Statistics { none, stderr_, hadoop };

struct FilterOptions {
    const Kind* kind = nullptr;
    KindSettings settings;
    const Format* in = nullptr;
    const Format* out = nullptr;
    Layout inLayout;
    Layout outLayout;
    bool absentIsInvalid = false;
    bool keepCarriageReturn = false;
    std::size_t maxRecordBytes = std::size_t{64} * 1024;
    FlushRule flush = FlushRule::drain;
    bool chunkHeader = false;
    unsigned jobs = 1;
    Statistics statistics = Statistics::none;
    bool failOnInvalid = false;
};

}  // namespace zor
