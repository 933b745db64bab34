// SPDX-License-Identifier: Apache-2.0
//
// What holds for every kind, on the command line and in every format of the filter.

#include "KindSamples.h"
#include "ZorProcess.h"

#include <tools/zor/Kind.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <set>

namespace zor::testing {
namespace {

constexpr std::string_view kAllColumns = "--emit=verdict,reason,offset,normalized,formatted";

Words command(std::string_view name, const KindSample& sample, const Words& rest) {
    Words words{std::string(name), std::string(sample.kind)};
    if (!sample.option.empty()) words.emplace_back(sample.option);
    words.insert(words.end(), rest.begin(), rest.end());
    return words;
}

// How a record of a format is spelled: what stands before and behind a value, and between the results.
struct Spelling {
    std::string_view format;
    std::string_view before;
    std::string_view behind;
    std::string_view between;
    std::string_view absent;
    bool quotesCommas = false;

    [[nodiscard]] std::string cell(std::string_view text) const {
        if (quotesCommas && text.find(',') != std::string_view::npos) return "\"" + std::string(text) + "\"";
        return std::string(text);
    }
    [[nodiscard]] std::string record(std::string_view value) const {
        return std::string(before) + cell(value) + std::string(behind);
    }
};

constexpr std::array kTableSpellings{
    Spelling{"tsv", "7\t", "\tx\\\\y", "\t", "\\N"},
    Spelling{"tsv-raw", "7\t", "\tx", "\t", "\\N"},
    Spelling{"csv", "7,", ",\"x,y\"", ",", "", true},
};

std::string joined(const std::vector<std::string>& cells, std::string_view between) {
    std::string text;
    for (const std::string& cell : cells) text += (text.empty() ? "" : std::string(between)) + cell;
    return text;
}

class EveryKind : public ::testing::TestWithParam<KindSample> {
protected:
    [[nodiscard]] const KindSample& sample() const { return GetParam(); }
    [[nodiscard]] std::string valid() const { return std::string(sample().valid); }
    [[nodiscard]] std::string invalid() const { return std::string(sample().invalid); }
};

TEST_P(EveryKind, IsCheckedOnTheCommandLine) {
    if (!sample().canBeChecked()) {
        for (const char* name : {"check", "explain"}) {
            const RunResult refused = runZor(command(name, sample(), {valid()}));
            EXPECT_EQ(refused.exitCode, 2);
            EXPECT_EQ(refused.err, "zor: " + std::string(sample().kind) + ": can only be formatted\n");
        }
        return;
    }
    const RunResult good = runZor(command("check", sample(), {valid()}));
    EXPECT_EQ(good.out, valid() + ": valid\n");
    EXPECT_EQ(good.exitCode, 0);
    const RunResult bad = runZor(command("check", sample(), {valid(), invalid()}));
    EXPECT_EQ(bad.out, valid() + ": valid\n" + invalid() + ": invalid\n");
    EXPECT_EQ(bad.exitCode, 1);
}

TEST_P(EveryKind, IsExplainedOnTheCommandLine) {
    if (!sample().canBeChecked()) return;
    EXPECT_EQ(runZor(command("explain", sample(), {valid()})).out, valid() + ": valid\n");
    const RunResult bad = runZor(command("explain", sample(), {invalid()}));
    EXPECT_TRUE(bad.out.starts_with(invalid() + ": invalid, " + std::string(sample().rule) + ": ")) << bad.out;
    EXPECT_EQ(bad.exitCode, 1);
}

TEST_P(EveryKind, IsFormattedOnTheCommandLine) {
    const RunResult result = runZor(command("format", sample(), {valid()}));
    EXPECT_EQ(result.out, std::string(sample().formatted) + "\n");
    EXPECT_EQ(result.exitCode, 0);
    if (!sample().canBeChecked()) return;
    EXPECT_EQ(runZor(command("format", sample(), {invalid()})).exitCode, 1);
}

TEST_P(EveryKind, IsAFilterOfPlainLines) {
    const std::string input = valid() + "\n" + invalid() + "\n";
    if (sample().canBeChecked()) {
        EXPECT_EQ(runZor(command("check", sample(), {}), input).out, "1\n0\n");
        EXPECT_EQ(runZor(command("explain", sample(), {}), input).out,
                  "1\tnone\t\\N\n0\t" + std::string(sample().rule) + "\t" + std::string(sample().offset) + "\n");
    }
    const RunResult formatted = runZor(command("format", sample(), {}), valid() + "\r\n");
    EXPECT_EQ(formatted.out, std::string(sample().formatted) + "\n");
    EXPECT_EQ(formatted.err, "");
}

TEST_P(EveryKind, IsAFilterOfTables) {
    for (const Spelling& spelling : kTableSpellings) {
        const std::string between(spelling.between);
        const Words options{"--field=2", "--format=" + std::string(spelling.format)};
        Words withAllColumns = options;
        withAllColumns.emplace_back(kAllColumns);
        const std::string good = spelling.record(valid());
        const RunResult result = runZor(command("format", sample(), withAllColumns), good + "\n");
        EXPECT_EQ(result.out, joined({good, "1", "none", std::string(spelling.absent),
                                      spelling.cell(sample().normalized), spelling.cell(sample().formatted)},
                                     between) +
                                  "\n")
            << spelling.format;
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.exitCode, 0);
        if (!sample().canBeChecked()) continue;
        const std::string bad = spelling.record(invalid());
        EXPECT_EQ(runZor(command("explain", sample(), options), bad + "\n").out,
                  joined({bad, "0", std::string(sample().rule), std::string(sample().offset)}, between) + "\n")
            << spelling.format;
    }
}

TEST_P(EveryKind, IsAFilterOfObjects) {
    const RunResult result = runZor(command("format", sample(), {"--format=jsonl", std::string(kAllColumns)}),
                                    "{\"id\":7,\"value\":\"" + valid() + "\"}\n");
    EXPECT_EQ(result.out, "{\"id\":7,\"value\":\"" + valid() +
                              "\",\"verdict\":true,\"reason\":\"none\",\"offset\":null,\"normalized\":\"" +
                              std::string(sample().normalized) + "\",\"formatted\":\"" +
                              std::string(sample().formatted) + "\"}\n");
    EXPECT_EQ(result.err, "");
}

TEST_P(EveryKind, SaysWhatItIs) {
    const std::string name = sample().canBeChecked() ? "explain" : "format";
    const RunResult result = runZor({name, std::string(sample().kind), "--help"});
    EXPECT_TRUE(result.out.starts_with("Usage: zor " + name + " " + std::string(sample().kind) + " [VALUE...]\n"));
    EXPECT_EQ(result.exitCode, 0);
    for (const KindOption* option : findKind(sample().kind)->options) {
        EXPECT_NE(result.out.find("  " + std::string(option->name)), std::string::npos) << option->name;
    }
}

TEST_P(EveryKind, RefusesTheOptionsOfOthers) {
    const auto options = findKind(sample().kind)->options;
    const auto takes = [&](std::string_view name) {
        return std::any_of(options.begin(), options.end(), [&](const KindOption* each) { return each->name == name; });
    };
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) {
            for (const KindOption* option : kind.options) {
                if (takes(option->name)) continue;
                std::string word(option->name);
                if (!option->placeholder.empty()) word += "=1";
                for (const Words& values : {Words{}, Words{valid()}}) {
                    Words words = command("format", sample(), values);
                    words.push_back(word);
                    const RunResult result = runZor(words, valid());
                    EXPECT_EQ(result.exitCode, 2) << word;
                    EXPECT_EQ(result.err, "zor: " + std::string(option->name) + ": not an option of " +
                                              std::string(sample().kind) + "\n");
                }
            }
        }
    }
}

std::u16string randomText(std::mt19937& random) {
    static constexpr std::u16string_view kUnits =
        u"0123456789ABZabz @.,-+/_&!#'\\()\u00A0\u00E9\u2019\u20AC\u0660\u0301\U0001D7CE\xD800\n\t\u017F\u212A";
    std::u16string text(random() % 24, u' ');
    for (char16_t& unit : text) unit = random() % 3 == 0 ? kUnits[random() % kUnits.size()] : kUnits[random() % 10];
    return text;
}

TEST_P(EveryKind, ExplainsExactlyWhatItRefuses) {
    const Kind& kind = *findKind(sample().kind);
    if (!sample().canBeChecked()) {
        EXPECT_EQ(kind.check, nullptr);
        EXPECT_EQ(kind.explain, nullptr);
        return;
    }
    std::mt19937 random(37);
    for (int round = 0; round < 3000; ++round) {
        const std::u16string text = randomText(random);
        const ZORFoundation::Explanation explanation = kind.explain(text, {});
        EXPECT_EQ(explanation.isValid(), kind.check(text, {}));
        EXPECT_LE(explanation.position, text.size());
    }
}

TEST_P(EveryKind, IsAnsweredInALongFileAsAlone) {
    if (!sample().canBeChecked()) return;
    const Kind& kind = *findKind(sample().kind);
    std::mt19937 random(47);
    std::string input;
    std::string expected;
    for (int line = 0; line < 4000; ++line) {
        std::u16string text = randomText(random);
        if (random() % 4 == 0) text = ZORPlatform::utf16(random() % 2 == 0 ? sample().valid : sample().invalid);
        // A line end would end the record, and an ill-formed text reaches no rule.
        text.erase(std::remove(text.begin(), text.end(), u'\n'), text.end());
        const std::optional<std::string> bytes = ZORPlatform::utf8IfWellFormed(text);
        if (!bytes) continue;
        input += *bytes + "\n";
        expected += kind.check(text, {}) ? "1\n" : "0\n";
    }
    EXPECT_EQ(runZor({"check", std::string(sample().kind)}, input).out, expected);
    EXPECT_EQ(runZor({"check", std::string(sample().kind), "--jobs=3"}, input).out, expected);
}

TEST_P(EveryKind, KeepsOneRecordALineForAnyBytes) {
    std::mt19937 random(41);
    std::string input;
    for (int line = 0; line < 300; ++line) {
        input += "SECRET";
        for (std::size_t bytes = random() % 20; bytes > 0; --bytes) input += static_cast<char>(random());
        input += '\n';
    }
    for (const char* format : {"plain", "tsv", "csv", "jsonl"}) {
        const RunResult result =
            runZor(command("format", sample(), {std::string("--format=") + format, std::string(kAllColumns)}), input);
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), std::count(input.begin(), input.end(), '\n'));
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.exitCode, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, ::testing::ValuesIn(kKindSamples), [](const auto& test) {
    std::string name(test.param.kind);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(Kinds, EachHasASample) {
    std::set<std::string_view> sampled;
    for (const KindSample& sample : kKindSamples) sampled.insert(sample.kind);
    std::set<std::string_view> kinds;
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) kinds.insert(kind.name);
    }
    EXPECT_EQ(kinds, sampled);
}

}  // namespace
}  // namespace zor::testing
