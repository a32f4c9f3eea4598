#include "script/script.h"

#include "process_compiler/unguarded_recursion.h"
#include "script/definition_graph.h"
#include "script/event_table.h"
#include "script/scanner.h"
#include "script/syntax_builder.h"
#include "script/term_builder.h"

#include <utility>

namespace Calder::Script {

using ProcessCompiler::NameCycle;

/// One reading of a script, from the text to the terms.
class Reader {
  public:
    ReadResult read(std::string_view text) {
        TokenList const tokens = scan(text, m_diagnostics);
        SyntaxTree const tree = parse(tokens, m_diagnostics);
        ChannelTable channels = declare_events(tokens, tree, m_script->m_session, m_diagnostics);
        EventTable events(tokens, tree, m_script->m_session, std::move(channels), m_diagnostics);
        DefinitionGraph const graph = connect_definitions(tokens, tree, events, m_diagnostics);
        TermBuilder builder(tokens, tree, graph, events, m_script->m_processes, m_diagnostics);
        builder.build_all();
        fill(tokens, tree, graph, builder);
        report_unguarded_recursion();
        sort_and_remove_repetitions(m_diagnostics);
        if (!m_diagnostics.empty()) {
            m_script.reset();
        }
        return {std::move(m_script), std::move(m_diagnostics)};
    }

  private:
    void fill(TokenList const& tokens, SyntaxTree const& tree, DefinitionGraph const& graph,
              TermBuilder const& builder) {
        for (std::size_t index = 0; index < tree.definitions.size(); ++index) {
            unsigned const token = tree.definitions[index].name;
            Script::Definition& definition = m_script->m_definitions.emplace_back();
            definition.name = tokens.text_of(token);
            definition.location = tokens.location(token);
            definition.body = builder.bodies()[index];
            definition.term = definition.body;
            if (graph.is_on_cycle[index]) {
                definition.term = m_script->m_processes.reference(definition.name);
            }
        }
        for (std::size_t index = 0; index < tree.definitions.size(); ++index) {
            m_script->m_places.try_emplace(m_script->m_definitions[index].name, index);
        }
    }

    void report_unguarded_recursion() {
        for (NameCycle const& cycle : find_unguarded_recursion(m_script->m_processes)) {
            m_diagnostics.push_back({m_script->find(cycle[0]->name())->location, describe(cycle)});
        }
    }

    std::unique_ptr<Script> m_script{new Script};
    Diagnostics m_diagnostics;
};

Script::Script() = default;

Script::~Script() = default;

Script::Definition const* Script::find(std::string_view name) const {
    auto const place = m_places.find(name);
    return place == m_places.end() ? nullptr : &m_definitions[place->second];
}

ReadResult read_script(std::string_view text) {
    if (text.size() > text_limit) {
        return {nullptr,
                {{{1, 1, 1},
                  "the script is too long: more than " + std::to_string(text_limit) + " bytes"}}};
    }
    return Reader().read(text);
}

} // namespace Calder::Script
