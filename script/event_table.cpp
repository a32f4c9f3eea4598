#include "script/event_table.h"

#include "script/suggestion.h"

namespace Calder::Script {

using ProcessCompiler::EventPointer;
using ProcessCompiler::first_visible_event;
using ProcessCompiler::no_event;

namespace {

/// From one part of an event's name to the next, over the dot.
constexpr unsigned part_step = 2;

} // namespace

EventTable::EventTable(TokenList const& tokens, SyntaxTree const& tree,
                       ProcessCompiler::Session const& session, ChannelTable table,
                       Diagnostics& diagnostics)
    : m_tokens(tokens), m_tree(tree), m_session(session), m_table(std::move(table)),
      m_diagnostics(diagnostics), m_suggestion_budget(suggestion_budget) {}

unsigned EventTable::event_of_set(unsigned node) {
    return is_tick(node) ? ProcessCompiler::tick : number_of(node, true);
}

unsigned EventTable::visible_event(unsigned node) {
    if (is_tick(node)) {
        report(node, "'tick' may stand only in a set of events and in 'tick <-> tick'");
        return no_event;
    }
    return number_of(node, false);
}

unsigned EventTable::number_of(unsigned node, bool in_set) {
    std::string const name = name_of(node);
    unsigned const number = m_session.event_number(name);
    if (number >= first_visible_event) {
        return number;
    }
    if (is_known_to_be_wrong(node)) {
        return no_event;
    }
    if (std::vector<Range> const ranges = ranges_of(node); !ranges.empty()) {
        report(node,
               "the event " + in_quotes(name) + " is incomplete: fields are missing, as in " +
                   in_quotes(m_session.event_object(ranges[0].first)->name()) +
                   (in_set ? "; " + in_quotes("{| " + name + " |}") + " holds all that begin so"
                           : ""));
    } else {
        report(node, "the event " + in_quotes(name) + " is not declared" +
                         (is_process(name) ? ": " + in_quotes(name) + " is a process"
                                           : suggestion_for(name, false)));
    }
    return no_event;
}

bool EventTable::is_tick(unsigned node) const {
    return m_tree[node].token == m_tree[node].last_token && channel_of(node) == "tick";
}

bool EventTable::insert_closure(unsigned node, BitSet& events) {
    if (is_tick(node)) {
        events.insert(ProcessCompiler::tick);
        return true;
    }
    std::vector<Range> const ranges = ranges_of(node);
    for (Range const& range : ranges) {
        for (unsigned step = 0; step < range.count; ++step) {
            events.insert(range.first + step);
        }
    }
    if (ranges.empty() && !is_known_to_be_wrong(node)) {
        std::string const name = name_of(node);
        report(node,
               "no declared event begins with " + in_quotes(name) + suggestion_for(name, true));
    }
    return !ranges.empty();
}

std::string EventTable::name_of(unsigned node) const {
    std::string name(channel_of(node));
    for (unsigned token = m_tree[node].token; token != m_tree[node].last_token;) {
        token += part_step;
        name += '.';
        name += m_tokens.text_of(token);
    }
    return name;
}

std::string_view EventTable::channel_of(unsigned node) const {
    return m_tokens.text_of(m_tree[node].token);
}

/// Something else has been reported, which may well be all that is wrong with this event.
bool EventTable::is_known_to_be_wrong(unsigned node) const {
    for (unsigned token = m_tree[node].token; token <= m_tree[node].last_token; ++token) {
        if (m_tokens.is_reported(token)) {
            return true;
        }
    }
    return m_table.lost_names.contains(channel_of(node));
}

std::vector<EventTable::Range> EventTable::ranges_of(unsigned node) const {
    std::vector<Range> ranges;
    auto const channels = m_table.channels.find(channel_of(node));
    if (channels != m_table.channels.end()) {
        for (Channel const& channel : channels->second) {
            if (Range range{}; find_range(node, channel, range)) {
                ranges.push_back(range);
            }
        }
    }
    return ranges;
}

bool EventTable::find_range(unsigned node, Channel const& channel, Range& range) const {
    range = {0, 1};
    unsigned token = m_tree[node].token;
    for (Field const& field : *channel.fields) {
        auto const size = static_cast<unsigned>(field.values.size());
        if (token == m_tree[node].last_token) {
            range.first *= size;
            range.count *= size;
            continue;
        }
        token += part_step;
        auto const place = field.places.find(m_tokens.text_of(token));
        if (place == field.places.end()) {
            return false;
        }
        range.first = range.first * size + place->second;
    }
    range.first += channel.first_number;
    return token == m_tree[node].last_token;
}

bool EventTable::is_process(std::string_view name) {
    if (m_processes.empty()) {
        for (SyntaxTree::Definition const& definition : m_tree.definitions) {
            m_processes.insert(m_tokens.text_of(definition.name));
        }
    }
    return m_processes.contains(name);
}

std::string EventTable::suggestion_for(std::string const& name, bool may_be_channel) {
    Suggestion suggestion(name, m_suggestion_budget);
    unsigned const bound = m_session.number_bound();
    for (unsigned number = first_visible_event; number < bound && suggestion.wants_more();
         ++number) {
        std::string_view const known = m_session.event_object(number)->name();
        suggestion.consider(known);
        // Every channel has events, and its name is how they begin.
        if (may_be_channel) {
            suggestion.consider(known.substr(0, known.find('.')));
        }
    }
    return suggestion.text();
}

void EventTable::report(unsigned node, std::string message) {
    m_diagnostics.push_back(
        {m_tokens.location(m_tree[node].token, m_tree[node].last_token), std::move(message)});
}

} // namespace Calder::Script
