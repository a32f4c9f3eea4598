#pragma once

#include "script/diagnostics.h"
#include "script/syntax_tree.h"
#include "script/token_list.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Calder::Script {

/// What a name at a node stands for, as far as definitions and variables tell.
struct Binding {
    enum class Kind : unsigned char {
        neither, // an event, a value, something built in, or unknown
        variable,
        definition,
    };
    Kind kind = Kind::neither;
    unsigned number = none;
};

/// A name that a parameter, a generator or an input binds.
struct Variable {
    unsigned token;
    unsigned owner; // the definition in which it is bound
    /// Of an input: what follows the arrow uses it.
    bool is_used = false;
};

/// What a part of an assertion has to be.
enum class AssertionPart : unsigned char { no_part, process, trace, events };

/// Everything that is defined under one name in one place, its clauses together.
struct NamedDefinition {
    /// As it is told: of a local one behind the names of those around it, `P.Q`, and `P.2.Q` for the
    /// second of that name there.
    std::string name;
    unsigned token;
    unsigned parent = none; // the definition that it is local to
    std::vector<unsigned> clauses{};
    unsigned parameter_count = 0;
    /// Variables of the definitions around it that it needs, ascending: they are parameters, too,
    /// in front of its own.
    std::vector<unsigned> captures{};
    /// Of what no other definition sees, and what is made only for its assertion.
    AssertionPart part = AssertionPart::no_part;
    /// What it says could not be read.
    bool is_lost = false;
    bool is_process = false;
    /// Given beside the script, and a value whatever its name is.
    bool is_constant = false;
    /// It stands in the place of what the script says.
    bool is_replacement = false;
    /// An earlier definition of the same name counts instead.
    bool is_repetition = false;

    /// Whether others can name it.
    bool has_name() const { return part == AssertionPart::no_part; }
};

/// The names of a script and what they stand for. Local definitions are lifted: they stand beside
/// the others, with what they need from around them as parameters (Johnsson, "Lambda lifting", 1985).
struct NameTable {
    /// The script's own in its order, then the parts of assertions, then the local ones.
    std::vector<NamedDefinition> definitions;
    std::vector<unsigned> first_parts; // by assertion: its first definition
    std::vector<Variable> variables;
    std::vector<Binding> bindings; // by node
    std::unordered_map<std::string, unsigned> by_name;
    std::unordered_set<std::string_view> channels;
    /// By name: the alternative's node in its datatype, or none for what only a channel's field
    /// introduces.
    std::unordered_map<std::string_view, unsigned> values;
    std::unordered_map<std::string_view, unsigned> datatypes; // their nodes
    /// Names of definitions that may be values, by what they say: a process hides no value.
    std::unordered_set<std::string_view> hidden;
    /// The names of channels, values and datatypes in the order of the script, for suggestions.
    std::vector<std::string_view> declared;
    LostNames lost;

    static bool is_truth_value(std::string_view name) { return name == "true" || name == "false"; }
    /// Whether a name in a pattern is the value and no variable.
    bool is_constant(std::string_view name) const {
        return is_truth_value(name) || (values.contains(name) && !hidden.contains(name));
    }
};

/// What a process that is asked for is defined as.
constexpr char const* asked_name = "_process";

/// Finds what every name stands for, which definitions are processes, and what local ones need from
/// around them. Reports names that are defined twice and terms that nest too deeply. Names that
/// stand for nothing are left to whoever knows what was wanted there.
/// Definitions from sources `first_added` to, without, `end_added` take the place of the script's.
NameTable resolve_names(TokenList const& tokens, SyntaxTree const& tree, unsigned first_added,
                        unsigned end_added, Diagnostics& diagnostics);

} // namespace Calder::Script
