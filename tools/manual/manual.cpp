#include "tools/manual/manual.h"

#include "tools/options.h"
#include "tools/word_lists.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace Calder::Tools {

namespace {

std::vector<std::string> words_of(std::string const& value) {
    std::vector<std::string> words;
    std::istringstream rest(value);
    for (std::string word; std::getline(rest, word, '|');) {
        words.push_back(word);
    }
    return words.size() > 1 ? words : std::vector<std::string>();
}

OptionEntry entry_of(CLI::Option const& option) {
    OptionEntry entry;
    for (std::string const& name : option.get_snames()) {
        entry.names.push_back("-" + name);
    }
    for (std::string const& name : option.get_lnames()) {
        entry.names.push_back("--" + name);
    }
    bool const is_flag = option.get_items_expected_max() == 0;
    entry.value = is_flag ? "" : option.get_type_name();
    entry.words = words_of(entry.value);
    entry.description = option.get_description();
    entry.repeats = option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    return entry;
}

CommandEntry entry_of(CLI::App const& command) {
    CommandEntry entry{command.get_name(), command.get_description(), {}};
    for (CLI::Option const* const option : command.get_options()) {
        if (option->get_positional()) {
            std::string const name = option->get_name(true);
            entry.operands.push_back({name, name == "TRACE" ? "csv" : "csp"});
        } else {
            entry.options.push_back(entry_of(*option));
        }
    }
    return entry;
}

} // namespace

Manual make_manual() {
    CommandLine line;
    auto const parser = command_line_parser(line, "");
    Manual manual{entry_of(*parser), {}};
    manual.calder.name.clear();
    for (CLI::App const* const command :
         parser->get_subcommands([](CLI::App const*) { return true; })) {
        manual.commands.push_back(entry_of(*command));
    }
    return manual;
}

std::string option_names(CommandEntry const& command) {
    std::vector<std::string> names;
    for (OptionEntry const& option : command.options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return joined(names, " ");
}

std::string operand_endings(CommandEntry const& command, std::string const& separator) {
    std::vector<std::string> endings;
    for (OperandEntry const& operand : command.operands) {
        endings.push_back(operand.ending);
    }
    return joined(endings, separator);
}

std::string quoted_for_shell(std::string_view text) {
    std::string quoted = "'";
    for (char const letter : text) {
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return quoted + "'";
}

} // namespace Calder::Tools
