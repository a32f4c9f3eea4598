#include "state_space/machine/compile/term_graph.h"

#include "core/cycle_search.h"
#include "process_compiler/kinds.h"
#include "process_compiler/recursion_watch.h"
#include "state_space/stack_guard.h"
#include "state_space/state_table.h"

#include <algorithm>

namespace Calder::StateSpace {

using ProcessCompiler::CompilationLevel;
using ProcessCompiler::NamedProcess;
using ProcessCompiler::NamedProcessPointer;
using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::Process;
using ProcessCompiler::ProcessPointer;

namespace {

using Vertex = TermGraph::Vertex;

std::vector<Vertex> collect_vertices(ProcessPointer const& start,
                                     NamedProcessSource const& source) {
    StateTable terms;
    terms.find_or_add(start);
    std::vector<Vertex> vertices;
    while (vertices.size() < terms.size()) {
        Vertex vertex{terms.term(static_cast<VertexNumber>(vertices.size()))};
        Process const& term = *vertex.term;
        vertex.is_name = term.kind() == ProcessCompiler::named_process_kind;
        if (vertex.is_name) {
            vertex.next.push_back(
                terms.find_or_add(source.process(static_cast<NamedProcess const&>(term))));
        } else {
            for (unsigned index = 0; index < term.argument_count(); ++index) {
                vertex.next.push_back(terms.find_or_add(term.argument(index)));
            }
        }
        vertices.push_back(std::move(vertex));
    }
    return vertices;
}

void find_cycles(TermGraph& graph) {
    for_each_cycle(
        static_cast<VertexNumber>(graph.vertices.size()),
        [&](VertexNumber vertex) -> auto const& { return graph.vertices[vertex].next; },
        [&](std::span<VertexNumber const> members) {
            graph.cycles.emplace_back(members.begin(), members.end());
        });
}

/// The levels and the refusals of one cycle after another.
class LevelDecision {
  public:
    explicit LevelDecision(TermGraph& graph) : m_graph(graph), m_cycle_of(graph.vertices.size()) {}

    void run() {
        for (std::uint32_t number = 0; number < m_graph.cycles.size(); ++number) {
            std::vector<VertexNumber> const& members = m_graph.cycles[number];
            for (VertexNumber const member : members) {
                m_cycle_of[member] = number;
            }
            if (decide(members)) {
                refuse_forbidden_recursion(members);
            }
        }
    }

  private:
    /// Whether any of the members becomes a construct. Goes from what was found last to what was
    /// found first, as what is inside decides.
    bool decide(std::vector<VertexNumber> const& members) {
        bool any = false;
        for (bool changed = true; changed;) {
            changed = false;
            for (auto member = members.rbegin(); member != members.rend(); ++member) {
                Vertex& vertex = m_graph.vertices[*member];
                if (!vertex.is_construct && wants_to_be_construct(vertex)) {
                    vertex.is_construct = changed = any = true;
                }
            }
            changed = changed && members.size() > 1;
        }
        return any;
    }

    bool wants_to_be_construct(Vertex const& vertex) const {
        bool const inside =
            std::any_of(vertex.next.begin(), vertex.next.end(),
                        [this](VertexNumber next) { return m_graph.vertices[next].is_construct; });
        if (vertex.is_name || vertex.next.empty()) {
            return inside; // a term without arguments has nothing to compile
        }
        return inside || vertex.term->preferred_compilation_level(inside) == CompilationLevel::high;
    }

    void refuse_forbidden_recursion(std::vector<VertexNumber> const& members) {
        for (VertexNumber const member : members) {
            Vertex const& vertex = m_graph.vertices[member];
            for (unsigned index = 0; index < vertex.next.size() && !vertex.is_name; ++index) {
                if (m_cycle_of[vertex.next[index]] == m_cycle_of[member] &&
                    !vertex.term->allows_recursion(index)) {
                    refuse(members, vertex.term, index);
                    return;
                }
            }
        }
    }

    void refuse(std::vector<VertexNumber> const& members, ProcessPointer const& construct,
                unsigned argument) {
        RefusedRecursion& refused =
            m_graph.refused.emplace_back(RefusedRecursion{construct, argument});
        for (VertexNumber const member : members) {
            Vertex& vertex = m_graph.vertices[member];
            vertex.is_construct = false;
            if (vertex.is_name) {
                refused.names.emplace_back(static_cast<NamedProcess*>(vertex.term.get()));
            }
        }
        std::sort(refused.names.begin(), refused.names.end(),
                  [](NamedProcessPointer const& left, NamedProcessPointer const& right) {
                      return left->number() < right->number();
                  });
    }

    TermGraph& m_graph;
    std::vector<std::uint32_t> m_cycle_of;
};

} // namespace

TermGraph make_term_graph(ProcessPointer const& start, NamedProcessSource const& source) {
    TermGraph graph;
    try {
        ProcessCompiler::RecursionWatch const watch(StackGuard().lowest());
        graph.vertices = collect_vertices(start, source);
    } catch (ProcessCompiler::NestedTooDeeply const&) {
        graph.is_too_deep = true;
        return graph;
    }
    find_cycles(graph);
    LevelDecision(graph).run();
    return graph;
}

} // namespace Calder::StateSpace
