#include "script/call_graph.h"

#include "core/cycle_search.h"

#include <algorithm>

namespace Calder::Script {

namespace {

using Values::CallMode;
using Values::Expression;
using Values::ExpressionKind;

class Connection {
  public:
    Connection(NameTable const& names, Translation& translation)
        : m_names(names), m_translation(translation), m_count(names.definitions.size()),
          m_called(m_count), m_prefers_machine(m_count) {}

    CallGraph run() {
        for (unsigned number = 0; number < m_count; ++number) {
            look_at(number);
        }
        m_graph.is_reference.resize(m_count);
        m_graph.is_sequential.resize(m_count);
        for_each_cycle(
            static_cast<unsigned>(m_count),
            [&](unsigned definition) -> auto const& { return m_called[definition]; },
            [&](std::span<unsigned const> members) { take_cycle(members); });
        for (unsigned number = 0; number < m_count; ++number) {
            m_translation.program.definitions[number].mode = mode_of(number);
        }
        return std::move(m_graph);
    }

  private:
    void look_at(unsigned number) {
        unsigned const end = m_translation.first_expressions[number + 1];
        for (unsigned each = m_translation.first_expressions[number]; each < end; ++each) {
            Expression const& expression = m_translation.program.expressions[each];
            if (expression.kind == ExpressionKind::call && expression.number < m_count) {
                m_called[number].push_back(expression.number);
            } else if (expression.kind == ExpressionKind::construct &&
                       expression.number != keep_construct &&
                       entry_of(static_cast<Construct>(expression.number)).prefers_machine) {
                m_prefers_machine[number] = true;
            }
        }
    }

    void take_cycle(std::span<unsigned const> members) {
        m_graph.order.insert(m_graph.order.end(), members.rbegin(), members.rend());
        unsigned const last = members.back();
        bool const is_cycle =
            members.size() > 1 ||
            std::find(m_called[last].begin(), m_called[last].end(), last) != m_called[last].end();
        // What is called outside the cycle is known; inside it, sequential until something is not.
        bool is_sequential = true;
        for (unsigned const member : members) {
            m_graph.is_sequential[member] = true;
        }
        for (unsigned const member : members) {
            is_sequential =
                is_sequential && !m_prefers_machine[member] &&
                std::all_of(m_called[member].begin(), m_called[member].end(),
                            [&](unsigned called) { return m_graph.is_sequential[called]; });
        }
        for (unsigned const member : members) {
            m_graph.is_reference[member] = is_cycle && m_names.definitions[member].is_process;
            m_graph.is_sequential[member] = is_sequential;
        }
    }

    CallMode mode_of(unsigned number) const {
        NamedDefinition const& definition = m_names.definitions[number];
        if (m_graph.is_reference[number]) {
            return CallMode::refer;
        }
        // A local value without parameters of its own is like one of the script.
        bool const once = definition.is_process || definition.parameter_count == 0;
        return once ? CallMode::remember : CallMode::evaluate;
    }

    NameTable const& m_names;
    Translation& m_translation;
    std::size_t m_count;
    std::vector<std::vector<unsigned>> m_called; // by definition
    std::vector<bool> m_prefers_machine;         // by definition: itself
    CallGraph m_graph;
};

} // namespace

CallGraph connect_calls(NameTable const& names, Translation& translation) {
    return Connection(names, translation).run();
}

} // namespace Calder::Script
