#pragma once

#include "script/names.h"
#include "values/channel_table.h"
#include "values/expression.h"

#include <vector>

namespace Calder::Script {

/// An event that is written out, so what is wrong with it can be told without running anything.
struct EventLiteral {
    enum class Use : unsigned char {
        value,     // anything may be done with it
        event,     // it must be complete and visible
        element,   // the same, in a set, which tick may be in
        step,      // the same, in a trace
        closure,   // it begins some events
        renamed,   // a side of a pair: it may want fields, but is visible
        beginning, // fields follow
    };
    unsigned expression; // a `dot`
    unsigned node;
    Use use;
    /// A name among its parts stands for nothing.
    bool has_unknown = false;
};

/// What a script says, every name resolved. The place of an expression is its node; the numbers of
/// the first definitions are those of the table of names, and those of the datatypes follow.
struct Translation {
    Values::Program program;
    /// By definition: where its expressions begin; each ends where the next one begins.
    std::vector<unsigned> first_expressions;
    std::vector<EventLiteral> literals;
    /// Expressions that are broken until the channels are declared: channels, and `Events`.
    std::vector<unsigned> declared_later;

    struct Datatype {
        unsigned node;
        /// By alternative: its name, and its fields' sets.
        std::vector<Values::Value> names;
        std::vector<std::vector<unsigned>> fields;
        unsigned slot_count = 0;
    };
    std::vector<Datatype> datatypes;

    struct Field {
        unsigned node;
        /// A sequence of its values in the order in which they are listed, or their set.
        unsigned expression;
        unsigned slot_count;
    };
    struct Declaration {
        unsigned node;
        std::vector<unsigned> channels; // their nodes
        std::vector<Field> fields;
        bool is_broken = false;
    };
    std::vector<Declaration> declarations;
};

/// How many operations the host knows beside the constructs: `keep` holds a process for as long as
/// the script.
constexpr unsigned keep_construct = static_cast<unsigned>(Construct::projection) + 1;

/// Reports every name that stands for nothing, every process where a value is wanted and the other
/// way round, every call with a wrong number of arguments.
Translation translate(TokenList const& tokens, SyntaxTree const& tree, NameTable const& names,
                      Values::ValueStore& store, Diagnostics& diagnostics);

/// Where a node is reported: an operator on processes at its own token, everything else from its
/// first token to its last.
Location location_of(TokenList const& tokens, SyntaxTree const& tree, unsigned node);

} // namespace Calder::Script
