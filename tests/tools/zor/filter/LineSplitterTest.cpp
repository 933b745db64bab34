// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/LineSplitter.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace zor {
namespace {

constexpr std::size_t kMaxRecordBytes = 50;

// Notes whole lines; overlong ones by their length.
class NotingSink : public RecordSink {
public:
    std::vector<std::string> noted;

    void lines(std::string_view lines) override {
        EXPECT_TRUE(lines.ends_with('\n'));
        for (std::size_t end = 0; (end = lines.find('\n')) != std::string_view::npos; lines.remove_prefix(end + 1)) {
            noted.push_back(end > kMaxRecordBytes ? "length " + std::to_string(end)
                                                  : std::string(lines.substr(0, end)));
        }
    }
    void overlongPiece(std::string_view piece) override { overlong_ += piece.size(); }
    void endOverlong() override { noted.push_back("length " + std::to_string(std::exchange(overlong_, 0))); }
    void flush() override {}
    void finish() override {}
    [[nodiscard]] Counts counts() const override { return {}; }

private:
    std::size_t overlong_ = 0;
};

std::vector<std::string> split(std::string_view input, std::mt19937& random, std::size_t largestPiece) {
    NotingSink sink;
    LineSplitter splitter(kMaxRecordBytes, sink);
    while (!input.empty()) {
        const std::span<char> room = splitter.room();
        EXPECT_FALSE(room.empty());
        const std::size_t piece = std::min({1 + random() % largestPiece, room.size(), input.size()});
        std::memcpy(room.data(), input.data(), piece);
        splitter.commit(piece);
        input.remove_prefix(piece);
    }
    splitter.finish();
    return sink.noted;
}

TEST(LineSplitter, PiecesDoNotMatter) {
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        std::string input;
        std::vector<std::string> expected;
        for (std::size_t count = random() % 30; count > 0; --count) {
            const std::size_t length = random() % 4 == 0 ? random() % 400 : random() % kMaxRecordBytes;
            const std::string line(length, static_cast<char>('a' + random() % 26));
            input += line + "\n";
            expected.push_back(length > kMaxRecordBytes ? "length " + std::to_string(length) : line);
        }
        if (!input.empty() && random() % 2 == 0) {
            input.pop_back();
            if (input.empty() || input.ends_with('\n')) expected.pop_back();
        }
        for (const std::size_t largestPiece : std::array<std::size_t, 4>{1, 3, 40, 1000}) {
            EXPECT_EQ(split(input, random, largestPiece), expected);
        }
    }
}

TEST(LineSplitter, AByteOrderMarkIsNoPartOfTheFirstLine) {
    std::mt19937 random(7);
    const std::string mark = "\xEF\xBB\xBF";
    const std::string longLine(3 * kMaxRecordBytes, 'x');
    const std::string longest(kMaxRecordBytes, 'x');
    using Lines = std::vector<std::string>;
    for (const std::size_t largestPiece : std::array<std::size_t, 4>{1, 2, 3, 1000}) {
        EXPECT_EQ(split(mark + "a\nb", random, largestPiece), (Lines{"a", "b"}));
        EXPECT_EQ(split(mark + "\n", random, largestPiece), Lines{""});
        EXPECT_EQ(split(mark, random, largestPiece), Lines{});
        EXPECT_EQ(split(mark + longest + "\n", random, largestPiece), Lines{longest});
        EXPECT_EQ(split(mark + longLine, random, largestPiece), Lines{"length 150"});
        EXPECT_EQ(split(mark + mark + "a", random, largestPiece), Lines{mark + "a"});
        EXPECT_EQ(split("a\n" + mark + "b", random, largestPiece), (Lines{"a", mark + "b"}));
        for (const char* almost : {"\xEF", "\xEF\xBB", "\xEF\xBB\n", "\xEF\xBB\xBEx", "\xEF\nx"}) {
            std::string line(almost);
            line.resize(std::min(line.find('\n'), line.size()));
            EXPECT_EQ(split(almost, random, largestPiece).front(), line);
        }
    }
}

TEST(LineSplitter, StaysInItsRoomOverLongStreams) {
    std::mt19937 random(6);
    std::string input;
    std::vector<std::string> expected;
    for (int line = 0; line < 40000; ++line) {
        expected.push_back(std::string(random() % kMaxRecordBytes, 'x'));
        input += expected.back() + "\n";
    }
    EXPECT_EQ(split(input, random, 200000), expected);
    EXPECT_EQ(split(input, random, 777), expected);
}

}  // namespace
}  // namespace zor
