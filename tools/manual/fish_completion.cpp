#include "tools/manual/manual.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

namespace Calder::Tools {

namespace {

/// In single quotes, inside which fish knows two escapes.
std::string quoted(std::string_view text) {
    std::string result = "'";
    for (char const letter : text) {
        result += letter == '\'' || letter == '\\' ? "\\" : "";
        result += letter;
    }
    return result + "'";
}

/// What stands behind an option: words, files, or what nobody can guess.
std::string value_of(OptionEntry const& option) {
    if (option.value.empty()) {
        return "";
    }
    return !option.words.empty() ? " -x -a " + quoted(joined(option.words, " "))
           : option.takes_file() ? " -r -F"
                                 : " -x";
}

/// `condition` is a command of fish that says whether the options belong here.
std::string options_text(CommandEntry const& command, std::string const& condition) {
    std::string text;
    for (OptionEntry const& option : command.options) {
        std::string names;
        for (std::string const& name : option.names) {
            names += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
        }
        text += fmt::format("complete -c calder -n {}{}{} -d {}\n", quoted(condition), names,
                            value_of(option), quoted(option.description));
    }
    return text;
}

/// Files with these endings and folders: fish itself would go on with all other files.
std::string files_for(CommandEntry const& command) {
    std::string completions;
    for (OperandEntry const& operand : command.operands) {
        completions += fmt::format("{}__fish_complete_suffix .{}", completions.empty() ? "" : "; ",
                                   operand.ending);
    }
    std::string const all =
        command.operands.size() == 1 ? completions : "begin; " + completions + "; end";
    return fmt::format(R"fish('({} | string match -er "(?:\.(?:{})|/)(?:\t|\$)")')fish", all,
                       operand_endings(command, "|"));
}

} // namespace

std::string fish_completion(Manual const& manual) {
    std::string const at_command = "__fish_use_subcommand";
    std::string text = "# Completion of calder in fish; written by the build.\n\n"
                       "complete -c calder -f\n" +
                       options_text(manual.calder, at_command);
    for (CommandEntry const& command : manual.commands) {
        text += fmt::format("complete -c calder -n {} -a {} -d {}\n", at_command, command.name,
                            quoted(command.description));
    }
    for (CommandEntry const& command : manual.commands) {
        std::string const in_command = "__fish_seen_subcommand_from " + command.name;
        text += fmt::format("\ncomplete -c calder -n {} -a {}\n", quoted(in_command),
                            files_for(command)) +
                options_text(command, in_command);
    }
    return text;
}

} // namespace Calder::Tools
