#include "state_space/machine/compile/term_graph.h"

#include "core/cycle_search.h"
#include "process_compiler/kinds.h"
#include "process_compiler/recursion_watch.h"
#include "state_space/memory.h"
#include "state_space/search_monitor.h"
#include "state_space/stack_guard.h"
#include "state_space/state_table.h"

#include <algorithm>
#include <new>

namespace Calder::StateSpace {

using ProcessCompiler::CompilationLevel;
using ProcessCompiler::NamedProcess;
using ProcessCompiler::NamedProcessPointer;
using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;

namespace {

using Vertex = TermGraph::Vertex;

/// From the start, each term once; an argument or what a name stands for behind it.
class Collector {
  public:
    Collector(NamedProcessSource const& source, ExplorationOptions const& limits)
        : m_source(source), m_monitor(limits, SearchMonitor::longest_for_terms) {}

    TermGraph run(ProcessPointer const& start) {
        TermGraph graph;
        try {
            ProcessCompiler::RecursionWatch const watch(StackGuard().lowest(),
                                                        [this] { look_between_terms(); });
            graph.has_too_many_instances = !collect(start);
        } catch (ProcessCompiler::NestedTooDeeply const&) {
            graph.outcome = Outcome::nesting_limit;
        } catch (std::bad_alloc const&) {
            graph.outcome = Outcome::memory_limit;
        } catch (SearchEnded const&) {
            graph.outcome = m_monitor.outcome();
        }
        if (graph.is_whole()) {
            graph.vertices = std::move(m_vertices);
        }
        return graph;
    }

  private:
    /// False when there are too many instances.
    bool collect(ProcessPointer const& start) {
        m_terms.find_or_add(start);
        while (m_vertices.size() < m_terms.size()) {
            Vertex vertex{m_terms.term(static_cast<VertexNumber>(m_vertices.size()))};
            vertex.is_name = vertex.term->kind() == ProcessCompiler::named_process_kind;
            if (!vertex.is_name) {
                follow_arguments(vertex);
            } else if (!follow_name(vertex)) {
                return false;
            }
            m_monitor.go_on(1 + vertex.next.size(), growth_bytes());
            m_vertices.push_back(std::move(vertex));
        }
        return true;
    }

    void follow_arguments(Vertex& vertex) {
        for (unsigned index = 0; index < vertex.term->argument_count(); ++index) {
            vertex.next.push_back(m_terms.find_or_add(vertex.term->argument(index)));
        }
    }

    bool follow_name(Vertex& vertex) {
        auto const& name = static_cast<NamedProcess const&>(*vertex.term);
        if (m_source.is_sequential(name)) {
            return true;
        }
        if (m_source.is_instance(name) && ++m_instances > most_instances) {
            return false;
        }
        vertex.next.push_back(m_terms.find_or_add(m_source.process(name)));
        return true;
    }

    std::uint64_t growth_bytes() const noexcept {
        std::uint64_t const ahead = m_monitor.work_ahead();
        return m_terms.growth_bytes(ahead) + StateSpace::growth_bytes(m_vertices, ahead);
    }

    /// Making an instance, or telling terms apart, may take long.
    void look_between_terms() {
        if (m_monitor.is_overdue() && !m_monitor.look_around({}, growth_bytes())) {
            throw SearchEnded();
        }
    }

    NamedProcessSource const& m_source;
    SearchMonitor m_monitor;
    StateTable m_terms;
    std::vector<Vertex> m_vertices;
    unsigned m_instances = 0;
};

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

TermGraph make_term_graph(ProcessPointer const& start, NamedProcessSource const& source,
                          ExplorationOptions const& limits) {
    TermGraph graph = Collector(source, limits).run(start);
    find_cycles(graph);
    LevelDecision(graph).run();
    return graph;
}

} // namespace Calder::StateSpace
