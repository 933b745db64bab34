// SPDX-License-Identifier: Apache-2.0
//
// Several engines on one stream. The caller's thread cuts the input into blocks, each of which one worker answers;
// the caller's thread also writes the answers, in the order of the blocks. A block passes through three states:
// waiting (queue_ from next_ on), taken by a worker, done. All states are guarded by mutex_; what a block holds belongs
// to the caller's thread before it waits and after it is done, and to one worker in between.

#include <tools/zor/filter/RecordSink.h>

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace zor {
namespace {

struct Block {
    std::string lines;  ///< With kScanSlack bytes more than `size`.
    std::size_t size = 0;
    Output answer;
    bool done = false;
    std::exception_ptr failure;
};

class ParallelSink final : public RecordSink {
public:
    ParallelSink(const FilterOptions& options, int descriptor)
        : options_(options), descriptor_(descriptor), overlongEngine_(options) {
        workers_.reserve(options.jobs);
        for (unsigned job = 0; job < options.jobs; ++job) {
            try {
                workers_.emplace_back([this] { work(); });
            } catch (const std::system_error&) {
                // The system grants no more threads; fewer do the same work.
                if (workers_.empty()) throw;
                break;
            }
        }
    }

    ~ParallelSink() override {
        {
            const std::lock_guard lock(mutex_);
            closing_ = true;
        }
        blockWaits_.notify_all();
        for (std::thread& worker : workers_) worker.join();
    }

    void lines(std::string_view lines) override {
        auto block = std::make_unique<Block>();
        block->lines.reserve(lines.size() + kScanSlack);
        block->lines.assign(lines).append(kScanSlack, '\n');
        block->size = lines.size();
        add(std::move(block));
    }

    void overlongPiece(std::string_view piece) override { overlongEngine_.skimOverlong(piece); }

    void endOverlong() override {
        auto block = std::make_unique<Block>();
        overlongEngine_.endOverlong(block->answer);
        block->done = true;
        add(std::move(block));
    }

    void flush() override { writeUntilAtMost(0); }
    void finish() override {
        flush();
        counts_ += overlongEngine_.counts();
    }
    [[nodiscard]] Counts counts() const override { return counts_; }

private:
    void add(std::unique_ptr<Block> block) {
        {
            const std::lock_guard lock(mutex_);
            queue_.push_back(std::move(block));
        }
        blockWaits_.notify_one();
        // Bounds the memory: each worker has one block in hand and one to go on with.
        writeUntilAtMost(2 * workers_.size());
    }

    // Writes answers in order until at most `blocks` are left.
    void writeUntilAtMost(std::size_t blocks) {
        std::unique_lock lock(mutex_);
        while (!queue_.empty() && (queue_.size() > blocks || queue_.front()->done)) {
            blockDone_.wait(lock, [this] { return queue_.front()->done; });
            const std::unique_ptr<Block> block = std::move(queue_.front());
            queue_.pop_front();
            if (next_ > 0) --next_;
            lock.unlock();
            if (block->failure) std::rethrow_exception(block->failure);
            writeAll(descriptor_, block->answer.view());
            lock.lock();
        }
    }

    void work() {
        Engine engine(options_);
        std::unique_lock lock(mutex_);
        for (;;) {
            blockWaits_.wait(lock, [this] { return closing_ || findWaiting(); });
            if (closing_) return;
            Block& block = *queue_[next_++];
            const Counts before = engine.counts();
            lock.unlock();
            answer(engine, block);
            lock.lock();
            Counts change = engine.counts();
            change.valid -= before.valid;
            change.invalid -= before.invalid;
            change.absent -= before.absent;
            counts_ += change;
            block.done = true;
            blockDone_.notify_one();
        }
    }

    // Moves next_ to the first block that nobody has taken. @return whether there is one
    bool findWaiting() {
        while (next_ < queue_.size() && queue_[next_]->done) ++next_;
        return next_ < queue_.size();
    }

    static void answer(Engine& engine, Block& block) noexcept {
        try {
            std::uint64_t limit = Engine::kNoLimit;
            const std::string_view lines(block.lines.data(), block.size);
            engine.process(lines, limit, block.answer, std::numeric_limits<std::size_t>::max());
        } catch (...) {
            block.failure = std::current_exception();
        }
    }

    const FilterOptions& options_;
    const int descriptor_;
    Engine overlongEngine_;  // Of the caller's thread.

    std::mutex mutex_;
    std::condition_variable blockWaits_;
    std::condition_variable blockDone_;
    std::deque<std::unique_ptr<Block>> queue_;
    std::size_t next_ = 0;  ///< Blocks before it are taken or done.
    Counts counts_;
    bool closing_ = false;
    std::vector<std::thread> workers_;
};

}  // namespace

std::unique_ptr<RecordSink> makeParallelSink(const FilterOptions& options, int descriptor) {
    return std::make_unique<ParallelSink>(options, descriptor);
}

}  // namespace zor
