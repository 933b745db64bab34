// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/ArgumentParser.h>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace zor {
namespace {

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

}  // namespace

Arguments parseArguments(std::span<const Option> options, std::span<char* const> words) {
    CLI::App parser;
    parser.set_help_flag();
    Arguments arguments;
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
    parser.add_option("words", arguments.words);
    // The parser takes them from the back.
    std::vector<std::string> reversed(words.begin(), words.end());
    std::reverse(reversed.begin(), reversed.end());
    try {
        parser.parse(std::move(reversed));
    } catch (const CLI::ParseError& error) {
        throw UsageError(firstLine(error.what()));
    }
    return arguments;
}

}  // namespace zor
