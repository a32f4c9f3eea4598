#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Calder::Tools {

/// An option as the manual and the completions tell it.
struct OptionEntry {
    /// "--output" and, of some, "-h" in front of it.
    std::vector<std::string> names;
    /// What it takes: "N", "FILE", "machine|terms"; empty where it takes nothing.
    std::string value;
    /// The words of such a value, the first being what it is without the option; of others none.
    std::vector<std::string> words;
    std::string description;
    /// May be given more than once.
    bool repeats = false;

    bool takes_file() const { return value == "FILE"; }
};

/// What stands behind a command without an option in front of it.
struct OperandEntry {
    /// "FILE"
    std::string name;
    /// "csp": of the files that it is for.
    std::string ending;
};

/// What stands behind `calder`, or, without a name, `calder` alone.
struct CommandEntry {
    std::string name;
    std::string description;
    std::vector<OptionEntry> options;
    /// What else it takes, in this order.
    std::vector<OperandEntry> operands{};
};

struct Manual {
    CommandEntry calder;
    /// Each takes a script as its first operand.
    std::vector<CommandEntry> commands;
};

/// Out of what the command itself reads its words by.
Manual make_manual();

/// The names of all options, with blanks between them.
std::string option_names(CommandEntry const& command);

/// The endings of its operands, with `separator` between them.
std::string operand_endings(CommandEntry const& command, std::string const& separator);

/// In single quotes for a shell that ends them at every quote (bash, zsh).
std::string quoted_for_shell(std::string_view text);

/// `version` is a number, `date` the day of it as YYYY-MM-DD: nothing else of the day it is built.
std::string man_page(Manual const& manual, std::string const& version, std::string const& date);

std::string bash_completion(Manual const& manual);
std::string zsh_completion(Manual const& manual);
std::string fish_completion(Manual const& manual);

} // namespace Calder::Tools
