#pragma once

#include <cstddef>

namespace Calder::Script {

// What a script may not exceed. Going beyond is an error with a place, like any other.

/// Terms are at most so deep, with names replaced by what they name. Everything that is done with a
/// term may recurse on its depth, and does well at this one on a stack of 8 MB, sanitized or not.
constexpr unsigned nesting_limit = 2000;
/// A node of the syntax may stand a few levels deeper than the term that it is part of. What is
/// deeper is reported, and nothing recurses into it.
constexpr unsigned deepest_node = nesting_limit + 20;
/// Events in all.
constexpr unsigned event_limit = 1'000'000;
/// Characters of the names of all events together.
constexpr std::size_t event_text_limit = 100'000'000;
/// Bytes of a script. Reading one takes up to a hundred times as much memory.
constexpr std::size_t text_limit = 100'000'000;

} // namespace Calder::Script
