#include "tools/manual/manual.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

namespace Calder::Tools {

namespace {

/// With a backslash in front of each letter of `special`.
std::string escaped(std::string_view text, std::string_view special) {
    std::string result;
    for (char const letter : text) {
        if (letter == '\\' || special.find(letter) != std::string_view::npos) {
            result += '\\';
        }
        result += letter;
    }
    return result;
}

/// ":value:action": what stands behind an option.
std::string value_of(OptionEntry const& option) {
    if (option.value.empty()) {
        return "";
    }
    std::string const action = !option.words.empty() ? "(" + joined(option.words, " ") + ")"
                               : option.takes_file() ? "_files"
                                                     : " ";
    return ":" + escaped(option.value, ":") + ":" + action;
}

/// The options as _arguments wants them, a line each. An option that shows something and ends, as --help
/// does, leaves nothing else to be written.
std::string option_lines(CommandEntry const& command, std::string const& indentation) {
    std::string text;
    for (OptionEntry const& option : command.options) {
        bool const ends = command.name.empty() || option.names.back() == "--help";
        for (std::string const& name : option.names) {
            std::string const before = option.repeats ? "*" : ends ? "(- *)" : "";
            std::string const described = before + name + (option.value.empty() ? "" : "=") + "[" +
                                          escaped(option.description, "[]") + "]" +
                                          value_of(option);
            text += fmt::format("{}{} \\\n", indentation, quoted_for_shell(described));
        }
    }
    return text;
}

/// Those of the operands.
std::string operand_lines(CommandEntry const& command) {
    std::vector<std::string> lines;
    for (OperandEntry const& operand : command.operands) {
        lines.push_back(fmt::format("                '{}:{}:_files -g \"*.{}\"'", lines.size() + 1,
                                    operand.name, operand.ending));
    }
    return joined(lines, " \\\n");
}

} // namespace

std::string zsh_completion(Manual const& manual) {
    std::string text = "#compdef calder\n# Completion of calder in zsh; written by the build.\n\n"
                       "_calder() {\n"
                       "    local context state state_descr line\n"
                       "    typeset -A opt_args\n"
                       "    local -a commands=(\n";
    for (CommandEntry const& command : manual.commands) {
        text +=
            fmt::format("        {}\n", quoted_for_shell(command.name + ":" + command.description));
    }
    text += "    )\n    _arguments -C \\\n" + option_lines(manual.calder, "        ") +
            "        '1:command:->command' \\\n"
            "        '*::argument:->arguments'\n"
            "    case $state in\n"
            "    command) _describe command commands ;;\n"
            "    arguments)\n"
            "        case $line[1] in\n";
    for (CommandEntry const& command : manual.commands) {
        text += fmt::format("        {})\n            _arguments \\\n{}{} ;;\n", command.name,
                            option_lines(command, "                "), operand_lines(command));
    }
    return text + "        esac ;;\n    esac\n}\n\n_calder \"$@\"\n";
}

} // namespace Calder::Tools
