#pragma once

#include "script/builtins.h"
#include "script/suggestion.h"
#include "script/translation.h"

#include <initializer_list>
#include <span>
#include <string>

namespace Calder::Script {

/// Makes expressions of nodes, definition by definition. Its functions recurse along the syntax,
/// which nests no deeper than a term may.
class Translator {
  public:
    Translator(TokenList const& tokens, SyntaxTree const& tree, NameTable const& names,
               Values::ValueStore& store, Diagnostics& diagnostics);

    Translation run();

  private:
    using Operands = std::vector<unsigned>;
    using Use = EventLiteral::Use;

    /// What is known of the fields behind a channel.
    struct Fields {
        bool are_literal = false;
        unsigned unknown = none; // a name that stands for nothing
    };
    /// What a comprehension yields.
    enum class Results : unsigned char { values, beginnings, processes, renamed, alphabets };

    // translation.cpp: definitions and declarations
    void translate_definition(unsigned number);
    unsigned body(NamedDefinition const& named, unsigned node);
    void check_fragment(unsigned node);
    unsigned kept(unsigned process, unsigned node);
    void translate_datatype(unsigned node);
    unsigned alternative(unsigned node, Translation::Datatype& datatype);
    void translate_declaration(unsigned node);
    unsigned field_values(unsigned node);
    Operands captured_arguments(unsigned definition, unsigned node);

    // translate_values.cpp: where a value is wanted
    unsigned value(unsigned node);
    unsigned value_of_number(unsigned node);
    unsigned value_of_name(unsigned node);
    unsigned value_of_unbound_name(unsigned node);
    unsigned value_of_call(unsigned node);
    unsigned value_of_path(unsigned node);
    unsigned value_of_operation(unsigned node);
    bool refuse_sum_of_processes(unsigned node);
    unsigned elements(Values::Operation operation, unsigned node);
    void append_element(unsigned node, Operands& operands);
    unsigned closure(unsigned node);
    unsigned comprehension(unsigned node, Results wanted);

    // translate_events.cpp: where an event or a set of events may stand
    /// A set of events.
    unsigned event_set(unsigned node);
    /// A sequence of them.
    unsigned trace(unsigned node);
    bool may_be_event(unsigned node, Use use) const;
    /// A name or a dotted node that may be an event; anything else that may have one as its value.
    unsigned event(unsigned node, Use use);
    unsigned add_declared(unsigned node);
    unsigned field(unsigned node, Fields& fields);
    void report_unknown(unsigned node);
    Wording suggestion_for_value(std::string_view name);

    // translate_patterns.cpp
    unsigned pattern(unsigned node);
    unsigned pattern_of_name(unsigned node);
    unsigned pattern_around_sequence(unsigned node);
    unsigned refuse_pattern(unsigned node);
    unsigned add_pattern(Values::Pattern pattern, Operands const& parts);
    unsigned variable_pattern(unsigned slot);

    // translate_processes.cpp: where a process is wanted
    unsigned process(unsigned node);
    unsigned process_of_name(unsigned node);
    unsigned process_of_construct(unsigned node);
    void append_operand(unsigned node, unsigned child, unsigned place, Operands& operands);
    bool is_set_operand(unsigned node, unsigned place) const;
    void append_pair(Construct construct, unsigned pair, Operands& operands);
    bool is_tick(unsigned node) const;
    unsigned prefix(unsigned node);
    bool uses_input(unsigned pattern) const;
    unsigned inputs(unsigned node, unsigned item, Operands const& pieces, bool as_set);
    void append_input(unsigned item, Operands& known, Values::Comprehension& made);
    unsigned output(unsigned node, Fields& fields);
    Wording hint_for_process(std::string_view name, bool is_call);

    // A call of a definition, from wherever it is seen.
    unsigned call(unsigned node, unsigned definition, unsigned arguments_node);
    unsigned arguments_of_path(unsigned node) const;
    void report_arguments(unsigned node, std::string_view name, unsigned wanted, unsigned given);

    unsigned add(Values::Expression expression, Operands const& operands);
    unsigned add_operation(Values::Operation operation, unsigned place, Operands const& operands);
    unsigned add_construct(Construct construct, unsigned place, Operands const& operands);
    unsigned add_constant(Values::Value value, unsigned place);
    unsigned add_variable(unsigned slot, unsigned place);
    unsigned add_comprehension(Values::Comprehension comprehension, unsigned place);
    unsigned broken(unsigned node);
    unsigned slot_of(unsigned variable);
    unsigned new_slots(unsigned count);

    unsigned count(unsigned node) const { return m_tree[node].child_count; }
    unsigned first(unsigned node) const { return m_tree[node].first_child; }
    std::string_view text_of(unsigned node) const { return m_tokens.text_of(m_tree[node].token); }
    bool is_lost(unsigned node) const;
    void report(unsigned node, Wording message);
    /// At the node's own token alone: its name, or its operator.
    void report_token(unsigned node, Wording message);

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    NameTable const& m_names;
    Values::ValueStore& m_store;
    Diagnostics& m_diagnostics;
    Translation m_made;

    unsigned m_definition = none;                   // the one that is being translated
    std::unordered_map<unsigned, unsigned> m_slots; // of its variables
    unsigned m_slot_count = 0;
    std::unordered_map<std::string_view, unsigned> m_datatype_definitions;
    unsigned m_suggestion_budget = suggestion_budget;
};

} // namespace Calder::Script
