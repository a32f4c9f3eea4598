#include "pins/repetition.h"

#include "pins/leaf_events.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace Calder::Pins {

using Condition = ColumnRules::Condition;
using Rule = ColumnRules::Rule;
using Source = ColumnRules::Source;
using Taker = ColumnRules::Taker;
using Write = ColumnRules::Write;

namespace {

constexpr std::size_t most_compared = 256;

class Search {
  public:
    Search(ColumnRules const& rules, StateSpace::SearchMonitor& monitor)
        : m_rules(rules), m_monitor(monitor) {
        m_result.watched_with.resize(rules.rules.size());
        std::iota(m_result.watched_with.begin(), m_result.watched_with.end(), 0U);
        m_result.may_repeat.resize(rules.rules.size());
    }

    Repetition run() {
        auto const& rules = m_rules.rules;
        for (std::size_t first = 0; first < rules.size();) {
            std::size_t last = first;
            while (last < rules.size() && rules[last].event == rules[first].event) {
                ++last;
            }
            search(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last));
            first = last;
        }
        for (std::uint32_t rule = 0; rule < rules.size(); ++rule) {
            m_result.watched_with[rule] = root(rule);
        }
        for (std::uint32_t rule = 0; rule < rules.size(); ++rule) {
            if (m_result.may_repeat[rule]) {
                m_result.may_repeat[m_result.watched_with[rule]] = true;
            }
        }
        for (std::uint32_t rule = 0; rule < rules.size(); ++rule) {
            m_result.may_repeat[rule] = m_result.may_repeat[m_result.watched_with[rule]];
        }
        return std::move(m_result);
    }

  private:
    /// Among the rules of one event.
    void search(std::uint32_t first, std::uint32_t last) {
        m_writers.clear();
        m_idle.clear();
        for (std::uint32_t rule = first; rule < last; ++rule) {
            if (repeats_itself(m_rules.rules[rule])) {
                m_result.may_repeat[rule] = true;
            }
            bool may_idle = true;
            for (Write const& write : m_rules.writes_of(m_rules.rules[rule])) {
                m_writers[write.column].push_back(rule);
                may_idle = may_idle && !always_changes(m_rules.rules[rule], write);
            }
            m_monitor.go_on(1 + m_rules.writes_of(m_rules.rules[rule]).size());
            if (may_idle) {
                compare_with_idle(rule);
                m_idle.push_back(rule);
            }
        }
        for (std::uint32_t rule = first; rule < last; ++rule) {
            compare_with_neighbours(rule);
        }
    }

    /// Of two rules that may change nothing, wherever they take place, both may repeat the other. Of
    /// more than `most_compared` that is taken to be so: the first one too many joins all of them.
    void compare_with_idle(std::uint32_t rule) {
        if (m_idle.size() > most_compared) {
            join(rule, m_idle.front());
            return;
        }
        m_monitor.go_on(m_idle.size());
        for (std::uint32_t const other : m_idle) {
            if (m_idle.size() == most_compared ||
                may_meet(m_rules.rules[rule], m_rules.rules[other])) {
                join(rule, other);
            }
        }
    }

    /// Whoever comes to the same state as a rule that always changes a column writes that column.
    void compare_with_neighbours(std::uint32_t number) {
        Rule const& rule = m_rules.rules[number];
        std::vector<std::uint32_t> const* fewest = nullptr;
        for (Write const& write : m_rules.writes_of(rule)) {
            auto const& writers = m_writers[write.column];
            if (always_changes(rule, write) &&
                (fewest == nullptr || writers.size() < fewest->size())) {
                fewest = &writers;
            }
        }
        if (fewest == nullptr) {
            return;
        }
        m_monitor.go_on(fewest->size());
        for (std::uint32_t const other : *fewest) {
            if (other != number && root(other) != root(number) &&
                may_meet(rule, m_rules.rules[other])) {
                join(number, other);
            }
        }
    }

    /// A choice of a taker that is not written anywhere is forgotten.
    bool repeats_itself(Rule const& rule) const {
        auto const takers = m_rules.takers_of(rule);
        for (std::uint32_t taker = 0; taker < takers.size(); ++taker) {
            if (takers[taker].leaf->events()[takers[taker].event_index].is_deterministic) {
                continue;
            }
            auto const writes = m_rules.writes_of(rule);
            if (std::none_of(writes.begin(), writes.end(), [taker](Write const& write) {
                    return write.source == Source::taker && write.value == taker;
                })) {
                return true;
            }
        }
        return false;
    }

    bool always_changes(Rule const& rule, Write const& write) const {
        switch (write.source) {
        case Source::constant: {
            auto const conditions = m_rules.conditions_of(rule);
            return std::any_of(
                conditions.begin(), conditions.end(), [&](Condition const& condition) {
                    return condition.column == write.column && condition.value != write.value;
                });
        }
        case Source::taker: {
            Taker const& taker = m_rules.takers_of(rule)[write.value];
            return taker.column == write.column &&
                   !taker.leaf->events()[taker.event_index].has_loop;
        }
        case Source::column: break;
        }
        return false;
    }

    bool may_meet(Rule const& left, Rule const& right) {
        for (Condition const& condition : m_rules.conditions_of(left)) {
            for (Condition const& other : m_rules.conditions_of(right)) {
                if (condition.column == other.column && condition.value != other.value) {
                    return false;
                }
            }
        }
        auto const lefts = m_rules.writes_of(left);
        auto const rights = m_rules.writes_of(right);
        auto l = lefts.begin();
        auto r = rights.begin();
        while (l != lefts.end() || r != rights.end()) {
            bool const is_left = r == rights.end() || (l != lefts.end() && l->column < r->column);
            bool const is_right = l == lefts.end() || (r != rights.end() && r->column < l->column);
            if ((is_left && always_changes(left, *l)) || (is_right && always_changes(right, *r)) ||
                (!is_left && !is_right && !may_write_the_same(left, *l, right, *r))) {
                return false;
            }
            l += is_right ? 0 : 1;
            r += is_left ? 0 : 1;
        }
        return true;
    }

    bool may_write_the_same(Rule const& left, Write const& l, Rule const& right, Write const& r) {
        if (l.source == Source::constant && r.source == Source::constant) {
            return l.value == r.value;
        }
        if (l.source == Source::taker && r.source == Source::taker) {
            Taker const& one = m_rules.takers_of(left)[l.value];
            Taker const& other = m_rules.takers_of(right)[r.value];
            return one.leaf != other.leaf || one.column != other.column ||
                   m_leaf_events.may_meet(*one.leaf, one.event_index, other.event_index);
        }
        return true;
    }

    std::uint32_t root(std::uint32_t rule) {
        std::vector<std::uint32_t>& above = m_result.watched_with;
        while (above[rule] != rule) {
            above[rule] = above[above[rule]];
            rule = above[rule];
        }
        return rule;
    }

    void join(std::uint32_t left, std::uint32_t right) {
        m_result.may_repeat[left] = m_result.may_repeat[right] = true;
        std::uint32_t const one = root(left);
        std::uint32_t const other = root(right);
        m_result.watched_with[std::max(one, other)] = std::min(one, other);
    }

    ColumnRules const& m_rules;
    StateSpace::SearchMonitor& m_monitor;
    Repetition m_result;
    LeafEvents m_leaf_events;
    // Of one event:
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_writers; // by column
    std::vector<std::uint32_t> m_idle; // rules that may change nothing
};

} // namespace

Repetition repetition(ColumnRules const& rules, StateSpace::SearchMonitor& monitor) {
    return Search(rules, monitor).run();
}

} // namespace Calder::Pins
