#include "state_space/machine/run/successor_table.h"

#include "state_space/memory.h"

#include <algorithm>
#include <bit>

namespace Calder::StateSpace {

namespace {

constexpr std::size_t block_size = 64;

/// Larger leaves do not filter: their tables would cost more than the lookups that they save.
constexpr StateNumber most_filtering_states = 1 << 12;

/// Slots side by side are looked up together while their bits have no more values than these.
constexpr Word most_joint_values = 255;

/// Steps by all words of their successors, as ChangedWords has them by those that change.
class WholeWords {
  public:
    WholeWords(Word const* state, Steps& steps) : m_state(state), m_steps(steps) {}

    void make_room(std::size_t steps) { m_steps.make_room(steps); }
    void begin_step(unsigned marked_event) {
        m_successor = m_steps.add(marked_event);
        copy_words(m_state, m_successor, m_steps.width());
    }
    void change(std::uint32_t word, Word difference) { m_successor[word] += difference; }
    Word* begin_other(unsigned marked_event) {
        Word* const successor = m_steps.add(marked_event);
        std::fill_n(successor, m_steps.width(), Word{0});
        return successor;
    }
    void end_other() {}

  private:
    Word const* m_state;
    Steps& m_steps;
    Word* m_successor = nullptr;
};

} // namespace

SuccessorTable::SuccessorTable(Layout const& layout, FlatRules const& flat,
                               std::vector<Target> targets, SearchMonitor& monitor)
    : m_layout(layout) {
    monitor.go_on(flat.rules.size(), flat.rules.size() * sizeof(Rule) +
                                         flat.participants.size() * sizeof(Taker) +
                                         flat.sources.size() * sizeof(std::uint32_t));
    m_sources = flat.sources;
    m_rules.reserve(flat.rules.size());
    m_takers.reserve(flat.participants.size());
    for (std::size_t number = 0; number < flat.rules.size(); ++number) {
        monitor.go_on(flat.rules[number].participant_count);
        add_rule(flat, number, targets[number]);
    }
    mark_repeating_rules(flat, monitor);
    for (std::size_t first = 0; first < m_rules.size(); first += block_size) {
        add_block(first, monitor);
    }
}

void SuccessorTable::append_successors(Word const* state, Steps& steps,
                                       std::vector<StateNumber>& scratch) const {
    bool const is_one_word = steps.width() == 1;
    WholeWords told(state, steps);
    for (std::size_t block = 0; block < m_blocks.size(); ++block) {
        steps.make_room(block_size);
        for (Word rules = enabled(m_blocks[block], state); rules != 0; rules &= rules - 1) {
            auto const place = static_cast<std::size_t>(std::countr_zero(rules));
            Rule const& rule = m_rules[block * block_size + place];
            if (is_one_word && rule.is_simple) { // as in most machines
                steps.add_word(rule.marked_event, simple_successor(rule, *state));
            } else {
                append(rule, state, told, scratch);
            }
        }
    }
}

void SuccessorTable::append_successors(Word const* state, ChangedWords& steps,
                                       std::vector<StateNumber>& scratch) const {
    for (std::size_t block = 0; block < m_blocks.size(); ++block) {
        Word rules = enabled(m_blocks[block], state);
        if (rules == 0) {
            continue;
        }
        steps.make_room(block_size);
        for (; rules != 0; rules &= rules - 1) {
            auto const place = static_cast<std::size_t>(std::countr_zero(rules));
            append(m_rules[block * block_size + place], state, steps, scratch);
        }
    }
}

inline Word SuccessorTable::simple_successor(Rule const& rule, Word state) const noexcept {
    Word successor = state;
    for (std::uint32_t t = rule.first_taker; t != rule.last_taker; ++t) {
        Taker const& taker = m_takers[t];
        Word const before = (state >> taker.shift) & taker.mask;
        successor += (taker.only_successor[before] - before) << taker.shift;
    }
    return successor;
}

void SuccessorTable::add_rule(FlatRules const& flat, std::size_t number, Target const& target) {
    FlatRules::Rule const& rule = flat.rules[number];
    auto const first = static_cast<std::uint32_t>(m_takers.size());
    bool is_simple = rule.stays();
    for (Participant const& participant : flat.participants_of(rule)) {
        Layout::Slot const& slot = m_layout.slots()[participant.slot];
        std::uint32_t const index = slot.leaf->index_of(participant.event);
        StateNumber const* const only = slot.leaf->events()[index].only_successor;
        is_simple =
            is_simple && only != nullptr && slot.leaf->state_count() <= most_filtering_states;
        m_takers.push_back(
            {slot.word, slot.shift, slot.mask, only, slot.leaf, index, participant.slot});
    }
    m_rules.push_back({rule.event, first, static_cast<std::uint32_t>(m_takers.size()),
                       rule.first_source, is_simple, target});
}

void SuccessorTable::mark_repeating_rules(FlatRules const& flat, SearchMonitor& monitor) {
    std::vector<std::uint32_t> takers_of_slot(m_layout.slots().size(), 0);
    for (std::size_t first = 0; first < m_rules.size();) {
        std::size_t last = first;
        while (last < m_rules.size() && flat.rules[last].event == flat.rules[first].event) {
            ++last;
        }
        if (last - first > 1 || !flat.rules[first].stays()) {
            mark_group(flat, first, last, takers_of_slot, monitor);
        }
        first = last;
    }
}

/// Of the rules of one event. `takers_of_slot` is all zeros before and after.
void SuccessorTable::mark_group(FlatRules const& flat, std::size_t first, std::size_t last,
                                std::vector<std::uint32_t>& takers_of_slot,
                                SearchMonitor& monitor) {
    bool every_rule_stays = true;
    for (std::size_t number = first; number < last; ++number) {
        monitor.go_on(flat.rules[number].participant_count);
        every_rule_stays = every_rule_stays && flat.rules[number].stays();
        for (Participant const& participant : flat.participants_of(flat.rules[number])) {
            ++takers_of_slot[participant.slot];
        }
    }
    for (std::size_t number = first; number < last; ++number) {
        Rule& rule = m_rules[number];
        monitor.go_on(flat.rules[number].participant_count);
        bool const is_alone =
            every_rule_stays &&
            std::any_of(m_takers.begin() + rule.first_taker, m_takers.begin() + rule.last_taker,
                        [&](Taker const& taker) {
                            return takers_of_slot[taker.slot] == 1 &&
                                   !taker.leaf->events()[taker.event_index].has_loop;
                        });
        rule.marked_event |= is_alone ? 0 : Steps::may_repeat;
    }
    for (std::size_t number = first; number < last; ++number) {
        for (Participant const& participant : flat.participants_of(flat.rules[number])) {
            takers_of_slot[participant.slot] = 0;
        }
    }
}

void SuccessorTable::add_block(std::size_t first_rule, SearchMonitor& monitor) {
    std::size_t const count = std::min(block_size, m_rules.size() - first_rule);
    Word const all = count == block_size ? ~Word{0} : (Word{1} << count) - 1;
    auto const first_filter = static_cast<std::uint32_t>(m_filters.size());
    std::vector<SlotFilter> slots;
    for (std::size_t i = 0; i < count; ++i) {
        Rule const& rule = m_rules[first_rule + i];
        for (std::uint32_t t = rule.first_taker; t != rule.last_taker; ++t) {
            Taker const& taker = m_takers[t];
            if (taker.leaf->state_count() <= most_filtering_states) {
                slots.push_back({taker.slot, t, Word{1} << i});
            }
        }
    }
    std::sort(slots.begin(), slots.end(), [](SlotFilter const& left, SlotFilter const& right) {
        return left.slot < right.slot;
    });
    for (std::size_t first = 0; first < slots.size();) {
        first = add_filter(slots, first, all);
    }
    monitor.go_on(slots.size(), growth_bytes(m_rule_sets, monitor.work_ahead()));
    m_blocks.push_back({first_filter, static_cast<std::uint32_t>(m_filters.size()), all});
}

/// One filter for the slot that `slots[first]` is about and, while they are small, for those behind
/// it. Returns where the next filter begins.
std::size_t SuccessorTable::add_filter(std::vector<SlotFilter> const& slots, std::size_t first,
                                       Word all) {
    Layout::Slot const& begin = m_layout.slots()[slots[first].slot];
    Filter filter{begin.word, begin.shift, begin.mask, m_rule_sets.size()};
    std::size_t last = first;
    for (; last < slots.size(); ++last) {
        Layout::Slot const& slot = m_layout.slots()[slots[last].slot];
        if (slot.word != filter.word) {
            break;
        }
        Word const mask = filter.mask | slot.mask << (slot.shift - filter.shift);
        if (slots[last].slot != slots[first].slot && mask > most_joint_values) {
            break;
        }
        filter.mask = mask;
    }
    m_filters.push_back(filter);
    m_rule_sets.resize(m_rule_sets.size() + filter.mask + 1, all);
    for (std::size_t i = first; i < last; ++i) {
        close(filter, m_takers[slots[i].taker], slots[i].rule);
    }
    return last;
}

/// Takes the rule out of the sets of all values in which the taker cannot take part.
void SuccessorTable::close(Filter const& filter, Taker const& taker, Word rule) {
    for (Word value = 0; value <= filter.mask; ++value) {
        Word const state = (value >> (taker.shift - filter.shift)) & taker.mask;
        if (state >= taker.leaf->state_count() ||
            taker.leaf->successors(static_cast<StateNumber>(state), taker.event_index).empty()) {
            m_rule_sets[filter.first_set + value] &= ~rule;
        }
    }
}

template <typename Told> void SuccessorTable::append(Rule const& rule, Word const* state,
                                                     Told& told,
                                                     std::vector<StateNumber>& scratch) const {
    if (rule.is_simple) {
        append_simple(rule, state, told);
    } else if (rule.first_source == none) {
        append_choices(rule, state, told);
    } else {
        append_moves(rule, state, told, scratch);
    }
}

/// One step, for which there is room.
template <typename Told>
void SuccessorTable::append_simple(Rule const& rule, Word const* state, Told& told) const {
    told.begin_step(rule.marked_event);
    for (std::uint32_t t = rule.first_taker; t != rule.last_taker; ++t) {
        Taker const& taker = m_takers[t];
        Word const before = taker.read(state);
        told.change(taker.word, (taker.only_successor[before] - before) << taker.shift);
    }
}

template <typename Told>
void SuccessorTable::append_choices(Rule const& rule, Word const* state, Told& told) const {
    std::size_t const choices = count_choices(rule, state);
    told.make_room(choices + block_size);
    for (std::size_t choice = 0; choice < choices; ++choice) {
        told.begin_step(rule.marked_event);
        std::size_t rest = choice;
        for (std::uint32_t t = rule.last_taker; t-- != rule.first_taker;) {
            Taker const& taker = m_takers[t];
            StateNumber const after = choice_of(taker, state, rest);
            told.change(taker.word, (after - taker.read(state)) << taker.shift);
        }
    }
}

template <typename Told>
void SuccessorTable::append_moves(Rule const& rule, Word const* state, Told& told,
                                  std::vector<StateNumber>& scratch) const {
    std::size_t const choices = count_choices(rule, state);
    told.make_room(choices + block_size);
    std::vector<Layout::Slot> const& before = m_layout.slots();
    std::vector<Layout::Slot> const& after = rule.target.layout->slots();
    scratch.resize(before.size());
    for (std::size_t slot = 0; slot < before.size(); ++slot) {
        scratch[slot] = before[slot].read(state);
    }
    for (std::size_t choice = 0; choice < choices; ++choice) {
        std::size_t rest = choice;
        for (std::uint32_t t = rule.last_taker; t-- != rule.first_taker;) {
            scratch[m_takers[t].slot] = choice_of(m_takers[t], state, rest);
        }
        Word* const successor = told.begin_other(rule.marked_event);
        successor[0] = rule.target.number;
        for (std::size_t slot = 0; slot < after.size(); ++slot) {
            std::uint32_t const source = m_sources[rule.first_source + slot];
            StateNumber const value = source == FlatRules::fresh ? 0 : scratch[source];
            successor[after[slot].word] |= Word{value} << after[slot].shift;
        }
        told.end_other();
    }
}

/// At most Steps::unbounded, which no storage has room for.
std::size_t SuccessorTable::product(std::size_t left, std::size_t right) noexcept {
    return right != 0 && left > Steps::unbounded / right ? Steps::unbounded : left * right;
}

/// How many combinations of successors the takers have.
std::size_t SuccessorTable::count_choices(Rule const& rule, Word const* state) const {
    std::size_t choices = 1;
    for (std::uint32_t t = rule.first_taker; t != rule.last_taker; ++t) {
        Taker const& taker = m_takers[t];
        choices = product(
            choices,
            taker.leaf->successors(static_cast<StateNumber>(taker.read(state)), taker.event_index)
                .size());
    }
    return choices;
}

/// The taker's successor in the combination of number `rest`, which is then divided by the choices
/// that the taker has: asked from the last taker to the first, the last one's change fastest.
StateNumber SuccessorTable::choice_of(Taker const& taker, Word const* state,
                                      std::size_t& rest) const {
    auto const successors =
        taker.leaf->successors(static_cast<StateNumber>(taker.read(state)), taker.event_index);
    StateNumber const chosen = successors[rest % successors.size()];
    rest /= successors.size();
    return chosen;
}

std::optional<std::size_t> SuccessorTable::rule_between(Word const* state, unsigned event,
                                                        std::vector<Word> const& target) const {
    Steps steps;
    std::vector<StateNumber> scratch;
    for (std::size_t block = 0; block < m_blocks.size(); ++block) {
        for (Word rules = enabled(m_blocks[block], state); rules != 0; rules &= rules - 1) {
            std::size_t const number =
                block * block_size + static_cast<std::size_t>(std::countr_zero(rules));
            steps.clear(static_cast<std::uint32_t>(target.size()));
            steps.make_room(1);
            WholeWords told(state, steps);
            append(m_rules[number], state, told, scratch);
            for (std::size_t step = 0; step < steps.size(); ++step) {
                if (steps.event(step) == event &&
                    std::equal(target.begin(), target.end(), steps.words(step))) {
                    return number;
                }
            }
        }
    }
    return std::nullopt;
}

} // namespace Calder::StateSpace
