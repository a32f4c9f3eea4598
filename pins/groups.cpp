#include "pins/groups.h"

#include "pins/repetition.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace Calder::Pins {

using StateSpace::none;
using Rule = ColumnRules::Rule;
using Source = ColumnRules::Source;
using Write = ColumnRules::Write;

namespace {

using ColumnList = std::vector<std::uint32_t>;

void sort_and_remove_repetitions(ColumnList& columns) {
    std::sort(columns.begin(), columns.end());
    columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
}

ColumnList reads_of(ColumnRules const& rules, Rule const& rule) {
    ColumnList columns;
    for (ColumnRules::Condition const& condition : rules.conditions_of(rule)) {
        columns.push_back(condition.column);
    }
    for (ColumnRules::Taker const& taker : rules.takers_of(rule)) {
        if (taker.column != none) {
            columns.push_back(taker.column);
        }
    }
    for (Write const& write : rules.writes_of(rule)) {
        if (write.source == Source::column) {
            columns.push_back(write.value);
        }
    }
    sort_and_remove_repetitions(columns);
    return columns;
}

ColumnList writes_of(ColumnRules const& rules, Rule const& rule) {
    ColumnList columns;
    for (Write const& write : rules.writes_of(rule)) {
        columns.push_back(write.column);
    }
    return columns;
}

/// What makes rules one group: the configurations that they wait for, the columns that they read, and
/// those that they write.
std::vector<ColumnList> key_of(ColumnRules const& rules, Rule const& rule) {
    ColumnList configurations;
    for (ColumnRules::Condition const& condition : rules.conditions_of(rule)) {
        configurations.push_back(condition.value);
    }
    return {reads_of(rules, rule), writes_of(rules, rule), std::move(configurations)};
}

void add_to(ColumnList& all, ColumnList const& more) {
    ColumnList sum;
    std::set_union(all.begin(), all.end(), more.begin(), more.end(), std::back_inserter(sum));
    all = std::move(sum);
}

ColumnList touched_by(Groups::Group const& group) {
    ColumnList columns = group.reads;
    add_to(columns, group.writes);
    return columns;
}

/// The number of the group of each rule. Rules with one key are in one group; those that have to be
/// watched together and have several are in a group of their own.
class Grouping {
  public:
    Grouping(ColumnRules const& rules, std::vector<std::uint32_t> const& watched_with,
             StateSpace::SearchMonitor& monitor)
        : m_watched_with(watched_with), m_keys(rules.rules.size()), m_is_mixed(rules.rules.size()) {
        std::map<std::vector<ColumnList>, std::uint32_t> numbers;
        for (std::uint32_t rule = 0; rule < m_keys.size(); ++rule) {
            auto key = key_of(rules, rules.rules[rule]);
            monitor.go_on(1 + key[0].size() + key[1].size());
            auto const number = static_cast<std::uint32_t>(numbers.size());
            m_keys[rule] = numbers.try_emplace(std::move(key), number).first->second;
            if (m_keys[rule] != m_keys[watched_with[rule]]) {
                m_is_mixed[watched_with[rule]] = true;
            }
        }
        m_group_of_key.assign(numbers.size(), none);
        m_group_of_mixed.assign(m_keys.size(), none);
    }

    /// Of rules in ascending order: then groups are numbered in the order of their first rules.
    std::uint32_t group_of(std::uint32_t rule) {
        std::uint32_t const first = m_watched_with[rule];
        std::uint32_t& group =
            m_is_mixed[first] ? m_group_of_mixed[first] : m_group_of_key[m_keys[rule]];
        if (group == none) {
            group = m_count++;
        }
        return group;
    }

  private:
    std::vector<std::uint32_t> const& m_watched_with;
    std::vector<std::uint32_t> m_keys;           // by rule
    std::vector<bool> m_is_mixed;                // by the rule that others are watched with
    std::vector<std::uint32_t> m_group_of_key;   // `none` before the first rule
    std::vector<std::uint32_t> m_group_of_mixed; // by the same rule
    std::uint32_t m_count = 0;
};

/// What one rule writes and another does not, the other writes as it stands there.
void complete(ColumnRules& rules, Groups::Group& group) {
    for (std::uint32_t const number : group.rules) {
        Rule& rule = rules.rules[number];
        ColumnList const own = writes_of(rules, rule);
        ColumnList left;
        std::set_difference(group.writes.begin(), group.writes.end(), own.begin(), own.end(),
                            std::back_inserter(left));
        for (std::uint32_t const column : left) {
            rules.add_write(rule, {column, Source::column, column});
        }
        add_to(group.reads, left);
    }
}

} // namespace

Groups make_groups(ColumnRules& rules, StateSpace::SearchMonitor& monitor) {
    Repetition watched = repetition(rules, monitor);
    Grouping grouping(rules, watched.watched_with, monitor);
    Groups result;
    result.may_repeat = std::move(watched.may_repeat);
    for (std::uint32_t number = 0; number < rules.rules.size(); ++number) {
        std::uint32_t const place = grouping.group_of(number);
        if (place == result.groups.size()) {
            result.groups.emplace_back();
        }
        Groups::Group& group = result.groups[place];
        group.rules.push_back(number);
        add_to(group.reads, reads_of(rules, rules.rules[number]));
        add_to(group.writes, writes_of(rules, rules.rules[number]));
    }
    for (Groups::Group& group : result.groups) {
        monitor.go_on(group.rules.size());
        complete(rules, group);
    }
    std::stable_sort(result.groups.begin(), result.groups.end(),
                     [](Groups::Group const& left, Groups::Group const& right) {
                         return touched_by(left) < touched_by(right);
                     });
    return result;
}

} // namespace Calder::Pins
