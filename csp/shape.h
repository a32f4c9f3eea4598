#pragma once

#include "process_compiler/argument_model.h"

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace Calder::ProcessCompiler::CSP {

/// What a row says of arguments, by their index.
enum class Arguments { none, first, second, all_but_first, every };

/// Whether the argument at `index` is one of these.
[[nodiscard]] constexpr bool holds_for(Arguments which, unsigned index) {
    switch (which) {
    case Arguments::none: return false;
    case Arguments::first: return index == 0;
    case Arguments::second: return index == 1;
    case Arguments::all_but_first: return index != 0;
    case Arguments::every: return true;
    }
    std::abort();
}

/// Which machine the construct wants to be compiled to.
enum class Level {
    /// Explicit transitions, whatever the host wishes.
    low,
    /// Formats and rules, whatever the host wishes.
    high,
    /// What the host wishes.
    as_wished,
};

/// Which operators count as the same one where the need of parentheses is decided.
enum class SameOperator {
    /// All of one construct.
    of_its_kind,
    /// Over the same events, too.
    with_equal_parameters,
};

/// An answer, or never_asked: the host never asks this question of the construct, and asking it
/// all the same ends the program, rather than a guess being given.
template <typename Answer> using Asked = std::optional<Answer>;
/// What stands in the row of a construct of which a question is never asked.
constexpr std::nullopt_t never_asked = std::nullopt;

/// The answer; where the question is never asked, ends the program.
template <typename Answer> [[nodiscard]] constexpr Answer answer_of(Asked<Answer> const& asked) {
    if (!asked) {
        std::abort();
    }
    return *asked;
}

/// What a construct answers without looking at its parameters or arguments: its row in the table of
/// constructs. Each stands in its construct's header; csp/constructs.h has them all.
struct Shape {
    /// The numbers of processes and of operators are apart.
    unsigned kind;
    /// With what the hash code of a term begins, so that equal arguments under other constructs
    /// have other codes.
    std::uint64_t hash_seed;

    /// What running does to the other arguments.
    RecursionType recursion_type;
    /// The arguments in which a recursive reference may stand.
    Asked<Arguments> allow_recursion;
    /// The arguments that run when the term starts.
    Asked<Arguments> run_at_start;
    /// The arguments that are thrown away as soon as another performs a visible event.
    Asked<Arguments> discarded;
    /// What switches the other arguments on.
    Asked<TurnedOnBy> turned_on_by;
    /// What Process::preferred_compilation_level answers.
    Level level;
    /// Whether arguments may be reordered without changing the meaning of the term.
    Asked<bool> commutative;

    /// @{
    /// What Process::pretty_print_information answers: a lower precedence binds tighter.
    unsigned precedence;
    unsigned associativity;
    /// @}
    /// The operator's text between, before or behind its operands, or as much of it as stands
    /// before its parameters.
    char const* symbol;
    /// What stands behind the parameters.
    char const* symbol_end = "";
    /// The construct in words; where it has parameters, the line above them.
    char const* description;
    /// What any number of arguments print when there are none; null where their number is fixed.
    char const* text_when_empty = nullptr;
    /// Of operators; processes are the same one when their kinds are equal.
    SameOperator same_operator = SameOperator::of_its_kind;
};

} // namespace Calder::ProcessCompiler::CSP
