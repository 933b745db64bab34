// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/Help.h>

#include <tools/zor/Kind.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kIndent = 2;
constexpr std::size_t kOptionWidth = 25;

constexpr std::array kProgramOptions{
    Option{"--help", "", "this text; after a command: its options"},
    Option{"--version", "", "the version; with --json also the tables and their dates"},
    Option{"--json", "", "--version as JSON"},
};

// "  name      help" with the help in a column of its own.
void appendRow(std::string& text, std::string_view name, std::size_t nameWidth, std::string_view help) {
    text.append(kIndent, ' ').append(name);
    text.append(std::max(nameWidth, name.size() + 1) - name.size(), ' ').append(help).append("\n");
}

// Words behind a label, broken at the width of a screen and indented from the second line on.
template <typename Words>
void appendWords(std::string& text, std::string_view label, const Words& words) {
    std::string line(label);
    for (const std::string_view word : words) {
        if (line.size() + 1 + word.size() > kColumns) {
            text.append(line).append("\n");
            line.assign(kIndent - 1, ' ');
        }
        line.append(" ").append(word);
    }
    text.append(line).append("\n");
}

template <typename AnyOption>
std::string spelling(const AnyOption& option) {
    std::string text(option.name);
    if (!option.placeholder.empty()) text.append("=").append(option.placeholder);
    return text;
}

std::vector<std::string_view> kindNames() {
    std::vector<std::string_view> names;
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) names.push_back(kind.name);
    }
    return names;
}

// Each option of a kind once.
std::vector<const KindOption*> kindOptions() {
    std::vector<const KindOption*> options;
    for (const KindGroup* group : kindGroups()) {
        for (const Kind& kind : group->kinds) {
            for (const KindOption* option : kind.options) {
                if (std::find(options.begin(), options.end(), option) == options.end()) options.push_back(option);
            }
        }
    }
    return options;
}

}  // namespace

std::span<const Option> programOptions() { return kProgramOptions; }

std::string programHelp() {
    std::string text = "Usage: zor COMMAND [ARGUMENT...] [--OPTION[=VALUE]...]\n";
    for (const Command* command : commands()) {
        appendRow(text, std::string(command->name) + " " + std::string(command->synopsis), 40, command->help);
    }
    appendWords(text, "Kinds:", kindNames());
    text += "Without a VALUE a command is a filter: one record out for each line in.\n";
    text += "Exit status: 0 valid or done; 1 not valid; 2 usage; 3 input, output; 4 internal.\n";
    for (const Option& option : kProgramOptions) appendRow(text, spelling(option), 12, option.help);
    return text;
}

std::string commandHelp(const Command& command) {
    std::string text = "Usage: zor ";
    text.append(command.name).append(" ").append(command.synopsis).append("\n");
    for (const Action& action : command.actions) appendRow(text, action.name, kOptionWidth, action.help);
    for (const Option& option : command.options) appendRow(text, spelling(option), kOptionWidth, option.help);
    if (command.takesKindOptions) {
        std::vector<std::string> spellings;
        for (const KindOption* option : kindOptions()) spellings.push_back(spelling(*option));
        appendWords(text, "Of single kinds:", spellings);
        text.append("See also zor ").append(command.name).append(" KIND --help.\n");
    }
    if (command.takesFilterOptions) text.append("As a filter also the options of zor format --help.\n");
    return text;
}

std::string kindHelp(const Command& command, const Kind& kind) {
    const std::string commandName = std::string("zor ").append(kind.check == nullptr ? "format" : command.name);
    std::string text = "Usage: " + commandName;
    text.append(" ").append(kind.name).append(" [VALUE...]\n");
    appendRow(text, kind.name, kOptionWidth, kind.help);
    for (const KindOption* option : kind.options) appendRow(text, spelling(*option), kOptionWidth, option->help);
    return text.append("Without a VALUE also the options of ").append(commandName).append(" --help.\n");
}

std::string versionText(bool asJson) {
    if (!asJson) return "zor " ZOR_VERSION "\n";
    std::string text = "{\"library\":\"" ZOR_VERSION "\",\"profiles\":[";
    for (const KindGroup* group : kindGroups()) {
        if (text.back() == '}') text += ',';
        text.append("{\"name\":\"").append(group->name).append("\",\"rules\":\"").append(group->rules);
        text.append("\",\"date\":\"").append(group->date).append("\"}");
    }
    return text + "]}\n";
}

}  // namespace zor
