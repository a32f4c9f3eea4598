#pragma once

#include "script/event_declarations.h"

#include <unordered_set>

namespace Calder::Script {

/// Finds the events that stand in terms. What is not declared is reported, and is no_event.
class EventTable {
  public:
    EventTable(TokenList const& tokens, SyntaxTree const& tree,
               ProcessCompiler::Session const& session, ChannelTable table,
               Diagnostics& diagnostics);

    /// The event at a node: listed in a set, where tick may be written, and elsewhere, where not.
    unsigned event_of_set(unsigned node);
    unsigned visible_event(unsigned node);
    bool is_tick(unsigned node) const;
    /// Adds every event that is the one at a node or begins with it, field by field; false, and
    /// reported, when there is none.
    bool insert_closure(unsigned node, BitSet& events);

    /// Whether events begin with this name.
    bool is_channel(std::string_view name) const { return m_table.channels.contains(name); }

  private:
    struct Range {
        unsigned first;
        unsigned count;
    };

    std::string name_of(unsigned node) const;
    std::string_view channel_of(unsigned node) const;
    bool is_known_to_be_wrong(unsigned node) const;
    std::vector<Range> ranges_of(unsigned node) const;
    bool find_range(unsigned node, Channel const& channel, Range& range) const;
    unsigned number_of(unsigned node, bool in_set);
    bool is_process(std::string_view name);
    std::string suggestion_for(std::string const& name, bool may_be_channel);
    void report(unsigned node, std::string message);

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    ProcessCompiler::Session const& m_session;
    ChannelTable m_table;
    Diagnostics& m_diagnostics;
    unsigned m_suggestion_budget;
    std::unordered_set<std::string_view> m_processes; // that are defined; filled when first needed
};

} // namespace Calder::Script
