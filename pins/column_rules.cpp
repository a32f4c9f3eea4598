#include "pins/column_rules.h"

#include "pins/leaf_events.h"
#include "process_compiler/event_numbers.h"
#include "state_space/machine/machine_refusal.h"
#include "state_space/mix.h"

#include <fmt/core.h>

#include <algorithm>
#include <unordered_map>

namespace Calder::Pins {

using StateSpace::FlatRules;
using StateSpace::Leaf;
using StateSpace::none;
using StateSpace::Participant;
using StateSpace::SearchMonitor;
using Condition = ColumnRules::Condition;
using Rule = ColumnRules::Rule;
using Source = ColumnRules::Source;
using Taker = ColumnRules::Taker;
using Write = ColumnRules::Write;

namespace {

/// A rule of a section in one of its configurations.
struct Option {
    std::uint32_t configuration;
    FlatRules::Rule const* rule;
};

/// A section that takes part in a rule of the frame, and what it can do for that.
struct Party {
    Sections::Section const* section;
    std::vector<Option> options;
    std::size_t chosen = 0;
};

class Expansion {
  public:
    Expansion(Sections const& sections, std::size_t most_rules, SearchMonitor& monitor)
        : m_sections(sections), m_most_rules(most_rules), m_monitor(monitor) {}

    ColumnRules run() {
        FlatRules const& frame = m_sections.frame();
        for (FlatRules::Rule const& rule : frame.rules) {
            find_parties(frame.participants_of(rule));
            bool const can_fire =
                std::all_of(m_parties.begin(), m_parties.end(),
                            [](Party const& party) { return !party.options.empty(); });
            if (can_fire) {
                do {
                    add(rule.event);
                } while (choose_next());
            }
        }
        mark_the_end();
        return std::move(m_result);
    }

  private:
    void find_parties(std::span<Participant const> participants);
    bool choose_next();
    void add(unsigned event);
    void add_choice(Sections::Section const& section, Option const& option);
    void add_moves(Sections::Section const& section, Option const& option,
                   std::uint32_t first_taker);
    void drop_double(Rule const& rule);
    std::uint64_t hash(Rule const& rule) const;
    bool equal(Rule const& left, Rule const& right) const;
    void mark_the_end();
    bool may_follow(Rule const& rule, Rule const& tick);

    Sections const& m_sections;
    std::size_t m_most_rules;
    SearchMonitor& m_monitor;
    ColumnRules m_result;
    LeafEvents m_leaf_events;
    std::vector<Party> m_parties;
    std::uint32_t m_first_taker = 0;          // of the rule that is being made
    std::vector<std::uint32_t> m_slot_before; // by column of leaves of a section
    std::unordered_multimap<std::uint64_t, std::uint32_t>
        m_numbers; // by hash, of the event's rules
};

void Expansion::find_parties(std::span<Participant const> participants) {
    m_parties.clear();
    for (Participant const& participant : participants) {
        Party party{&m_sections.sections()[participant.slot], {}};
        auto const& configurations = party.section->shape->configurations;
        for (std::uint32_t number = 0; number < configurations.size(); ++number) {
            for (FlatRules::Rule const& rule :
                 configurations[number].rules->of_event(participant.event)) {
                party.options.push_back({number, &rule});
            }
        }
        m_monitor.go_on(configurations.size() + party.options.size());
        m_parties.push_back(std::move(party));
    }
}

/// The next combination, the last section's choice changing fastest.
bool Expansion::choose_next() {
    for (auto party = m_parties.rbegin(); party != m_parties.rend(); ++party) {
        if (++party->chosen < party->options.size()) {
            return true;
        }
        party->chosen = 0;
    }
    return false;
}

void Expansion::add(unsigned event) {
    if (m_result.rules.size() >= m_most_rules) {
        throw StateSpace::MachineRefusal("it has too many rules");
    }
    auto const size = [](auto const& list) { return static_cast<std::uint32_t>(list.size()); };
    Rule rule{event,
              {size(m_result.conditions), 0},
              {size(m_result.takers), 0},
              {size(m_result.writes), 0}};
    m_first_taker = rule.takers.first;
    for (Party const& party : m_parties) {
        add_choice(*party.section, party.options[party.chosen]);
    }
    rule.conditions.last = size(m_result.conditions);
    rule.takers.last = size(m_result.takers);
    rule.writes.last = size(m_result.writes);
    std::sort(m_result.writes.begin() + rule.writes.first, m_result.writes.end(),
              [](Write const& left, Write const& right) { return left.column < right.column; });
    m_monitor.go_on(1 + m_parties.size(),
                    sizeof(Rule) + m_parties.size() * (sizeof(Taker) + sizeof(Write)));
    m_result.rules.push_back(rule);
    drop_double(rule);
}

void Expansion::add_choice(Sections::Section const& section, Option const& option) {
    SectionShape::Configuration const& before = section.shape->configurations[option.configuration];
    if (section.shape->changes()) {
        m_result.conditions.push_back({section.first_column, option.configuration});
    }
    auto const next_taker = [this] {
        return static_cast<std::uint32_t>(m_result.takers.size()) - m_first_taker;
    };
    std::uint32_t const first_taker = next_taker();
    for (Participant const& participant : before.rules->participants_of(*option.rule)) {
        Leaf const& leaf = *before.leaves[participant.slot];
        std::uint32_t const index = leaf.index_of(participant.event);
        LeafEvents::Effect const& effect = m_leaf_events.effect(leaf, index);
        std::uint32_t const column = section.first_leaf_column() + before.columns[participant.slot];
        if (option.rule->stays() && effect.is_always_possible && effect.only_loops) {
            continue; // it changes nothing, and nobody has to wait for it
        }
        if (option.rule->stays() && !effect.only_loops) {
            m_result.writes.push_back({column, Source::taker, next_taker()});
        }
        m_result.takers.push_back({effect.is_constant ? none : column, &leaf, index});
    }
    if (!option.rule->stays()) {
        add_moves(section, option, first_taker);
    }
}

/// Where everything goes when the section goes to another configuration, or some of its leaves start
/// afresh. `first_taker` is the place of its first one among the rule's.
void Expansion::add_moves(Sections::Section const& section, Option const& option,
                          std::uint32_t first_taker) {
    SectionShape const& shape = *section.shape;
    SectionShape::Configuration const& before = shape.configurations[option.configuration];
    std::uint32_t const target = shape.numbers.at(option.rule->target);
    SectionShape::Configuration const& after = shape.configurations[target];
    if (target != option.configuration) {
        m_result.writes.push_back({section.first_column, Source::constant, target});
    }
    auto const participants = before.rules->participants_of(*option.rule);
    std::uint32_t const* const sources = before.rules->sources.data() + option.rule->first_source;
    m_slot_before.assign(shape.leaf_columns, none);
    for (std::uint32_t slot = 0; slot < before.columns.size(); ++slot) {
        m_slot_before[before.columns[slot]] = slot;
    }
    std::vector<bool> is_kept(shape.leaf_columns);
    for (std::uint32_t slot = 0; slot < after.columns.size(); ++slot) {
        std::uint32_t const column = after.columns[slot];
        std::uint32_t const own = section.first_leaf_column() + column;
        is_kept[column] = true;
        if (sources[slot] == FlatRules::fresh) {
            if (m_slot_before[column] != none) { // otherwise it is 0 already
                m_result.writes.push_back({own, Source::constant, 0});
            }
            continue;
        }
        auto const taker = std::find_if(
            participants.begin(), participants.end(),
            [&](Participant const& participant) { return participant.slot == sources[slot]; });
        if (taker != participants.end()) {
            m_result.writes.push_back(
                {own, Source::taker,
                 first_taker + static_cast<std::uint32_t>(taker - participants.begin())});
        } else if (before.columns[sources[slot]] != column) {
            m_result.writes.push_back(
                {own, Source::column, section.first_leaf_column() + before.columns[sources[slot]]});
        }
    }
    for (std::uint32_t column = 0; column < shape.leaf_columns; ++column) {
        if (!is_kept[column] && m_slot_before[column] != none) {
            m_result.writes.push_back({section.first_leaf_column() + column, Source::constant, 0});
        }
    }
}

/// Takes the last rule away again where there is another like it.
void Expansion::drop_double(Rule const& rule) {
    auto const number = static_cast<std::uint32_t>(m_result.rules.size() - 1);
    if (number > 0 && m_result.rules[number - 1].event != rule.event) {
        m_numbers.clear();
    }
    std::uint64_t const key = hash(rule);
    auto const [first, last] = m_numbers.equal_range(key);
    if (std::any_of(first, last,
                    [&](auto const& known) { return equal(m_result.rules[known.second], rule); })) {
        m_result.conditions.resize(rule.conditions.first);
        m_result.takers.resize(rule.takers.first);
        m_result.writes.resize(rule.writes.first);
        m_result.rules.pop_back();
    } else {
        m_numbers.emplace(key, number);
    }
}

std::uint64_t Expansion::hash(Rule const& rule) const {
    std::uint64_t hash = rule.event;
    for (Condition const& condition : m_result.conditions_of(rule)) {
        hash = StateSpace::mix(hash ^ condition.column ^ std::uint64_t{condition.value} << 32);
    }
    for (Taker const& taker : m_result.takers_of(rule)) {
        hash = StateSpace::mix(hash ^ taker.column ^ std::uint64_t{taker.event_index} << 32);
    }
    for (Write const& write : m_result.writes_of(rule)) {
        hash = StateSpace::mix(hash ^ write.column ^ std::uint64_t{write.value} << 32);
    }
    return hash;
}

bool Expansion::equal(Rule const& left, Rule const& right) const {
    auto const same = [](auto const& one, auto const& other) {
        return std::equal(one.begin(), one.end(), other.begin(), other.end());
    };
    return same(m_result.conditions_of(left), m_result.conditions_of(right)) &&
           same(m_result.takers_of(left), m_result.takers_of(right)) &&
           same(m_result.writes_of(left), m_result.writes_of(right));
}

void Expansion::mark_the_end() {
    std::vector<Rule> ticks;
    for (Rule const& rule : m_result.rules) {
        if (rule.event == ProcessCompiler::tick) {
            ticks.push_back(rule);
        }
    }
    if (ticks.empty()) {
        return;
    }
    m_result.ended_column = m_sections.column_count();
    for (Rule& rule : m_result.rules) {
        m_monitor.go_on(ticks.size(), sizeof(Write));
        if (rule.event == ProcessCompiler::tick) {
            m_result.add_write(rule, {*m_result.ended_column, Source::constant, 1});
        } else if (std::any_of(ticks.begin(), ticks.end(),
                               [&](Rule const& tick) { return may_follow(rule, tick); })) {
            m_result.add_write(rule, {*m_result.ended_column, Source::constant, 0});
        }
    }
}

/// Whether the rule may fire in a state in which the tick ends. Where that is not clear, it may.
bool Expansion::may_follow(Rule const& rule, Rule const& tick) {
    auto const write_to = [&](std::uint32_t column) -> Write const* {
        auto const writes = m_result.writes_of(tick);
        auto const found = std::lower_bound(
            writes.begin(), writes.end(), column,
            [](Write const& write, std::uint32_t wanted) { return write.column < wanted; });
        return found != writes.end() && found->column == column ? &*found : nullptr;
    };
    for (Condition const& condition : m_result.conditions_of(rule)) {
        std::uint32_t value = condition.value;
        if (Write const* const write = write_to(condition.column)) {
            value = write->value;
        } else {
            for (Condition const& before : m_result.conditions_of(tick)) {
                value = before.column == condition.column ? before.value : value;
            }
        }
        if (value != condition.value) {
            return false;
        }
    }
    for (Taker const& taker : m_result.takers_of(rule)) {
        Write const* const write = taker.column == none ? nullptr : write_to(taker.column);
        if (write == nullptr || write->source == Source::column) {
            continue;
        }
        if (write->source == Source::constant) {
            if (taker.leaf->successors(write->value, taker.event_index).empty()) {
                return false;
            }
            continue;
        }
        Taker const& ticking = m_result.takers_of(tick)[write->value];
        if (ticking.leaf == taker.leaf &&
            !m_leaf_events.may_follow(*taker.leaf, ticking.event_index, taker.event_index)) {
            return false;
        }
    }
    return true;
}

} // namespace

void ColumnRules::add_write(Rule& rule, Write write) {
    auto const first = static_cast<std::uint32_t>(writes.size());
    for (std::uint32_t place = rule.writes.first; place != rule.writes.last; ++place) {
        writes.push_back(Write(writes[place]));
    }
    auto const behind = std::find_if(writes.begin() + first, writes.end(), [&](Write const& known) {
        return known.column > write.column;
    });
    writes.insert(behind, write);
    rule.writes = {first, static_cast<std::uint32_t>(writes.size())};
}

ColumnRules column_rules(Sections const& sections, std::size_t most_rules, SearchMonitor& monitor) {
    return Expansion(sections, most_rules, monitor).run();
}

} // namespace Calder::Pins
