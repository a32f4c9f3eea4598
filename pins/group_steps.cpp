#include "pins/group_steps.h"

#include "state_space/machine/machine_refusal.h"
#include "state_space/mix.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <unordered_set>

namespace Calder::Pins {

using StateSpace::none;
using StateSpace::SearchMonitor;
using StateSpace::StateNumber;
using Source = ColumnRules::Source;
using StepTaker = VectorMachine::StepTaker;

namespace {

constexpr std::size_t block_size = 64;

/// Columns of more values do not filter: the tables would cost more than the lookups that they save.
constexpr std::uint32_t most_filtering_values = 1 << 12;

/// Of one rule in one state: engines count the steps of a state as `int`.
constexpr std::size_t most_choices = std::numeric_limits<int>::max();

/// `most_choices` + 1 stands for all that are more.
std::size_t product(std::size_t left, std::size_t right) {
    return right != 0 && left > most_choices / right ? most_choices + 1 : left * right;
}

std::uint32_t place_in(std::vector<std::uint32_t> const& columns, std::uint32_t column) {
    auto const found = std::lower_bound(columns.begin(), columns.end(), column);
    return found == columns.end() || *found != column
               ? none
               : static_cast<std::uint32_t>(found - columns.begin());
}

std::uint32_t size32(auto const& list) {
    return static_cast<std::uint32_t>(list.size());
}

} // namespace

GroupSteps::GroupSteps(ColumnRules const& rules, Groups const& groups,
                       std::vector<VectorMachine::Group> const& described,
                       std::vector<unsigned> const& events, std::vector<std::uint32_t> value_counts,
                       SearchMonitor& monitor)
    : m_value_counts(std::move(value_counts)), m_rules(rules.rules.size()) {
    for (std::size_t group = 0; group < groups.groups.size(); ++group) {
        Members members{{}, {}, size32(described[group].touched), size32(described[group].writes)};
        for (std::uint32_t const number : groups.groups[group].rules) {
            (groups.may_repeat[number] ? members.watched : members.rules).push_back(number);
            add_rule(rules, number, group, described[group]);
        }
        if (!members.watched.empty()) {
            m_watching.push_back(static_cast<std::uint32_t>(group));
        }
        monitor.go_on(members.rules.size() + members.watched.size());
        m_in_blocks.insert(m_in_blocks.end(), members.rules.begin(), members.rules.end());
        m_members.push_back(std::move(members));
    }
    for (std::uint32_t number = 0; number < m_rules.size(); ++number) {
        m_rules[number].label = static_cast<int>(
            std::lower_bound(events.begin(), events.end(), rules.rules[number].event) -
            events.begin());
    }
    for (std::size_t first = 0; first < m_in_blocks.size(); first += block_size) {
        add_block(rules, first, monitor);
    }
}

GroupSteps::Places GroupSteps::places_of(std::uint32_t column, VectorMachine::Group const& group) {
    if (column == none) {
        return {none, none, none};
    }
    return {column, place_in(group.touched, column), place_in(group.reads, column)};
}

/// The same for a column that is written.
GroupSteps::Places GroupSteps::written_places_of(std::uint32_t column,
                                                 VectorMachine::Group const& group) {
    return {column, place_in(group.touched, column), place_in(group.writes, column)};
}

void GroupSteps::add_rule(ColumnRules const& rules, std::uint32_t number, std::size_t group,
                          VectorMachine::Group const& described) {
    ColumnRules::Rule const& column_rule = rules.rules[number];
    Rule rule{0,
              static_cast<int>(group),
              {size32(m_conditions), 0},
              {size32(m_takers), 0},
              {size32(m_writes), 0},
              true};
    for (ColumnRules::Condition const& condition : rules.conditions_of(column_rule)) {
        m_conditions.push_back(
            {places_of(condition.column, described), static_cast<int>(condition.value)});
        rule.is_simple =
            rule.is_simple && m_value_counts[condition.column] <= most_filtering_values;
    }
    for (ColumnRules::Taker const& taker : rules.takers_of(column_rule)) {
        StateNumber const* const only = taker.leaf->events()[taker.event_index].only_successor;
        m_takers.push_back(
            {taker.leaf, only, taker.event_index, places_of(taker.column, described)});
        rule.is_simple = rule.is_simple && only != nullptr && is_filtered(taker);
    }
    for (ColumnRules::Write const& write : rules.writes_of(column_rule)) {
        m_writes.push_back({write.source,
                            write.value,
                            written_places_of(write.column, described),
                            {none, none, none}});
        switch (write.source) {
        case Source::constant: break;
        case Source::taker: m_writes.back().value += rule.takers.first; break;
        case Source::column:
            m_writes.back().from = places_of(write.value, described);
            rule.is_simple = false;
            break;
        }
    }
    rule.conditions.last = size32(m_conditions);
    rule.takers.last = size32(m_takers);
    rule.writes.last = size32(m_writes);
    m_rules[number] = rule;
}

bool GroupSteps::is_filtered(ColumnRules::Taker const& taker) const {
    return taker.column != none && m_value_counts[taker.column] <= most_filtering_values;
}

void GroupSteps::add_block(ColumnRules const& rules, std::size_t first, SearchMonitor& monitor) {
    std::size_t const count = std::min(block_size, m_in_blocks.size() - first);
    Bits const all = count == block_size ? ~Bits{0} : (Bits{1} << count) - 1;
    Block const block{size32(m_filters), 0, static_cast<std::uint32_t>(first), all};
    m_blocks.push_back(block);
    for (std::size_t i = 0; i < count; ++i) {
        Bits const rule = Bits{1} << i;
        ColumnRules::Rule const& column_rule = rules.rules[m_in_blocks[first + i]];
        for (ColumnRules::Condition const& condition : rules.conditions_of(column_rule)) {
            if (m_value_counts[condition.column] > most_filtering_values) {
                continue;
            }
            std::span<Bits> const sets = rule_sets_of(condition.column, block);
            for (std::uint32_t value = 0; value < sets.size(); ++value) {
                sets[value] &= value == condition.value ? all : ~rule;
            }
        }
        for (ColumnRules::Taker const& taker : rules.takers_of(column_rule)) {
            if (!is_filtered(taker)) {
                continue;
            }
            std::span<Bits> const sets = rule_sets_of(taker.column, block);
            for (std::uint32_t value = 0; value < sets.size(); ++value) {
                if (value >= taker.leaf->state_count() ||
                    taker.leaf->successors(value, taker.event_index).empty()) {
                    sets[value] &= ~rule;
                }
            }
            monitor.go_on(sets.size());
        }
    }
    m_blocks.back().last_filter = size32(m_filters);
}

/// By value of the column; made where the block has none yet.
std::span<GroupSteps::Bits> GroupSteps::rule_sets_of(std::uint32_t column, Block const& block) {
    auto const begin = m_filters.begin() + block.first_filter;
    auto const found = std::find_if(
        begin, m_filters.end(), [column](Filter const& filter) { return filter.column == column; });
    std::size_t first_set = m_rule_sets.size();
    if (found != m_filters.end()) {
        first_set = found->first_set;
    } else {
        m_filters.push_back({column, first_set});
        m_rule_sets.resize(first_set + m_value_counts[column], block.all);
    }
    return std::span(m_rule_sets).subspan(first_set, m_value_counts[column]);
}

inline GroupSteps::Bits GroupSteps::enabled(Block const& block, int const* state) const noexcept {
    Bits rules = block.all;
    for (std::uint32_t i = block.first_filter; i != block.last_filter && rules != 0; ++i) {
        Filter const& filter = m_filters[i];
        rules &= m_rule_sets[filter.first_set + static_cast<std::uint32_t>(state[filter.column])];
    }
    return rules;
}

int GroupSteps::for_all(int const* state, StepStorage& storage, StepTaker taker) const {
    storage.successor.assign(state, state + m_value_counts.size());
    auto const tell = [&](Rule const& rule) {
        taker.take(taker.context, rule.label, rule.group, storage.successor.data());
    };
    int count = 0;
    for (Block const& block : m_blocks) {
        for (Bits rules = enabled(block, state); rules != 0; rules &= rules - 1) {
            auto const place = static_cast<std::uint32_t>(std::countr_zero(rules));
            Rule const& rule = m_rules[m_in_blocks[block.first_rule + place]];
            count += rule.is_simple ? fire_simple<Form::whole>(rule, state, storage, tell)
                                    : fire_choices<Form::whole>(rule, state, storage, tell);
        }
    }
    for (std::uint32_t const group : m_watching) {
        count += fire_watched<Form::whole>(m_members[group], state, storage, taker);
    }
    return count;
}

template <Form form> int GroupSteps::for_group(std::size_t group, int const* state,
                                               StepStorage& storage, StepTaker taker) const {
    Members const& members = m_members[group];
    prepare<form>(members, state, storage);
    auto const tell = [&](Rule const& rule) {
        taker.take(taker.context, rule.label, rule.group, storage.successor.data());
    };
    int count = 0;
    for (std::uint32_t const number : members.rules) {
        count += fire_choices<form>(m_rules[number], state, storage, tell);
    }
    if (!members.watched.empty()) {
        count += fire_watched<form>(members, state, storage, taker);
    }
    return count;
}

/// What a successor has where the rules do not write.
template <Form form>
void GroupSteps::prepare(Members const& members, int const* state, StepStorage& storage) const {
    switch (form) {
    case Form::whole: storage.successor.assign(state, state + m_value_counts.size()); break;
    case Form::touched: storage.successor.assign(state, state + members.touched_count); break;
    case Form::read_to_written: storage.successor.assign(members.written_count, 0); break;
    }
}

template <Form form, typename Tell>
inline int GroupSteps::fire_simple(Rule const& rule, int const* state, StepStorage& storage,
                                   Tell const& tell) const {
    constexpr auto at = static_cast<std::size_t>(form);
    int* const successor = storage.successor.data();
    for (std::uint32_t i = rule.writes.first; i != rule.writes.last; ++i) {
        Write const& write = m_writes[i];
        if (write.source == Source::taker) {
            Taker const& taker = m_takers[write.value];
            successor[write.places[at]] =
                static_cast<int>(taker.only_successor[state[taker.places[at]]]);
        } else {
            successor[write.places[at]] = static_cast<int>(write.value);
        }
    }
    tell(rule);
    take_back<form>(rule, state, successor);
    return 1;
}

/// Of any rule, whether it can fire or not.
template <Form form, typename Tell> int GroupSteps::fire_choices(Rule const& rule, int const* state,
                                                                 StepStorage& storage,
                                                                 Tell const& tell) const {
    constexpr auto at = static_cast<std::size_t>(form);
    for (std::uint32_t i = rule.conditions.first; i != rule.conditions.last; ++i) {
        if (state[m_conditions[i].places[at]] != m_conditions[i].value) {
            return 0;
        }
    }
    storage.choices.clear();
    std::size_t count = 1;
    for (std::uint32_t i = rule.takers.first; i != rule.takers.last; ++i) {
        Taker const& taker = m_takers[i];
        std::uint32_t const place = taker.places[at];
        auto const before = place == none ? StateNumber{0} : static_cast<StateNumber>(state[place]);
        if (before >= taker.leaf->state_count()) {
            return 0; // of another configuration
        }
        storage.choices.push_back(taker.leaf->successors(before, taker.event_index));
        count = product(count, storage.choices.back().size());
    }
    if (count > most_choices) {
        throw StateSpace::MachineRefusal("a state has more steps than can be counted");
    }
    storage.chosen.resize(storage.choices.size());
    int* const successor = storage.successor.data();
    for (std::size_t choice = 0; choice < count; ++choice) {
        std::size_t rest = choice; // the last taker's choice changes fastest
        for (std::size_t i = storage.choices.size(); i-- > 0;) {
            storage.chosen[i] = storage.choices[i][rest % storage.choices[i].size()];
            rest /= storage.choices[i].size();
        }
        for (std::uint32_t i = rule.writes.first; i != rule.writes.last; ++i) {
            Write const& write = m_writes[i];
            int& written = successor[write.places[at]];
            switch (write.source) {
            case Source::constant: written = static_cast<int>(write.value); break;
            case Source::taker:
                written = static_cast<int>(storage.chosen[write.value - rule.takers.first]);
                break;
            case Source::column: written = state[write.from[at]]; break;
            }
        }
        tell(rule);
    }
    if (count > 0) {
        take_back<form>(rule, state, successor);
    }
    return static_cast<int>(count);
}

template <Form form>
inline void GroupSteps::take_back(Rule const& rule, int const* state, int* successor) const {
    constexpr auto at = static_cast<std::size_t>(form);
    if constexpr (form != Form::read_to_written) { // there every rule writes all that there is
        for (std::uint32_t i = rule.writes.first; i != rule.writes.last; ++i) {
            successor[m_writes[i].places[at]] = state[m_writes[i].places[at]];
        }
    }
}

/// All successors first, then each that is new.
template <Form form> int GroupSteps::fire_watched(Members const& members, int const* state,
                                                  StepStorage& storage, StepTaker taker) const {
    std::size_t const width = storage.successor.size();
    storage.watched.clear();
    storage.labels.clear();
    int group = 0;
    for (std::uint32_t const number : members.watched) {
        fire_choices<form>(m_rules[number], state, storage, [&](Rule const& rule) {
            storage.watched.insert(storage.watched.end(), storage.successor.begin(),
                                   storage.successor.end());
            storage.labels.push_back(rule.label);
            group = rule.group;
        });
    }
    auto const step = [&](std::size_t number) {
        return std::span(storage.watched).subspan(number * width, width);
    };
    auto const hash = [&](std::size_t number) {
        auto value = static_cast<std::uint64_t>(storage.labels[number]);
        for (int const part : step(number)) {
            value = StateSpace::mix(value ^ static_cast<std::uint32_t>(part));
        }
        return static_cast<std::size_t>(value);
    };
    auto const equal = [&](std::size_t left, std::size_t right) {
        auto const one = step(left);
        return storage.labels[left] == storage.labels[right] &&
               std::equal(one.begin(), one.end(), step(right).begin());
    };
    std::unordered_set<std::size_t, decltype(hash), decltype(equal)> told(0, hash, equal);
    for (std::size_t number = 0; number < storage.labels.size(); ++number) {
        if (told.insert(number).second) {
            taker.take(taker.context, storage.labels[number], group, step(number).data());
        }
    }
    return static_cast<int>(told.size());
}

template int GroupSteps::for_group<Form::whole>(std::size_t, int const*, StepStorage&,
                                                StepTaker) const;
template int GroupSteps::for_group<Form::touched>(std::size_t, int const*, StepStorage&,
                                                  StepTaker) const;
template int GroupSteps::for_group<Form::read_to_written>(std::size_t, int const*, StepStorage&,
                                                          StepTaker) const;

} // namespace Calder::Pins
