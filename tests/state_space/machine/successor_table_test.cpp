#include "state_space/machine/successor_table.h"
#include "tests/state_space/machine/fake_construct.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace Calder::StateSpace {
namespace {

using Testing::lts_of;
using Testing::Row;
using Testing::Rows;

using Random = std::mt19937;
using States = std::vector<StateNumber>;
using Words = std::vector<Word>;

unsigned below(Random& random, std::size_t bound) {
    return static_cast<unsigned>(random() % bound);
}

struct Shape {
    char const* what;
    unsigned slots, states, events, rules, degree;
    bool is_deterministic, has_moves;
};

Rows random_rows(Random& random, Shape const& shape) {
    Rows rows(1 + below(random, shape.states));
    for (Row& row : rows) {
        unsigned const first = below(random, shape.events);
        for (unsigned i = below(random, shape.degree + 1); i > 0; --i) {
            unsigned const event = shape.is_deterministic ? first + i : below(random, shape.events);
            Row::value_type const one(3 + event % shape.events, below(random, rows.size()));
            if (std::find(row.begin(), row.end(), one) == row.end()) {
                row.push_back(one);
            }
        }
    }
    rows[0].emplace_back(3, 0); // no empty alphabet
    return rows;
}

States successors_in(Rows const& rows, StateNumber state, unsigned event) {
    States found;
    for (auto const& [each, target] : rows[state]) {
        if (each == event && std::find(found.begin(), found.end(), target) == found.end()) {
            found.push_back(target);
        }
    }
    return found;
}

/// A configuration and, when rules move, two more that they lead to; rules and all at random.
struct Network {
    Network(Random& random, Shape const& shape) {
        for (unsigned slot = 0; slot < shape.slots; ++slot) {
            graphs.push_back(random_rows(random, shape));
            components.push_back(std::make_unique<Component>(nullptr, lts_of(graphs.back())));
        }
        for (unsigned configuration = 0; configuration < 3; ++configuration) {
            origins.emplace_back();
            std::vector<Component const*> running;
            for (unsigned slot = 0; slot < shape.slots; ++slot) {
                // The later ones run some of the components, in some order, perhaps twice.
                origins.back().push_back(configuration == 0 ? slot : below(random, shape.slots));
                running.push_back(components[origins.back().back()].get());
                if (configuration > 0 && random() % 3 == 0) {
                    break;
                }
            }
            layouts.emplace_back(running, shape.has_moves ? 32U : 0U);
            width = std::max(width, layouts.back().word_count());
        }
        for (unsigned event = 3; flat.rules.size() < shape.rules; event += below(random, 2)) {
            add_rule(random, event, shape.has_moves && random() % 3 == 0);
        }
    }

    void add_rule(Random& random, unsigned event, bool moves) {
        unsigned const target = moves ? 1 + below(random, 2) : 0;
        auto const first = static_cast<std::uint32_t>(flat.participants.size());
        unsigned const count = below(random, 4);
        unsigned slot = below(random, components.size());
        for (unsigned i = 0; i < std::min<std::size_t>(count, components.size()); ++i) {
            auto const& events = components[slot]->events();
            flat.participants.push_back({slot, events[below(random, events.size())].event});
            slot = (slot + 1) % static_cast<unsigned>(components.size());
        }
        auto const taking_part = static_cast<std::uint32_t>(flat.participants.size()) - first;
        auto const sources = static_cast<std::uint32_t>(flat.sources.size());
        flat.rules.push_back({event, target, first, taking_part, moves ? sources : none});
        for (std::size_t i = 0; moves && i < origins[target].size(); ++i) {
            flat.sources.push_back(random() % 4 == 0 ? FlatRules::fresh : origins[target][i]);
        }
        targets.push_back({moves ? &layouts[target] : nullptr, target});
    }

    Words pack(unsigned configuration, States const& states) const {
        Words words(width);
        words[0] = configuration;
        auto const& slots = layouts[configuration].slots();
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            words[slots[slot].word] |= Word{states[slot]} << slots[slot].shift;
        }
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            EXPECT_EQ(slots[slot].read(words.data()), states[slot]) << "slots overlap";
        }
        return words;
    }

    /// What one rule leads to; the last participant's choice changes fastest.
    std::vector<Words> successors(FlatRules::Rule const& rule, States const& from) const {
        std::vector<States> after{from};
        for (Participant const& participant : flat.participants_of(rule)) {
            std::vector<States> next;
            for (States const& states : after) {
                for (StateNumber const target : successors_in(
                         graphs[participant.slot], from[participant.slot], participant.event)) {
                    next.push_back(states);
                    next.back()[participant.slot] = target;
                }
            }
            after = std::move(next);
        }
        std::vector<Words> found;
        for (States const& states : after) {
            States moved = states;
            if (!rule.stays()) {
                moved.clear();
                for (std::size_t i = 0; i < origins[rule.target].size(); ++i) {
                    std::uint32_t const source = flat.sources[rule.first_source + i];
                    moved.push_back(source == FlatRules::fresh ? 0 : states[source]);
                }
            }
            found.push_back(pack(rule.target, moved));
        }
        return found;
    }

    std::vector<Rows> graphs;
    std::vector<std::unique_ptr<Component>> components;
    std::vector<std::vector<unsigned>> origins; // by configuration, then by slot: the component
    std::deque<Layout> layouts;                 // by configuration
    std::uint32_t width = 1;
    FlatRules flat;
    std::vector<SuccessorTable::Target> targets;
};

using Transitions = std::vector<std::pair<unsigned, Words>>;

void check_state(Network const& network, SuccessorTable const& table, States const& states) {
    Transitions wanted;
    for (FlatRules::Rule const& rule : network.flat.rules) {
        for (Words const& successor : network.successors(rule, states)) {
            wanted.emplace_back(rule.event, successor);
        }
    }
    Words const from = network.pack(0, states);
    Steps steps;
    std::vector<StateNumber> scratch;
    steps.clear(network.width);
    table.append_successors(from.data(), steps, scratch);
    Transitions found;
    std::map<Transitions::value_type, unsigned> reports;
    for (std::size_t step = 0; step < steps.size(); ++step) {
        found.emplace_back(steps.event(step),
                           Words(steps.words(step), steps.words(step) + network.width));
        ++reports[found.back()];
    }
    ASSERT_EQ(found, wanted);
    for (std::size_t step = 0; step < steps.size(); ++step) {
        auto const& [event, words] = found[step];
        ASSERT_TRUE(steps.can_repeat(step) || reports[found[step]] == 1) << "not marked";
        if (step % 8 == 0) {
            auto const rule = table.rule_between(from.data(), event, words);
            ASSERT_TRUE(rule.has_value());
            ASSERT_EQ(network.flat.rules[*rule].event, event);
            auto const led_to = network.successors(network.flat.rules[*rule], states);
            ASSERT_EQ(std::count(led_to.begin(), led_to.end(), words) > 0, true);
            ASSERT_FALSE(table.rule_between(from.data(), 2, words).has_value());
        }
    }
}

TEST(MachineSuccessorTable, agrees_with_the_rules_tried_one_by_one) {
    Shape const shapes[] = {
        {"one slot", 1, 4, 2, 3, 2, false, false},
        {"deterministic", 3, 6, 4, 20, 3, true, false},
        {"nondeterministic", 3, 6, 3, 20, 5, false, false},
        {"more than one block of rules", 4, 8, 4, 300, 4, false, false},
        {"exactly two blocks", 4, 8, 4, 128, 3, true, false},
        {"several words", 12, 200, 4, 100, 4, true, false},
        {"several words, nondeterministic", 12, 200, 3, 100, 5, false, false},
        {"many slots of one state", 70, 1, 3, 70, 2, true, false},
        {"large components", 3, 9000, 3, 30, 3, true, false},
        {"large components, nondeterministic", 6, 9000, 3, 30, 4, false, false},
        {"several configurations", 4, 6, 3, 100, 4, true, true},
        {"several configurations of several words", 14, 300, 3, 100, 5, false, true},
    };
    for (Shape const& shape : shapes) {
        for (unsigned seed = 0; seed < (shape.states > 1000 ? 3U : 10U); ++seed) {
            SCOPED_TRACE(std::string(shape.what) + ", seed " + std::to_string(seed));
            Random random(seed);
            Network const network(random, shape);
            SuccessorTable const table(network.layouts[0], network.flat, network.targets);
            for (unsigned i = 0; i < 40; ++i) {
                States states;
                for (Rows const& graph : network.graphs) {
                    states.push_back(below(random, graph.size()));
                }
                check_state(network, table, states);
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(MachineSuccessorTable, marks_what_one_rule_reports_twice_as_it_drops_what_it_moved) {
    Component const dropped(nullptr, lts_of({{{3, 0}, {3, 1}}, {}}));
    Layout const before({&dropped}, 32);
    Layout const after({}, 32);
    FlatRules flat;
    flat.rules = {{5, 1, 0, 1, 0}};
    flat.participants = {{0, 3}};
    SuccessorTable const table(before, flat, {{&after, 1}});
    Steps steps;
    std::vector<StateNumber> scratch;
    Word const start = 0;
    table.append_successors(&start, steps, scratch);
    ASSERT_EQ(steps.size(), 2U);
    EXPECT_TRUE(steps.can_repeat(0) && steps.can_repeat(1));
}

TEST(MachineSuccessorTable, does_not_mark_what_no_other_rule_reports) {
    Component const ring(nullptr, lts_of({{{3, 1}, {4, 0}}, {{3, 0}}}));
    Layout const layout({&ring, &ring}, 0);
    FlatRules flat; // 3 by either of them alone; 4, which may change nothing, too
    flat.rules = {{3, 0, 0, 1, none}, {3, 0, 1, 1, none}, {4, 0, 2, 1, none}, {4, 0, 3, 1, none}};
    flat.participants = {{0, 3}, {1, 3}, {0, 4}, {1, 4}};
    SuccessorTable const table(layout, flat, std::vector(4, SuccessorTable::Target{nullptr, 0}));
    Steps steps;
    std::vector<StateNumber> scratch;
    Word const start = 0;
    table.append_successors(&start, steps, scratch);
    ASSERT_EQ(steps.size(), 4U);
    for (std::size_t step = 0; step < 4; ++step) {
        EXPECT_EQ(steps.can_repeat(step), step >= 2) << step;
    }
}

TEST(MachineComponent, finds_successors_as_the_rows_have_them) {
    struct {
        Shape shape;
        bool is_dense;
    } const rows[] = {{{"", 1, 40, 5, 0, 3, true, false}, true},
                      {{"", 1, 40, 5, 0, 9, false, false}, true},
                      {{"", 1, 60'000, 2'000, 0, 3, true, false}, false}};
    for (auto const& row : rows) {
        Random random(5);
        Rows const graph = random_rows(random, row.shape);
        Component const component(nullptr, lts_of(graph));
        ASSERT_EQ(component.state_count(), graph.size());
        std::map<unsigned, std::pair<bool, bool>> wanted; // (deterministic, loop) by event
        for (StateNumber state = 0; state < graph.size(); ++state) {
            for (auto const& [event, target] : graph[state]) {
                auto& [is_deterministic, has_loop] =
                    wanted.try_emplace(event, true, false).first->second;
                States const targets = successors_in(graph, state, event);
                auto const found = component.successors(state, component.index_of(event));
                ASSERT_EQ(States(found.begin(), found.end()), targets);
                is_deterministic = is_deterministic && targets.size() == 1;
                has_loop = has_loop || target == state;
            }
        }
        ASSERT_EQ(component.events().size(), wanted.size());
        for (Component::Event const& event : component.events()) {
            EXPECT_EQ(std::pair(event.is_deterministic, event.has_loop), wanted.at(event.event));
            EXPECT_EQ(event.only_successor != nullptr, row.is_dense && event.is_deterministic);
            std::uint32_t const index = component.index_of(event.event);
            for (StateNumber state = 0; state < std::min(40U, component.state_count()); ++state) {
                EXPECT_EQ(component.successors(state, index).size(),
                          successors_in(graph, state, event.event).size());
            }
        }
    }
}

} // namespace
} // namespace Calder::StateSpace
