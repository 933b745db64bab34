// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/LineSplitter.h>

#include <cstring>
#include <string_view>
#include <utility>

namespace zor {
namespace {

// Large enough that neither reading nor moving the broken line at the end of a block counts, small enough for a
// core's own cache.
constexpr std::size_t kReadBytes = std::size_t{128} * 1024;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

LineSplitter::LineSplitter(std::size_t maxRecordBytes, RecordSink& sink)
    : sink_(sink),
      longestKept_(maxRecordBytes + 1),
      capacity_(longestKept_ + kReadBytes),
      // One byte more for the LF that a last line may lack.
      bytes_(std::make_unique_for_overwrite<char[]>(capacity_ + 1 + kScanSlack)) {}

std::span<char> LineSplitter::room() noexcept {
    if (capacity_ - end_ < kReadBytes) {
        // What is left is a broken line of at most longestKept_ bytes.
        std::memmove(bytes_.get(), bytes_.get() + begin_, end_ - begin_);
        search_ -= begin_;
        end_ -= begin_;
        begin_ = 0;
    }
    return {bytes_.get() + end_, kReadBytes};
}

void LineSplitter::commit(std::size_t bytes) {
    end_ += bytes;
    if (atStart_ && !passByteOrderMark()) return;
    if (overlong_) skipOverlong();
    if (!overlong_) passLines();
    if (begin_ == end_) begin_ = end_ = search_ = 0;
}

// @return whether it is known that there is a mark, or none
bool LineSplitter::passByteOrderMark() {
    const std::string_view bytes(bytes_.get(), end_);
    if (bytes.size() < kByteOrderMark.size() && kByteOrderMark.starts_with(bytes)) return false;
    atStart_ = false;
    if (bytes.starts_with(kByteOrderMark)) begin_ = search_ = kByteOrderMark.size();
    return true;
}

void LineSplitter::skipOverlong() {
    const char* const begin = bytes_.get() + begin_;
    const auto* lineEnd = static_cast<const char*>(std::memchr(begin, '\n', end_ - begin_));
    const std::size_t piece = lineEnd ? static_cast<std::size_t>(lineEnd - begin) : end_ - begin_;
    sink_.overlongPiece({begin, piece});
    begin_ += piece;
    if (lineEnd) {
        ++begin_;
        overlong_ = false;
        sink_.endOverlong();
    }
    search_ = begin_;
}

void LineSplitter::passLines() {
    const char* const unsearched = bytes_.get() + search_;
    if (const auto* lastEnd = static_cast<const char*>(::memrchr(unsearched, '\n', end_ - search_))) {
        const auto next = static_cast<std::size_t>(lastEnd + 1 - bytes_.get());
        const std::size_t first = std::exchange(begin_, next);
        sink_.lines({bytes_.get() + first, next - first});
    }
    search_ = end_;
    if (end_ - begin_ > longestKept_) {
        overlong_ = true;
        sink_.overlongPiece({bytes_.get() + begin_, end_ - begin_});
        begin_ = end_;
    }
}

void LineSplitter::finish() {
    if (!overlong_ && begin_ == end_) return;
    bytes_[end_] = '\n';
    commit(1);
}

}  // namespace zor
