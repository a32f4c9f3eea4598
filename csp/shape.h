#pragma once

#include "process_compiler/argument_model.h"

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace Calder::ProcessCompiler::CSP {

/// What a row says of arguments, by their index.
enum class Arguments { none, first, second, all_but_first, every };

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
enum class Level { low, high, as_wished };

/// Which operators count as the same one where the need of parentheses is decided.
enum class SameOperator { of_its_kind, with_equal_parameters };

/// An answer, or never_asked: the host never asks this question of the construct, and asking it
/// all the same ends the program, rather than a guess being given.
template <typename Answer> using Asked = std::optional<Answer>;
constexpr std::nullopt_t never_asked = std::nullopt;

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
    std::uint64_t hash_seed;

    RecursionType recursion_type;
    /// The arguments in which a recursive reference may stand.
    Asked<Arguments> allow_recursion;
    /// The arguments that run when the term starts.
    Asked<Arguments> run_at_start;
    /// The arguments that are thrown away as soon as another performs a visible event.
    Asked<Arguments> discarded;
    /// What switches the other arguments on.
    Asked<TurnedOnBy> turned_on_by;
    Level level;
    Asked<bool> commutative;

    unsigned precedence;
    unsigned associativity;
    /// The operator's text between, before or behind its operands, or as much of it as stands
    /// before its parameters.
    char const* symbol;
    /// What stands behind the parameters.
    char const* symbol_end = "";
    /// The construct in words; where it has parameters, the line above them.
    char const* description;
    /// What any number of arguments print when there are none; null where their number is fixed.
    char const* text_when_empty = nullptr;
    SameOperator same_operator = SameOperator::of_its_kind;
};

} // namespace Calder::ProcessCompiler::CSP
