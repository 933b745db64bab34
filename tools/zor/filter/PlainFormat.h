// SPDX-License-Identifier: Apache-2.0
#pragma once

// One value a line, without escapes.

#include <tools/zor/filter/Format.h>

namespace zor {

[[nodiscard]] std::unique_ptr<RecordReader> makePlainReader(const Layout& layout);
[[nodiscard]] std::unique_ptr<RecordWriter> makePlainWriter(const Layout& layout, const FormatPair& formats);

}  // namespace zor
