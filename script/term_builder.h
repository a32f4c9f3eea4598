#pragma once

#include "process_compiler/named_process_source.h"
#include "script/definition_graph.h"
#include "script/event_table.h"

#include <vector>

namespace Calder::Script {

/// Builds the terms of all definitions, parts before wholes, and defines the names on cycles.
///
/// What cannot be built is reported and stands as STOP in the terms around it, so that the errors
/// of those are found too.
class TermBuilder {
  public:
    TermBuilder(TokenList const& tokens, SyntaxTree const& tree, DefinitionGraph const& graph,
                EventTable& events, ProcessCompiler::NamedProcessSource& source,
                Diagnostics& diagnostics);

    void build_all();

    /// By definition: what it says. Null when its term cannot be read or is too deep.
    std::vector<ProcessCompiler::ProcessPointer> const& bodies() const { return m_bodies; }

  private:
    /// What a node has become.
    struct Value {
        ProcessCompiler::ProcessPointer term; // null when it is too deep
        unsigned number = 0;                  // of a term its depth, of a set its place
    };
    struct Set {
        BitSet events;
        bool is_complete;
    };

    void build(unsigned definition);
    Value value_of_name(unsigned node);
    Value value_of_construct(unsigned node);
    Value value_of_set(unsigned node);
    void check_one_set(unsigned node);
    Parts parts_of(unsigned node);
    std::vector<unsigned> event_numbers(Construct construct, std::vector<unsigned> const& events);
    unsigned depth_over(unsigned node) const;
    void report(unsigned token, std::string message);

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    DefinitionGraph const& m_graph;
    EventTable& m_events;
    ProcessCompiler::NamedProcessSource& m_source;
    Diagnostics& m_diagnostics;

    ProcessCompiler::ProcessPointer const m_stand_in; // for what cannot be built
    std::vector<ProcessCompiler::ProcessPointer> m_bodies;
    std::vector<unsigned> m_depths; // by definition
    std::vector<Value> m_values;    // by node
    std::vector<Set> m_sets;        // of the definition that is being built
    bool m_uses_deep_name = false;  // so does this definition
};

} // namespace Calder::Script
