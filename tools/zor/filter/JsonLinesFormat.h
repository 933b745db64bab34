// SPDX-License-Identifier: Apache-2.0
#pragma once

// One JSON object a line. It goes back out with all its members as they were spelled, the results behind them.

#include <tools/zor/filter/Format.h>

namespace zor {

[[nodiscard]] std::unique_ptr<RecordReader> makeJsonLinesReader(const Layout& layout);
[[nodiscard]] std::unique_ptr<RecordWriter> makeJsonLinesWriter(const Layout& layout, const FormatPair& formats);

}  // namespace zor
