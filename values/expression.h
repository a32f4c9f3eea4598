#pragma once

#include "values/value.h"

#include <climits>

#include <string>
#include <vector>

namespace Calder::Values {

/// Where something stands in the text, for whoever reports errors; this room only passes it on.
using Place = unsigned;

constexpr unsigned no_number = UINT_MAX;

/// What is computed of values alone, all operands first, from left to right.
enum class Operation : unsigned char {
    // integers
    add,
    subtract,
    multiply,
    divide,    // rounds down
    remainder, // has the sign of the divisor
    negate,
    less,
    at_most,
    greater,
    at_least,
    // any two values
    equal,
    differ,
    // a truth value
    negation,
    // tuples: two operands or more
    tuple,
    // sequences
    sequence,       // of the operands
    sequence_range, // <m..n>
    concatenate,    // s ^ t
    length,         // #s
    head,
    tail,
    is_null,     // null(s)
    is_element,  // elem(x, s)
    concat,      // of a sequence of sequences
    sequence_of, // seq(S): in the order of values
    // sets
    set,       // of the operands
    set_range, // {m..n}
    set_union,
    intersection,
    difference,
    is_member,   // member(x, S)
    cardinality, // card(S)
    is_empty,    // empty(S)
    big_union,   // Union(S), of a set of sets
    big_intersection,
    power_set, // Set(S)
    set_of,    // set(s): the elements of a sequence
    // names and channels with fields
    dot,          // v.w.x: the first operand with the others as its further fields
    closure,      // {| c, d.0 |}: every event that begins as one of the operands does
    field_values, // the set of what may follow operand 0, an event that wants fields, when operand 1
                  // says how many more fields stand behind that one
};

enum class ExpressionKind : unsigned char {
    /// `value`.
    constant,
    /// The variable in slot `number` of the call.
    variable,
    /// `operation` of the operands.
    operation,
    /// Operand 0 is a truth value: then operand 1, or else operand 2.
    conditional,
    /// Of two truth values, the second only where the first does not decide.
    conjunction,
    disjunction,
    /// Definition `number` of the arguments.
    call,
    /// What the host makes of the operands; `number` is for the host.
    construct,
    /// Stands as an operand of an operation or a construct for any number of operands: what
    /// comprehension `number` yields.
    comprehension,
    /// Could not be read, and that was reported: evaluating it throws `Unreadable`.
    broken,
};

struct Expression {
    ExpressionKind kind;
    Operation operation{};
    bool is_direct = false; // see values/direct_expressions.h
    Place place = 0;
    unsigned number = no_number;
    /// In `Program::operands`.
    unsigned first_operand = 0;
    unsigned operand_count = 0;
    Value value{};
};

enum class PatternKind : unsigned char {
    anything,
    /// Binds slot `number`.
    variable,
    /// Fits what equals `value`.
    constant,
    /// Fits a tuple of as many parts.
    tuple,
    /// Fits a sequence of exactly so many elements.
    sequence,
    /// `<x, y> ^ s`: the parts but for the last one fit the first elements, that one the rest.
    front,
    /// `s ^ <x, y>`: the first part fits what stands before the last elements.
    back,
    /// Fits `value` with fields, one for each part: `data.b`. A part that is a variable and the last
    /// one takes one declared field.
    dotted,
};

struct Pattern {
    PatternKind kind;
    unsigned number = no_number;
    /// In `Program::parts`.
    unsigned first_part = 0;
    unsigned part_count = 0;
    Value value{};
};

/// `pattern : expression` or `pattern <- expression`, over a set in the order of values or over a
/// sequence, leaving out what does not fit; or a condition.
struct Qualifier {
    /// no_number for a condition.
    unsigned pattern = no_number;
    unsigned expression;
    /// Of a generator: two slots of the call that hold how far it is.
    unsigned first_slot = 0;
};

/// For each way to satisfy the qualifiers from left to right, the results.
struct Comprehension {
    std::vector<Qualifier> qualifiers;
    std::vector<unsigned> results;
};

/// What a call of a definition does.
enum class CallMode : unsigned char {
    /// Evaluates.
    evaluate,
    /// Evaluates once for the same arguments, and then knows the result.
    remember,
    /// Asks the host (`Host::refer`), which may evaluate it later or never.
    refer,
};

/// One way to define what it is called with; the first that fits counts.
struct Clause {
    std::vector<unsigned> patterns; // one for each parameter
    unsigned body;
};

struct Definition {
    /// As it is told: `BUFFER`, or `P.Q` for one that is local to P.
    std::string name;
    Place place = 0;
    CallMode mode = CallMode::evaluate;
    unsigned parameter_count = 0;
    /// So many variables, its parameters' among them, need slots while it is evaluated. The
    /// arguments themselves are held beside them.
    unsigned slot_count = 0;
    std::vector<Clause> clauses;
};

/// Definitions, resolved: every name is a number. Built once, then only read.
struct Program {
    std::vector<Expression> expressions;
    std::vector<unsigned> operands; // expressions
    std::vector<Pattern> patterns;
    std::vector<unsigned> parts; // patterns
    std::vector<Comprehension> comprehensions;
    std::vector<Definition> definitions;
};

} // namespace Calder::Values
