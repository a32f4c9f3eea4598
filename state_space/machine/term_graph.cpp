#include "state_space/machine/term_graph.h"

#include "process_compiler/kinds.h"
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

/// Tarjan's search with its own stack in the place of recursion.
class ComponentSearch {
  public:
    explicit ComponentSearch(std::vector<Vertex> const& vertices)
        : m_vertices(vertices), m_places(vertices.size()) {}

    std::vector<std::vector<VertexNumber>> run() {
        for (VertexNumber vertex = 0; vertex < m_vertices.size(); ++vertex) {
            if (m_places[vertex].index == unseen) {
                search_from(vertex);
            }
        }
        return std::move(m_components);
    }

  private:
    static constexpr std::uint32_t unseen = 0;

    struct Place {
        std::uint32_t index = unseen;
        std::uint32_t low = 0;
        std::uint32_t followed = 0;
        bool is_open = false;
    };

    void enter(VertexNumber vertex) {
        m_places[vertex].index = m_places[vertex].low = ++m_last_index;
        m_places[vertex].is_open = true;
        m_open.push_back(vertex);
        m_path.push_back(vertex);
    }

    void search_from(VertexNumber start) {
        enter(start);
        while (!m_path.empty()) {
            VertexNumber const vertex = m_path.back();
            Place& place = m_places[vertex];
            if (place.followed < m_vertices[vertex].next.size()) {
                VertexNumber const target = m_vertices[vertex].next[place.followed++];
                if (m_places[target].index == unseen) {
                    enter(target);
                } else if (m_places[target].is_open) {
                    place.low = std::min(place.low, m_places[target].index);
                }
            } else {
                leave(vertex);
            }
        }
    }

    void leave(VertexNumber vertex) {
        m_path.pop_back();
        if (!m_path.empty()) {
            Place& caller = m_places[m_path.back()];
            caller.low = std::min(caller.low, m_places[vertex].low);
        }
        if (m_places[vertex].low == m_places[vertex].index) {
            auto const first = std::find(m_open.rbegin(), m_open.rend(), vertex).base() - 1;
            m_components.emplace_back(first, m_open.end());
            m_open.erase(first, m_open.end());
            for (VertexNumber const member : m_components.back()) {
                m_places[member].is_open = false;
            }
        }
    }

    std::vector<Vertex> const& m_vertices;
    std::vector<Place> m_places;
    std::vector<VertexNumber> m_open;
    std::vector<VertexNumber> m_path;
    std::vector<std::vector<VertexNumber>> m_components;
    std::uint32_t m_last_index = unseen;
};

/// The levels and the refusals of one strongly connected component after another.
class LevelDecision {
  public:
    explicit LevelDecision(TermGraph& graph)
        : m_graph(graph), m_component_of(graph.vertices.size()) {}

    void run() {
        for (std::uint32_t number = 0; number < m_graph.components.size(); ++number) {
            std::vector<VertexNumber> const& members = m_graph.components[number];
            for (VertexNumber const member : members) {
                m_component_of[member] = number;
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
                if (m_component_of[vertex.next[index]] == m_component_of[member] &&
                    is_on_cycle(members, vertex, index) && !vertex.term->allows_recursion(index)) {
                    refuse(members, vertex.term, index);
                    return;
                }
            }
        }
    }

    /// Whether the step to argument `index`, within the component, is one of a cycle; a component
    /// of one vertex need not have any.
    bool is_on_cycle(std::vector<VertexNumber> const& members, Vertex const& vertex,
                     unsigned index) const {
        return members.size() > 1 || vertex.next[index] == members.front();
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
    std::vector<std::uint32_t> m_component_of;
};

} // namespace

TermGraph make_term_graph(ProcessPointer const& start, NamedProcessSource const& source) {
    TermGraph graph;
    graph.vertices = collect_vertices(start, source);
    graph.components = ComponentSearch(graph.vertices).run();
    LevelDecision(graph).run();
    return graph;
}

} // namespace Calder::StateSpace
