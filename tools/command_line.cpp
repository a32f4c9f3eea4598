#include "tools/command_line.h"

#include "script/suggestion.h"
#include "tools/word_lists.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <system_error>

namespace Calder::Tools {

namespace {

/// "a, b or c"
std::string alternatives(std::vector<std::string> const& words) {
    std::string text;
    for (std::size_t index = 0; index < words.size(); ++index) {
        text += index == 0 ? "" : index + 1 < words.size() ? ", " : " or ";
        text += words[index];
    }
    return text;
}

std::vector<std::string> names_of_commands(CLI::App const& app) {
    std::vector<std::string> names;
    for (CLI::App const* const command :
         app.get_subcommands([](CLI::App const*) { return true; })) {
        names.push_back(command->get_name());
    }
    return names;
}

std::vector<std::string> names_of_options(CLI::App const& command) {
    std::vector<std::string> names;
    for (CLI::Option const* const option : command.get_options()) {
        for (std::string const& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

/// What stands behind a command without an option in front: "FILE".
std::vector<std::string> names_of_operands(CLI::App const& command) {
    std::vector<std::string> names;
    for (CLI::Option const* const option : command.get_options()) {
        if (option->get_positional()) {
            names.push_back(option->get_name(true));
        }
    }
    return names;
}

Script::Wording suggestion_among(std::vector<std::string> const& known, std::string const& wrong) {
    unsigned budget = Script::suggestion_budget;
    Script::Suggestion suggestion(wrong, budget);
    for (std::string const& name : known) {
        suggestion.consider(name);
    }
    return suggestion.wording();
}

/// The commands that have an option.
std::vector<std::string> owners_of(CLI::App const& app, std::string const& option) {
    std::vector<std::string> owners;
    for (std::string const& name : names_of_commands(app)) {
        std::vector<std::string> const options = names_of_options(*app.get_subcommand(name));
        if (std::find(options.begin(), options.end(), option) != options.end()) {
            owners.push_back(name);
        }
    }
    return owners;
}

bool is_option(std::string const& word) {
    return word.size() > 1 && word[0] == '-' && word != "--";
}

/// Words that nobody takes; empty when there are none. More can be said of them than of what is
/// missing in their stead.
Script::Wording words_about_leftovers(CLI::App const& app, CLI::App const& command) {
    std::vector<std::string> left = app.remaining(false);
    std::vector<std::string> const of_command =
        &command == &app ? std::vector<std::string>{} : command.remaining(false);
    left.insert(left.end(), of_command.begin(), of_command.end());
    if (left.empty()) {
        return "";
    }
    auto const option = std::find_if(left.begin(), left.end(), is_option);
    if (option != left.end()) {
        std::string const name = option->substr(0, option->find('='));
        std::vector<std::string> const owners = owners_of(app, name);
        // What every command takes is right behind any word that was meant for a command.
        bool const fits_all = owners.size() == names_of_commands(app).size();
        if (std::find(owners.begin(), owners.end(), command.get_name()) != owners.end()) {
            return fmt::format("'{0}' is not read here: options of '{1}' stand behind '{1}' and in "
                               "front of any '--'",
                               name, command.get_name());
        }
        if (&command != &app || !fits_all || option == left.begin()) {
            return fmt::format("unknown option '{}' of '{}'", name, command.get_display_name()) +
                   (owners.empty() ? suggestion_among(names_of_options(command), name)
                                   : "; it is an option of " + alternatives(owners));
        }
    }
    if (&command == &app) {
        Script::Wording const meant = suggestion_among(names_of_commands(app), left[0]);
        return fmt::format("unknown command '{}'", left[0]) +
               (meant.suggestion.empty() ? "; it must be " + alternatives(names_of_commands(app))
                                         : meant);
    }
    return fmt::format("unexpected '{}': '{}' takes one {}", left[0], command.get_display_name(),
                       joined(names_of_operands(command), " and one "));
}

/// What CLI11 says in its own words, in ours.
Script::Wording words_about(CLI::App const& app, CLI::App const& command, CLI::Error const& error) {
    if (error.get_name() != "ValidationError") {
        if (Script::Wording leftovers = words_about_leftovers(app, command);
            !leftovers.text.empty()) {
            return leftovers;
        }
    }
    std::string what = error.what();
    if (error.get_name() == "RequiredError") {
        return &command == &app ? "a command is missing: " + alternatives(names_of_commands(app))
                                : what.substr(0, what.find(' ')) + " is missing";
    }
    if (error.get_name() == "ArgumentMismatch") {
        std::string const option = what.substr(0, what.find_first_of(": "));
        return option + (what.find("At Most") != std::string::npos    ? " is given more than once"
                         : what.find("override") != std::string::npos ? " takes no value"
                                                                      : " needs a value");
    }
    return what;
}

} // namespace

CLI::Validator whole_number(std::uint64_t least, std::uint64_t most) {
    return CLI::Validator(
        [least, most](std::string& text) {
            std::uint64_t number = 0;
            char const* const end = text.data() + text.size();
            auto const [rest, error] = std::from_chars(text.data(), end, number);
            if (rest != end || error != std::errc() || number < least || number > most) {
                return fmt::format("'{}' is no whole number from {} to {}", text, least, most);
            }
            text = std::to_string(number); // leading zeros would make it octal
            return std::string();
        },
        "");
}

CLI::Validator one_of(std::vector<std::string> const& words) {
    return CLI::Validator(
        [words](std::string& text) {
            auto const found =
                std::find_if(words.begin(), words.end(), [&](std::string const& word) {
                    return CLI::detail::to_lower(word) == CLI::detail::to_lower(text);
                });
            if (found == words.end()) {
                return fmt::format("must be {}, not '{}'", alternatives(words), text);
            }
            text = *found;
            return std::string();
        },
        "");
}

CLI::Validator not_empty(std::string const& message) {
    return CLI::Validator(
        [message](std::string& text) { return text.empty() ? message : std::string(); }, "");
}

Message command_line_error(CLI::App const& app, CLI::Error const& error) {
    std::vector<CLI::App*> const chosen = app.get_subcommands();
    CLI::App const& command = chosen.empty() ? app : *chosen.front();
    return {Severity::error,
            words_about(app, command, error),
            {remark(fmt::format("Run '{} --help' for what there is.",
                                &command == &app ? "calder" : "calder " + command.get_name()))}};
}

} // namespace Calder::Tools
