#pragma once

#include "process_compiler/named_process_source.h"
#include "state_space/exploration_options.h"
#include "state_space/export.h"

#include <cstdint>
#include <vector>

namespace Calder::StateSpace {

/// Where a vertex stands in TermGraph::vertices.
using VertexNumber = std::uint32_t;

/// Recursion that no machine can follow: a name stands inside an argument for which its construct
/// does not allow that (`allows_recursion`), so that each time it comes round there is one more
/// construct around it.
struct RefusedRecursion {
    /// @{
    /// The construct and the number of its argument.
    ProcessCompiler::ProcessPointer construct;
    unsigned argument = 0;
    /// @}
    /// The names on the cycle, in the order of their source.
    std::vector<ProcessCompiler::NamedProcessPointer> names{};
};

/// A machine is made of so many instances at most, leaving out those that are sequential. Each has
/// to be made before the first step, and `P(n) = a -> (Q ||| P(n + 1))` has no end of them. They
/// take 0.3 s and 70 MiB where their terms are small.
constexpr unsigned most_instances = 100'000;

/// What a term is made of: its arguments, their arguments and so on, and behind each name what it
/// stands for, unless that is sequential (NamedProcessSource). Equal terms are one vertex.
struct TermGraph {
    /// A term, a name or an instance, as often as it may occur.
    struct Vertex {
        /// One of those that are equal.
        ProcessCompiler::ProcessPointer term;
        /// The arguments in order; of a name, what it stands for; none of a name that is
        /// sequential.
        std::vector<VertexNumber> next{};
        /// Of a named process: `next` is then what it stands for.
        bool is_name = false;
        /// Whether it becomes a construct of the machine; otherwise it is explored as it stands.
        /// A term does if it prefers the high level, or if something inside it does: a prefix
        /// before a network must not make one leaf of the network.
        bool is_construct = false;
    };

    /// Vertex 0 is the term asked for.
    std::vector<Vertex> vertices;
    /// Vertices that lead to each other, those that a cycle leads to before it; a vertex alone is
    /// one, too.
    std::vector<std::vector<VertexNumber>> cycles;
    /// One for each cycle that has any.
    std::vector<RefusedRecursion> refused;

    /// Why there is nothing else here: a limit was met, or the terms nest too deeply for the stack
    /// to be told apart.
    Outcome outcome = Outcome::complete;
    /// The same reason: there are more than `most_instances`.
    bool has_too_many_instances = false;

    /// Otherwise the vertices are not to be used.
    [[nodiscard]] bool is_whole() const noexcept {
        return outcome == Outcome::complete && !has_too_many_instances;
    }
};

/// Linear in the number of distinct terms and their arguments, but for the levels of what is on
/// cycles. Asks for what every name stands for that is not sequential, so instances are made;
/// `limits` are looked at meanwhile, those on states do not count. Does not recurse, so a long chain
/// of names needs no stack.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT TermGraph make_term_graph(
    ProcessCompiler::ProcessPointer const& start, ProcessCompiler::NamedProcessSource const& source,
    ExplorationOptions const& limits = {});

} // namespace Calder::StateSpace
