#pragma once

#include "process_compiler/named_process_source.h"

#include <cstdint>
#include <vector>

namespace Calder::StateSpace {

using VertexNumber = std::uint32_t;

/// Recursion that no machine can follow: a name stands inside an argument for which its construct
/// does not allow that (`allows_recursion`), so that each time it comes round there is one more
/// construct around it.
struct RefusedRecursion {
    /// The construct and the number of its argument.
    ProcessCompiler::ProcessPointer construct;
    unsigned argument = 0;
    /// The names on the cycle, in the order of their source.
    std::vector<ProcessCompiler::NamedProcessPointer> names{};
};

/// What a term is made of: its arguments, their arguments and so on, and behind each name what it
/// stands for. Equal terms are one vertex.
struct TermGraph {
    struct Vertex {
        ProcessCompiler::ProcessPointer term;
        /// The arguments in order; of a name, what it stands for.
        std::vector<VertexNumber> next{};
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
    /// Its terms nest too deeply for the stack to be told apart; then there is nothing else here.
    bool is_too_deep = false;
};

/// Linear in the number of distinct terms and their arguments, but for the levels of what is on
/// cycles. Every name must be defined. Does not recurse, so a long chain of names needs no stack.
[[nodiscard]] TermGraph make_term_graph(ProcessCompiler::ProcessPointer const& start,
                                        ProcessCompiler::NamedProcessSource const& source);

} // namespace Calder::StateSpace
