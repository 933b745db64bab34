// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/RecordSink.h>

#include <tools/zor/Failure.h>
#include <tools/zor/filter/Output.h>

#include <charconv>

namespace zor {
namespace {

class SerialSink : public RecordSink {
public:
    SerialSink(const FilterOptions& options, int descriptor) : engine_(options), descriptor_(descriptor) {}

    void lines(std::string_view lines) override {
        while (!lines.empty()) {
            std::uint64_t limit = Engine::kNoLimit;
            lines.remove_prefix(engine_.process(lines, limit, output_, Output::kBlockBytes));
            writeFullBlock();
        }
    }
    void overlongPiece(std::string_view piece) override { engine_.skimOverlong(piece); }
    void endOverlong() override {
        engine_.endOverlong(output_);
        writeFullBlock();
    }
    void flush() override {
        if (output_.size() == 0) return;
        writeAll(descriptor_, output_.view());
        output_.clear();
    }
    void finish() override { flush(); }
    [[nodiscard]] Counts counts() const override { return engine_.counts(); }

protected:
    // Handles at most `limit` lines. @return the bytes handled
    std::size_t some(std::string_view lines, std::uint64_t& limit) {
        const std::size_t bytes = engine_.process(lines, limit, output_, Output::kBlockBytes);
        writeFullBlock();
        return bytes;
    }

private:
    void writeFullBlock() {
        if (output_.size() >= Output::kBlockBytes) flush();
    }

    Engine engine_;
    Output output_;
    int descriptor_;
};

// Each chunk begins with a line that counts its records; all of a chunk is answered before the next is waited for.
class ChunkSink final : public SerialSink {
public:
    using SerialSink::SerialSink;

    void lines(std::string_view lines) override {
        while (!lines.empty()) {
            if (left_ == 0) {
                const std::size_t end = lines.find('\n');
                left_ = recordCount(lines.substr(0, end));
                lines.remove_prefix(end + 1);
            } else {
                lines.remove_prefix(some(lines, left_));
            }
            if (left_ == 0) flush();
        }
    }
    void overlongPiece(std::string_view piece) override {
        if (left_ == 0) throw badHeader();
        SerialSink::overlongPiece(piece);
    }
    void endOverlong() override {
        SerialSink::endOverlong();
        if (--left_ == 0) flush();
    }
    void finish() override {
        SerialSink::finish();
        if (left_ > 0) throw StreamError("the input ends inside a chunk");
    }

private:
    static StreamError badHeader() { return StreamError("a chunk does not begin with the number of its records"); }

    static std::uint64_t recordCount(std::string_view header) {
        if (header.ends_with('\r')) header.remove_suffix(1);
        std::uint64_t count = 0;
        const auto read = std::from_chars(header.data(), header.data() + header.size(), count);
        if (read.ec != std::errc{} || read.ptr != header.data() + header.size()) throw badHeader();
        return count;
    }

    std::uint64_t left_ = 0;  ///< Records of the chunk that are still to come; 0 where a header is due.
};

}  // namespace

std::unique_ptr<RecordSink> makeRecordSink(const FilterOptions& options, int descriptor) {
    if (options.chunkHeader) return std::make_unique<ChunkSink>(options, descriptor);
    if (options.jobs > 1) return makeParallelSink(options, descriptor);
    return std::make_unique<SerialSink>(options, descriptor);
}

}  // namespace zor
