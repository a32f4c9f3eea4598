#include "tests/refinement/random_systems.h"

#include "state_space/machine/machine_exploration.h"

#include <gtest/gtest.h>

#include <array>

namespace Calder::Refinement::Testing {

using namespace StateSpace::Testing;
using ProcessCompiler::tau;
using ProcessCompiler::tick;

unsigned below(Random& random, std::size_t end) {
    return static_cast<unsigned>(random() % end);
}

namespace {

unsigned random_event(Random& random) {
    constexpr std::array<unsigned, 12> events{tau, tau, tick, a, a, a, a, a, b, b, b, b};
    return events[below(random, events.size())];
}

void add_step(Rows& rows, Random& random) {
    rows[below(random, rows.size())].emplace_back(random_event(random), below(random, rows.size()));
}

void mutate(Rows& rows, Random& random) {
    Row& row = rows[below(random, rows.size())];
    if (row.empty()) {
        add_step(rows, random);
        return;
    }
    auto& step = row[below(random, row.size())];
    switch (below(random, 4)) {
    case 0: step.first = random_event(random); break;
    case 1: step.second = below(random, rows.size()); break;
    case 2: row.erase(row.begin() + (&step - row.data())); break;
    default: add_step(rows, random); break;
    }
}

/// The rows of `more` behind those of `rows`; returns where they begin.
unsigned append(Rows& rows, Rows const& more) {
    auto const first = static_cast<unsigned>(rows.size());
    for (Row row : more) {
        for (auto& step : row) {
            step.second += first;
        }
        rows.push_back(std::move(row));
    }
    return first;
}

} // namespace

Rows random_rows(Random& random, unsigned most_states) {
    Rows rows(1 + below(random, most_states));
    for (std::size_t steps = rows.size() + below(random, rows.size() + 1); steps > 0; --steps) {
        add_step(rows, random);
    }
    return rows;
}

Rows internal_choice(Rows const& left, Rows const& right) {
    Rows rows{{}};
    for (Rows const* const side : {&left, &right}) {
        unsigned const first = append(rows, *side);
        rows[0].emplace_back(tau, first);
    }
    return rows;
}

Rows external_choice(Rows const& left, Rows const& right) {
    Rows rows{{}};
    for (Rows const* const side : {&left, &right}) {
        unsigned const first = append(rows, *side);
        rows[0].insert(rows[0].end(), rows[first].begin(), rows[first].end());
    }
    return rows; // a choice that a silent first step makes, as in sliding
}

Rows hidden(Rows rows, unsigned event) {
    for (Row& row : rows) {
        for (auto& step : row) {
            step.first = step.first == event ? tau : step.first;
        }
    }
    return rows;
}

Rows relative_of(Rows const& rows, Random& random) {
    Rows relative = rows;
    switch (below(random, 9)) {
    case 0: return rows;
    case 1: return random_rows(random, 4);
    case 2: return internal_choice(rows, random_rows(random, 2));
    case 3: return external_choice(rows, random_rows(random, 2));
    case 4: return hidden(rows, below(random, 2) == 0 ? a : b);
    case 5: return internal_choice(rows, rows);
    case 6: mutate(relative, random); [[fallthrough]];
    default: mutate(relative, random); return relative;
    }
}

ProcessPointer term_of(Rows const& rows, std::string const& label) {
    return leaf(label, rows);
}

namespace {

/// Joined on a; b and tau by each alone; tick together.
Formats joined(Alphabets const& alphabets) {
    Formats formats(1);
    activate_first_components(formats[0], static_cast<unsigned>(alphabets.size()));
    for (unsigned const event : {a, tick}) {
        append_rule(formats[0], event, 0, {std::pair(0, event), std::pair(1, event)});
    }
    for (unsigned argument = 0; argument < 2; ++argument) {
        for (unsigned const event : {tau, b}) {
            append_rule(formats[0], event, 0, {std::pair(argument, event)});
        }
    }
    return formats;
}

/// The tick of the first argument is silent and starts the second.
Formats in_sequence(Alphabets const&) {
    Formats formats(2);
    formats[0].active_components = {0};
    formats[1].active_components = {1};
    for (unsigned const event : {tau, a, b}) {
        append_rule(formats[0], event, 0, {std::pair(0, event)});
    }
    append_rule(formats[0], tau, 1, {std::pair(0, tick)});
    for (unsigned const event : {tau, tick, a, b}) {
        append_rule(formats[1], event, 1, {std::pair(1, event)});
    }
    return formats;
}

/// b is silent.
Formats hiding(Alphabets const&) {
    return Formats{format_of(
        {0}, {{tau, 0, {{0, tau}}}, {tau, 0, {{0, b}}}, {tick, 0, {{0, tick}}}, {a, 0, {{0, a}}}})};
}

} // namespace

ProcessPointer machine_over(Rows const& rows, std::string const& label) {
    return construct("over " + label, {leaf(label, rows)});
}

ProcessPointer random_machine(Random& random) {
    ProcessPointer const first = leaf("first", random_rows(random, 3));
    ProcessPointer const second = leaf("second", random_rows(random, 3));
    switch (below(random, 4)) {
    case 0: return construct("joined", {first, second}, joined);
    case 1: return construct("sequence", {first, second}, in_sequence);
    case 2: return construct("hiding", {first}, hiding);
    default:
        return construct("sequence", {construct("hiding", {first}, hiding), second}, in_sequence);
    }
}

namespace {

/// Each by itself, but for steps that two of them take together. In half of them nothing is silent: others
/// mostly have a loop that is found soon.
FormatMaker side_by_side(Random& random, unsigned leaves) {
    std::vector<unsigned> active;
    std::vector<PlainRule> rules;
    bool const is_silent = below(random, 2) == 0;
    for (unsigned leaf = 0; leaf < leaves; ++leaf) {
        active.push_back(leaf);
        if (is_silent) {
            rules.push_back({tau, 0, {{leaf, tau}}});
        }
        rules.push_back({a, 0, {{leaf, a}}});
        rules.push_back({b, 0, {{leaf, b}}});
        unsigned const other = below(random, leaves);
        if (leaf < other) {
            rules.push_back({is_silent ? tau : a, 0, {{leaf, a}, {other, b}}});
        }
    }
    rules.push_back({tick, 0, {{0, tick}}});
    return always({format_of(active, rules)});
}

/// All of whose states are reached.
Rows random_ring(Random& random, unsigned most_states) {
    Rows rows = random_rows(random, most_states);
    for (unsigned state = 0; state < rows.size(); ++state) {
        rows[state].emplace_back(below(random, 2) == 0 ? a : b, (state + 1) % rows.size());
    }
    return rows;
}

/// The last state of the first leaf can tick.
ProcessPointer random_leaves(Random& random, std::string const& name, unsigned most_states) {
    std::vector<ProcessPointer> leaves;
    for (unsigned count = 4 + below(random, 3); count > 0; --count) {
        Rows rows = random_ring(random, most_states);
        if (leaves.empty()) {
            rows.back().emplace_back(tick, 0);
        }
        leaves.push_back(leaf(name + std::to_string(count), rows));
    }
    return construct(name, leaves, side_by_side(random, static_cast<unsigned>(leaves.size())));
}

} // namespace

ProcessPointer random_network(Random& random) {
    if (below(random, 3) != 0) {
        return random_leaves(random, "network", 5);
    }
    ProcessPointer const first = random_leaves(random, "first", 4);
    return construct("sequence", {first, random_leaves(random, "second", 4)}, in_sequence);
}

ProcessPointer growing_machine() {
    std::vector<ProcessPointer> arguments{leaf("first", {{{a, 1}}, {{b, 0}, {tau, 1}}})};
    std::vector<unsigned> active{0};
    std::vector<PlainRule> rules{{a, 0, {{0, a}}}, {b, 1, {{0, b}}}, {tau, 0, {{0, tau}}}};
    std::vector<UnCompiledFormat> formats{format_of(active, rules)};
    for (unsigned format = 1; format < 3; ++format) {
        Participants together;
        for (unsigned argument = 3 * format - 2; argument <= 3 * format; ++argument) {
            arguments.push_back(ring("ring" + std::to_string(argument), 600, a));
            active.push_back(argument);
            together.emplace_back(argument, a);
        }
        rules.push_back({a, format, together});
        for (PlainRule& rule : rules) {
            rule.target_format = format;
        }
        rules[1].target_format = std::min(format + 1, 2U);
        formats.push_back(format_of(active, rules));
    }
    return construct("growing", arguments, always(formats));
}

Rows rows_of_machine(ProcessPointer const& term) {
    NamedProcessSource const source;
    StateSpace::MachineExploration const explored =
        StateSpace::explore_by_machine(term, source, {});
    EXPECT_TRUE(explored.machine) << explored.run.refusal;
    return rows_of(explored.run.lts);
}

std::string text_of(Rows const& rows) {
    std::string text;
    for (std::size_t state = 0; state < rows.size(); ++state) {
        text += std::to_string(state) + ":";
        for (auto const& [event, target] : rows[state]) {
            text += " " + text_of(std::vector<unsigned>{event}) + ">" + std::to_string(target);
        }
        text += "; ";
    }
    return text;
}

std::string text_of(std::vector<unsigned> const& events) {
    std::string text;
    for (unsigned const event : events) {
        text += event == tau    ? "~"
                : event == tick ? "!"
                : event == a    ? "a"
                : event == b    ? "b"
                                : "?";
    }
    return text;
}

} // namespace Calder::Refinement::Testing
