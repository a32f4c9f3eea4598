#pragma once

#include "tests/oracle/plain_term.h"

namespace Calder::Oracle {

/// One way in which a construct's transitions and its formats are meant to differ. Elsewhere the
/// machine that a term compiles to is strongly bisimilar to the term.
struct DeliberateDifference {
    char const* construct;
    char const* where;
    char const* by_transitions;
    char const* by_formats;
    /// Whether this very term is such a place; its arguments are not looked at.
    bool (*is_at)(Term const&);
    /// A term that behaves differently for this reason.
    TermPointer example;
};

/// All of them.
std::vector<DeliberateDifference> const& deliberate_differences();

/// Whether one of them stands anywhere in the model.
bool has_deliberate_difference(Model const& model);

} // namespace Calder::Oracle
