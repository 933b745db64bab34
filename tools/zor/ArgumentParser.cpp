// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/ArgumentParser.h>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace zor {
namespace {

using Words = std::span<char* const>;

const Option* findOption(std::span<const Option> options, std::string_view name) {
    const auto found = std::find_if(options.begin(), options.end(), [&](const Option& o) { return o.name == name; });
    return found == options.end() ? nullptr : &*found;
}

// A negative number, and "-" alone, are values.
bool looksLikeOption(std::string_view word) {
    return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9');
}

// What was typed may be data, so no more of it is shown than a name that an option could have.
UsageError unknownOption(std::string_view word) {
    const std::string_view name = word.substr(0, word.find('='));
    if (name.starts_with("--") && name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == std::string_view::npos) {
        return UsageError(std::string(name).append(": there is no such option; see zor --help"));
    }
    return UsageError("a word that begins with \"-\" is no option; put -- before such values, or see zor --help");
}

// The parser would take the next word for an empty value, and would let a flag have one.
void requireValueWhereOneBelongs(std::span<const Option> options, std::string_view word) {
    const std::size_t equals = word.find('=');
    const Option* option = equals == std::string_view::npos ? nullptr : findOption(options, word.substr(0, equals));
    if (option == nullptr) return;
    const std::string name(option->name);
    if (option->placeholder.empty()) throw UsageError(name + ": takes no value");
    if (equals + 1 == word.size()) throw UsageError(name + ": a value is missing");
}

// Everything that is no option stays with the parser as an extra: as an argument of its own it would take "[a,b]" for
// two.
std::vector<std::string> parseOptions(std::span<const Option> options, Words words, Arguments& arguments) {
    CLI::App parser;
    parser.set_help_flag();
    parser.allow_extras();
    for (const Option& option : options) {
        const std::string name(option.name);
        if (option.placeholder.empty()) {
            parser.add_flag_callback(name, [&arguments, &option] { arguments.add(option.name, {}); });
        } else {
            parser
                .add_option_function<std::string>(
                    name, [&arguments, &option](const std::string& value) { arguments.add(option.name, value); })
                ->take_last();
        }
    }
    // The parser takes them from the back.
    std::vector<std::string> reversed(words.rbegin(), words.rend());
    try {
        parser.parse(std::move(reversed));
    } catch (const CLI::ArgumentMismatch& error) {
        const std::string_view message = error.what();
        throw UsageError(std::string(message.substr(0, message.find(':'))).append(": a value is missing"));
    } catch (const CLI::ParseError&) {
        throw UsageError("the arguments make no sense; see zor --help");
    }
    return parser.remaining();
}

}  // namespace

Arguments parseArguments(std::span<const Option> options, Words words) {
    const auto end = std::find(words.begin(), words.end(), std::string_view("--"));
    const Words beforeDashes(words.begin(), end);
    for (const char* word : beforeDashes) requireValueWhereOneBelongs(options, word);
    Arguments arguments;
    arguments.words = parseOptions(options, beforeDashes, arguments);
    for (const std::string& word : arguments.words) {
        if (looksLikeOption(word)) throw unknownOption(word);
    }
    if (end != words.end()) arguments.words.insert(arguments.words.end(), end + 1, words.end());
    return arguments;
}

}  // namespace zor
