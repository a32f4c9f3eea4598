#include "state_space/machine/compile/compile.h"

#include "state_space/machine/machine_refusal.h"
#include "state_space/watched_exploration.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace Calder::StateSpace {

using HighLevelMachine::ComponentEvent;
using HighLevelMachine::UnCompiledFormat;
using HighLevelMachine::UnCompiledRule;
using ProcessCompiler::Formats;
using ProcessCompiler::NamedProcessSource;

namespace {

/// The events of the rules that can fire, in the formats that such rules lead to.
BitSet alphabet_of(Formats const& formats, std::vector<BitSet> const& alphabets) {
    BitSet events;
    std::vector<bool> is_reached(formats.size());
    std::vector<unsigned> waiting{0};
    is_reached[0] = true;
    while (!waiting.empty()) {
        UnCompiledFormat const& format = formats[waiting.back()];
        waiting.pop_back();
        for (UnCompiledRule const& rule : format.rules) {
            if (can_fire(rule, format, alphabets)) {
                events.insert(rule.event);
                if (!is_reached[rule.target_format]) {
                    is_reached[rule.target_format] = true;
                    waiting.push_back(rule.target_format);
                }
            }
        }
    }
    return events;
}

/// The argument that runs alone in the format while each of its events, and nothing else, passes
/// through; `none` if there is no such argument.
std::uint32_t argument_passed_through(UnCompiledFormat const& format, unsigned index,
                                      std::vector<BitSet> const& alphabets) {
    if (format.active_components.size() != 1) {
        return none;
    }
    unsigned const argument = format.active_components.front();
    BitSet passed;
    for (UnCompiledRule const& rule : format.rules) {
        ComponentEvent const through(std::pair(argument, rule.event));
        if (rule.target_format != index || rule.component_events.size() != 1 ||
            rule.component_events.front() != through) {
            return none;
        }
        passed.insert(rule.event);
    }
    return passed == alphabets[argument] ? argument : none;
}

bool has_too_large_event(LabelledTransitionSystem const& lts) {
    for (StateNumber state = 0; state < lts.explored_count(); ++state) {
        auto const row = lts.transitions(state);
        if (std::any_of(row.begin(), row.end(),
                        [](Transition step) { return step.event > most_event; })) {
            return true;
        }
    }
    return false;
}

bool has_too_large_event(Formats const& formats) {
    return std::any_of(formats.begin(), formats.end(), [](UnCompiledFormat const& format) {
        return std::any_of(format.rules.begin(), format.rules.end(),
                           [](UnCompiledRule const& rule) { return rule.event > most_event; });
    });
}

/// Before the event gets into an alphabet, which has a bit for every number below it.
template <typename Events> void refuse_too_large_events(Events const& events) {
    if (has_too_large_event(events)) {
        throw MachineRefusal(fmt::format("it has an event whose number is above {}", most_event));
    }
}

std::uint64_t count_rules(Formats const& formats) {
    return std::accumulate(formats.begin(), formats.end(), std::uint64_t{1},
                           [](std::uint64_t count, UnCompiledFormat const& format) {
                               return count + format.rules.size();
                           });
}

class Compiler {
  public:
    Compiler(TermGraph graph, NamedProcessSource const& source, CompilationOptions const& options)
        : m_graph(std::move(graph)),
          m_source(source), m_limits{options.max_leaf_states, options.max_memory, options.progress},
          m_part_of(m_graph.vertices.size(), none) {}

    Compilation run() {
        auto machine = std::make_unique<Machine>();
        m_machine = machine.get();
        try {
            choose_parts();
            explore_leaves();
            describe_constructs();
        } catch (MachineRefusal const& refusal) {
            return {nullptr, refusal.what(), m_monitor.outcome(), m_met_leaf_limit};
        } catch (SearchEnded const&) {
            return {nullptr, {}, m_monitor.outcome()};
        }
        return {std::move(machine), {}, Outcome::complete};
    }

  private:
    /// A name of a construct is the construct; a name of anything else is explored under its name.
    VertexNumber without_names(VertexNumber vertex) const {
        while (m_graph.vertices[vertex].is_name && m_graph.vertices[vertex].is_construct) {
            vertex = m_graph.vertices[vertex].next.front();
        }
        return vertex;
    }

    PartNumber part_of(VertexNumber named) {
        VertexNumber const vertex = without_names(named);
        if (m_part_of[vertex] == none) {
            m_part_of[vertex] = static_cast<PartNumber>(m_machine->parts.size());
            m_machine->parts.push_back(Part{m_graph.vertices[vertex].term});
            m_vertex_of.push_back(vertex);
        }
        return m_part_of[vertex];
    }

    /// From the start, no further than to what is explored as it stands.
    void choose_parts() {
        m_machine->start = part_of(0);
        for (PartNumber number = 0; number < m_machine->parts.size(); ++number) {
            TermGraph::Vertex const& vertex = m_graph.vertices[m_vertex_of[number]];
            if (!vertex.is_construct) {
                continue;
            }
            std::vector<PartNumber> arguments;
            arguments.reserve(vertex.next.size());
            for (VertexNumber const next : vertex.next) {
                arguments.push_back(part_of(next));
            }
            m_machine->parts[number].arguments = std::move(arguments);
        }
    }

    void explore_leaves() {
        for (PartNumber number = 0; number < m_machine->parts.size(); ++number) {
            Part& part = m_machine->parts[number];
            if (m_graph.vertices[m_vertex_of[number]].is_construct) {
                continue;
            }
            Exploration const exploration = explore(part.term, m_source, m_monitor);
            if (exploration.outcome == Outcome::state_limit) {
                m_met_leaf_limit = true;
                throw MachineRefusal(fmt::format("one of its components has more than {} states",
                                                 m_limits.max_states));
            }
            if (exploration.outcome != Outcome::complete) {
                throw SearchEnded();
            }
            refuse_too_large_events(exploration.lts);
            part.leaf = static_cast<std::uint32_t>(m_machine->leaves.size());
            m_machine->leaves.push_back(std::make_unique<Leaf>(part.term, exploration.lts));
            part.alphabet = m_machine->leaves.back()->alphabet();
            m_monitor.go_on(exploration.lts.transition_count()); // they stand there again
        }
    }

    /// What a construct leads to comes before it, but on cycles: there the alphabets grow from
    /// nothing until they grow no more.
    void describe_constructs() {
        for (std::vector<VertexNumber> const& members : m_graph.cycles) {
            for (bool changed = true; changed;) {
                changed = false;
                for (auto member = members.rbegin(); member != members.rend(); ++member) {
                    if (m_part_of[*member] != none && m_graph.vertices[*member].is_construct &&
                        describe(m_machine->parts[m_part_of[*member]])) {
                        changed = members.size() > 1;
                    }
                }
            }
        }
    }

    /// Formats and alphabet by the present alphabets of the arguments; whether the alphabet grew.
    bool describe(Part& part) {
        std::vector<BitSet> alphabets;
        alphabets.reserve(part.arguments.size());
        for (PartNumber const argument : part.arguments) {
            alphabets.push_back(m_machine->parts[argument].alphabet);
        }
        part.formats = std::move(*part.term->high_level_formats(alphabets));
        refuse_too_large_events(part.formats);
        m_monitor.go_on(count_rules(part.formats));
        part.passed_through.clear();
        for (unsigned index = 0; index < part.formats.size(); ++index) {
            part.passed_through.push_back(
                argument_passed_through(part.formats[index], index, alphabets));
        }
        BitSet events = alphabet_of(part.formats, alphabets);
        bool const changed = events != part.alphabet;
        part.alphabet = std::move(events);
        return changed;
    }

    TermGraph m_graph;
    NamedProcessSource const& m_source;
    ExplorationOptions const m_limits; // of a leaf
    SearchMonitor m_monitor{m_limits, SearchMonitor::longest_for_terms};
    bool m_met_leaf_limit = false;
    std::vector<PartNumber> m_part_of;     // by vertex
    std::vector<VertexNumber> m_vertex_of; // by part
    Machine* m_machine = nullptr;
};

} // namespace

Compilation compile(TermGraph graph, NamedProcessSource const& source,
                    CompilationOptions const& options) {
    if (graph.has_too_many_instances) {
        return {nullptr, fmt::format("it is made of more than {} instances", most_instances), {}};
    }
    if (!graph.is_whole()) {
        return {nullptr, {}, graph.outcome};
    }
    if (!graph.refused.empty()) {
        return {nullptr, "it comes back inside arguments that do not allow recursion", {}};
    }
    return Compiler(std::move(graph), source, options).run();
}

} // namespace Calder::StateSpace
