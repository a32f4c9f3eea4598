#include "tools/manual/manual.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

namespace Calder::Tools {

namespace {

/// Bash takes `=` for a word of its own, as in `--engine=terms` and `--define N=7`.
constexpr std::string_view beginning = R"(# Completion of calder in bash; written by the build.

_calder_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current"); }

_calder_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

_calder_operands() {
    local ending
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
        compgen -d -- "$current"
        for ending; do compgen -f -X "!*.$ending" -- "$current"; done)
}

_calder() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' word
    COMPREPLY=()
    if [[ $current == '=' ]]; then
        current=''
        [[ $before == -* ]] || return
    elif [[ $before == '=' ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
        [[ $before == -* ]] || return
    fi
    for word in "${COMP_WORDS[@]:1:COMP_CWORD - 1}"; do
        [[ $word == -* ]] || { command=$word; break; }
    done
)";

/// "explore:--output": the command and the word in front.
std::string pattern(CommandEntry const& command, OptionEntry const& option) {
    return command.name + ":" + option.names.back();
}

std::string values(Manual const& manual) {
    std::string text = "    case $command:$before in\n";
    std::vector<std::string> unknown;
    for (CommandEntry const& command : manual.commands) {
        for (OptionEntry const& option : command.options) {
            if (!option.words.empty()) {
                text += fmt::format("        {}) _calder_words {}; return ;;\n",
                                    pattern(command, option),
                                    quoted_for_shell(joined(option.words, " ")));
            } else if (option.takes_file()) {
                text +=
                    fmt::format("        {}) _calder_files; return ;;\n", pattern(command, option));
            } else if (!option.value.empty()) {
                unknown.push_back(pattern(command, option));
            }
        }
    }
    return text + fmt::format("        {}) return ;;\n    esac\n", joined(unknown, "|"));
}

std::string options(Manual const& manual) {
    std::vector<std::string> names;
    std::string operands;
    std::string text = "    case $command:$current in\n";
    text += fmt::format("        :-*) _calder_words {} ;;\n",
                        quoted_for_shell(option_names(manual.calder)));
    for (CommandEntry const& command : manual.commands) {
        names.push_back(command.name);
        text += fmt::format("        {}:-*) _calder_words {} ;;\n", command.name,
                            quoted_for_shell(option_names(command)));
        operands += fmt::format("        {}:*) _calder_operands {} ;;\n", command.name,
                                operand_endings(command, " "));
    }
    text += fmt::format("        :*) _calder_words {} ;;\n", quoted_for_shell(joined(names, " ")));
    return text + operands + "    esac\n";
}

} // namespace

std::string bash_completion(Manual const& manual) {
    return std::string(beginning) + values(manual) + options(manual) +
           "}\n\ncomplete -F _calder calder\n";
}

} // namespace Calder::Tools
