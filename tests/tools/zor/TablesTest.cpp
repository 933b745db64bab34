// SPDX-License-Identifier: Apache-2.0
//
// Help, manual and completions name what the tables hold, all of it and nothing else.

#include "ZorProcess.h"

#include <tools/zor/Command.h>
#include <tools/zor/FilterArguments.h>
#include <tools/zor/Help.h>
#include <tools/zor/Kind.h>
#include <tools/zor/filter/Column.h>
#include <tools/zor/filter/Format.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace zor::testing {
namespace {

std::string contentOf(const std::string& path) {
    std::ifstream file(std::string(ZOR_SOURCE_DIRECTORY "/tools/zor/") + path);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> allOptions() {
    std::set<std::string> names{"--help", "--version", "--json"};
    for (const Command* command : commands()) {
        for (const Option& option : command->options) names.emplace(option.name);
    }
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) {
            for (const KindOption* option : kind.options) names.emplace(option->name);
        }
    }
    return names;
}

// What a page calls an option: two dashes and a word.
std::set<std::string> optionsNamedIn(std::string text) {
    text = std::regex_replace(text, std::regex(R"(\\-)"), "-");
    std::set<std::string> names;
    const std::regex option(R"((^|[^-\w])(--[a-z][a-z-]*))");
    for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end; ++found) {
        names.insert((*found)[2]);
    }
    return names;
}

bool hasWord(const std::string& text, std::string_view word) {
    const auto isPart = [](char byte) { return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '-'; };
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; ++at) {
        const std::size_t end = at + word.size();
        if ((at == 0 || !isPart(text[at - 1])) && (end == text.size() || !isPart(text[end]))) return true;
    }
    return false;
}

void expectScreen(const std::string& text) {
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 24) << text;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

TEST(ZorHelp, FitsAScreen) {
    expectScreen(runZor({"--help"}).out);
    for (const Command* command : commands()) expectScreen(runZor({std::string(command->name), "--help"}).out);
}

TEST(ZorHelp, NamesCommandsKindsAndOptions) {
    const std::string help = programHelp();
    for (const Command* command : commands()) {
        EXPECT_TRUE(hasWord(help, command->name)) << command->name;
        const std::string options = commandHelp(*command);
        for (const Action& action : command->actions) EXPECT_TRUE(hasWord(options, action.name)) << action.name;
        for (const Option& option : command->options) EXPECT_TRUE(hasWord(options, option.name)) << option.name;
    }
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) EXPECT_TRUE(hasWord(help, kind.name)) << kind.name;
    }
}

TEST(ZorAction, IsNamedWhereItIsMissingOrUnknown) {
    for (const Command* command : commands()) {
        if (command->actions.empty()) continue;
        const std::string name(command->name);
        for (const Words& words : {Words{name}, Words{name, "nonsense"}, Words{name, "nonsense", "FILE"}}) {
            const RunResult result = runZor(words);
            EXPECT_EQ(result.exitCode, 2) << name;
            EXPECT_TRUE(result.out.empty()) << result.out;
            for (const Action& action : command->actions) EXPECT_TRUE(hasWord(result.err, action.name)) << result.err;
            EXPECT_TRUE(result.err.ends_with(" is needed\n")) << result.err;
        }
    }
}

class ZorPage : public ::testing::TestWithParam<const char*> {};

TEST_P(ZorPage, NamesEveryCommandAndKind) {
    const std::string page = std::regex_replace(contentOf(GetParam()), std::regex(R"(\\-)"), "-");
    for (const Command* command : commands()) EXPECT_TRUE(hasWord(page, command->name)) << command->name;
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) EXPECT_TRUE(hasWord(page, kind.name)) << kind.name;
    }
}

TEST_P(ZorPage, NamesEveryAction) {
    const std::string page = contentOf(GetParam());
    for (const Command* command : commands()) {
        for (const Action& action : command->actions) {
            EXPECT_TRUE(hasWord(page, action.name)) << command->name << " " << action.name;
        }
    }
}

TEST_P(ZorPage, NamesEveryFormatAndColumn) {
    const std::string page = std::regex_replace(contentOf(GetParam()), std::regex(R"(\\-)"), "-");
    for (const Format& format : formats()) EXPECT_TRUE(hasWord(page, format.name)) << format.name;
    for (const Column& column : columns()) EXPECT_TRUE(hasWord(page, column.name)) << column.name;
}

TEST_P(ZorPage, NamesTheOptionsThatThereAreAndNoOthers) {
    std::string page = contentOf(GetParam());
    // fish spells an option without its dashes: -l name. With "set", -l makes a variable.
    page = std::regex_replace(page, std::regex(R"(set -l)"), "set");
    page = std::regex_replace(page, std::regex(R"( -l ([a-z-]+))"), " --$1");
    EXPECT_EQ(optionsNamedIn(page), allOptions());
}

INSTANTIATE_TEST_SUITE_P(Pages, ZorPage,
                         ::testing::Values("zor.1", "completion/zor.bash", "completion/_zor", "completion/zor.fish"));

TEST(ZorTables, NamesAreUnique) {
    std::set<std::string_view> kinds;
    for (const KindGroup* group : kindGroups()) {
        EXPECT_TRUE(std::regex_match(std::string(group->date), std::regex(R"(\d{4}-\d{2}-\d{2})"))) << group->name;
        for (const Kind& kind : group->kinds) EXPECT_TRUE(kinds.insert(kind.name).second) << kind.name;
    }
    std::set<std::string_view> names;
    for (const Command* command : commands()) EXPECT_TRUE(names.insert(command->name).second) << command->name;
}

TEST(ZorTables, ReasonsOfRecordsAreToldFromRulesByTheirUnderscore) {
    using ZORFoundation::BrokenRule;
    for (const BrokenRule rule :
         {BrokenRule::none, BrokenRule::empty, BrokenRule::tooShort, BrokenRule::tooLong, BrokenRule::countryLength,
          BrokenRule::length, BrokenRule::unexpectedCharacter, BrokenRule::checkDigits}) {
        EXPECT_EQ(name(rule).find('_'), std::string_view::npos);
    }
}

}  // namespace
}  // namespace zor::testing
