// SPDX-License-Identifier: Apache-2.0
#pragma once

// What all writers do alike with a result: a format says how a text and an absent one are spelled.

#include <tools/zor/filter/Format.h>

namespace zor {

class CellWriter : public RecordWriter {
protected:
    explicit CellWriter(const Layout& layout) : layout_(layout) {}

    void writeCell(const Cell& cell, Output& out) const;

    virtual void writeText(std::string_view text, Output& out) const = 0;
    virtual void writeAbsent(Output& out) const = 0;
    /// Writes the user's label for the verdict, unless the format has a better word.
    virtual void writeVerdict(bool valid, Output& out) const;

    [[nodiscard]] const Layout& layout() const noexcept { return layout_; }

private:
    const Layout& layout_;
};

}  // namespace zor
