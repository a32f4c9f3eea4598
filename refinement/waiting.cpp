#include "refinement/waiting.h"

#include "process_compiler/event_numbers.h"
#include "refinement/minimal_sets.h"
#include "state_space/machine/run/configuration_tables.h"

#include <algorithm>
#include <tuple>

namespace Calder::Refinement {

using HighLevelMachine::ComponentEvent;
using HighLevelMachine::UnCompiledFormat;
using HighLevelMachine::UnCompiledRule;
using ProcessCompiler::no_event;
using StateSpace::ConfigurationNumber;
using StateSpace::Configurations;
using StateSpace::Leaf;
using StateSpace::none;
using StateSpace::Part;

namespace {

using Slots = std::vector<std::uint32_t>;

/// Sets of slots of which one would have to be able to do more, none containing another. The empty
/// set: it can happen as things are. No set: it can never happen.
using Lacks = std::vector<Slots>;

bool is_able(Lacks const& lacks) {
    return lacks.size() == 1 && lacks.front().empty();
}

void tidy(Lacks& lacks) {
    keep_minimal(lacks, [](std::size_t) {});
    lacks.resize(std::min(lacks.size(), most_ways));
}

/// What both lack.
Lacks both(Lacks const& left, Lacks const& right) {
    Lacks result;
    for (Slots const& one : left) {
        for (Slots const& other : right) {
            Slots& sum = result.emplace_back();
            std::set_union(one.begin(), one.end(), other.begin(), other.end(),
                           std::back_inserter(sum));
        }
    }
    tidy(result);
    return result;
}

/// A leaf's event, and what it is at the construct that is looked at.
struct Wish {
    unsigned event;
    std::uint32_t slot;
    unsigned part_event;
    Lacks lacks;

    auto key() const { return std::tie(event, slot, part_event); }
};

struct Way {
    unsigned event;
    Lacks lacks;

    auto key() const { return std::tie(event); }
};

/// Makes one of those with equal keys, which then ascend.
template <typename Entry> void merge(std::vector<Entry>& entries) {
    std::stable_sort(entries.begin(), entries.end(), [](Entry const& left, Entry const& right) {
        return left.key() < right.key();
    });
    std::vector<Entry> merged;
    for (Entry& entry : entries) {
        if (merged.empty() || merged.back().key() != entry.key()) {
            merged.push_back(std::move(entry));
        } else {
            Lacks& lacks = merged.back().lacks;
            std::move(entry.lacks.begin(), entry.lacks.end(), std::back_inserter(lacks));
        }
    }
    for (Entry& entry : merged) {
        tidy(entry.lacks);
    }
    entries = std::move(merged);
}

/// A tree of constructs, or a leaf, as it is in the state.
struct Subtree {
    std::vector<Way> ways;    // ascending by event, each once
    std::vector<Wish> wishes; // ascending
    /// What it lacks for events that are not among the ways.
    Lacks otherwise{};

    Lacks const& lacks(unsigned event) const {
        auto const place =
            std::lower_bound(ways.begin(), ways.end(), event,
                             [](Way const& way, unsigned wanted) { return way.event < wanted; });
        return place != ways.end() && place->event == event ? place->lacks : otherwise;
    }
};

class Inquiry {
  public:
    Inquiry(RunningMachine const& machine, RunState const& state)
        : m_configurations(machine.tables->configurations()), m_state(state) {}

    Subtree subtree(ConfigurationNumber number, std::uint32_t first_slot) {
        m_is_too_deep = m_is_too_deep || m_stack.is_low();
        if (m_is_too_deep || m_configurations.part(number) == none) {
            return {};
        }
        Part const& part = m_configurations.machine().parts[m_configurations.part(number)];
        if (!part.is_construct()) {
            return leaf(*m_configurations.machine().leaves[part.leaf], first_slot);
        }
        std::vector<Subtree> children;
        for (ConfigurationNumber const child : m_configurations.children(number)) {
            children.push_back(subtree(child, first_slot));
            first_slot += m_configurations.slot_count(child);
        }
        Subtree result;
        UnCompiledFormat const& format = part.formats[m_configurations.format(number)];
        for (UnCompiledRule const& rule : format.rules) {
            add_rule(format, rule, children, result);
        }
        merge(result.ways);
        merge(result.wishes);
        return result;
    }

    bool is_too_deep() const noexcept { return m_is_too_deep; }

  private:
    /// One argument's part in a rule.
    struct Taking {
        Subtree const* subtree;
        unsigned event;

        Lacks const& lacks() const { return subtree->lacks(event); }
    };

    Subtree leaf(Leaf const& leaf, std::uint32_t slot) const {
        Subtree result;
        result.otherwise = {{slot}};
        for (Leaf::Event const& event : leaf.events()) {
            if (!leaf.successors(m_state.slots[slot].state, leaf.index_of(event.event)).empty()) {
                result.ways.push_back({event.event, {{}}});
                result.wishes.push_back({event.event, slot, event.event, {{}}});
            }
        }
        return result;
    }

    static void add_rule(UnCompiledFormat const& format, UnCompiledRule const& rule,
                         std::vector<Subtree> const& children, Subtree& result) {
        std::vector<Taking> takings;
        for (ComponentEvent const& participant : rule.component_events) {
            if (participant.event == no_event) {
                continue; // named without taking part
            }
            std::uint32_t const place = StateSpace::place_of(participant.component, format);
            if (place == none) {
                return;
            }
            takings.push_back({&children[place], participant.event});
        }
        Lacks all{{}};
        for (Taking const& taking : takings) {
            if (!is_able(taking.lacks())) {
                all = both(all, taking.lacks());
            }
        }
        if (!all.empty()) {
            result.ways.push_back({rule.event, all});
        }
        for (Taking const& taking : takings) {
            add_wishes(rule.event, taking, all, result.wishes);
        }
    }

    /// Those of an argument that the rule makes its own. By what a wish lacks the argument would be
    /// able, so what all lack adds what the others do.
    static void add_wishes(unsigned event, Taking const& taking, Lacks const& all,
                           std::vector<Wish>& wishes) {
        auto const& inner = taking.subtree->wishes;
        auto wish = std::lower_bound(
            inner.begin(), inner.end(), taking.event,
            [](Wish const& candidate, unsigned wanted) { return candidate.event < wanted; });
        for (; wish != inner.end() && wish->event == taking.event; ++wish) {
            Lacks lacks = both(wish->lacks, all);
            if (!lacks.empty()) {
                wishes.push_back({event, wish->slot, wish->part_event, std::move(lacks)});
            }
        }
    }

    StateSpace::StackGuard const m_stack{};
    Configurations const& m_configurations;
    RunState const& m_state;
    bool m_is_too_deep = false;
};

/// From `start` back to it over slots above it, in fewer than `limit` steps; empty if there is no such
/// way. Breadth-first with ascending successors: the first way found is the least.
Slots cycle_from(std::vector<Slots> const& waits_for, std::uint32_t start, std::size_t limit) {
    Slots parents(waits_for.size(), none);
    Slots reached{start};
    std::size_t level_end = 1;
    std::size_t length = 1;
    for (std::size_t next = 0; next < reached.size(); ++next) {
        if (next == level_end) {
            level_end = reached.size();
            ++length;
        }
        if (length >= limit) {
            break;
        }
        for (std::uint32_t const other : waits_for[reached[next]]) {
            if (other == start) {
                Slots cycle;
                for (std::uint32_t slot = reached[next]; slot != start; slot = parents[slot]) {
                    cycle.push_back(slot);
                }
                cycle.push_back(start);
                std::reverse(cycle.begin(), cycle.end());
                return cycle;
            }
            if (other > start && parents[other] == none) {
                parents[other] = reached[next];
                reached.push_back(other);
            }
        }
    }
    return {};
}

} // namespace

std::vector<Waiting> waiting_in(RunningMachine const& machine, RunState const& state) {
    std::vector<Waiting> waiting;
    if (!machine.machine) {
        return waiting;
    }
    Inquiry inquiry(machine, state);
    auto wishes = inquiry.subtree(state.configuration, 0).wishes;
    if (inquiry.is_too_deep()) {
        return waiting;
    }
    std::sort(wishes.begin(), wishes.end(), [](Wish const& left, Wish const& right) {
        return std::tie(left.slot, left.part_event, left.event) <
               std::tie(right.slot, right.part_event, right.event);
    });
    auto wish = wishes.begin();
    for (std::uint32_t slot = 0; slot < state.slots.size(); ++slot) {
        Waiting& own = waiting.emplace_back(Waiting{state.slots[slot], slot, {}});
        Leaf const& leaf = *machine.machine->leaves[own.slot_state.leaf];
        for (Leaf::Event const& event : leaf.events()) {
            if (leaf.successors(own.slot_state.state, leaf.index_of(event.event)).empty()) {
                continue;
            }
            bool const is_blocked =
                wish == wishes.end() || wish->slot != slot || wish->part_event != event.event;
            if (is_blocked) {
                own.wanted.push_back({no_event, event.event, {}});
                continue;
            }
            for (; wish != wishes.end() && wish->slot == slot && wish->part_event == event.event;
                 ++wish) {
                for (Slots& missing : wish->lacks) {
                    own.wanted.push_back({wish->event, event.event, std::move(missing)});
                }
            }
        }
    }
    return waiting;
}

std::vector<std::uint32_t> waiting_cycle(std::vector<Waiting> const& waiting) {
    std::vector<Slots> waits_for(waiting.size());
    for (Waiting const& own : waiting) {
        Slots& others = waits_for[own.slot];
        for (Wanted const& wanted : own.wanted) {
            others.insert(others.end(), wanted.missing.begin(), wanted.missing.end());
        }
        std::sort(others.begin(), others.end());
        others.erase(std::unique(others.begin(), others.end()), others.end());
    }
    Slots shortest;
    for (std::uint32_t slot = 0; slot < waits_for.size(); ++slot) {
        Slots cycle =
            cycle_from(waits_for, slot, shortest.empty() ? waiting.size() + 1 : shortest.size());
        if (!cycle.empty()) {
            shortest = std::move(cycle);
        }
    }
    return shortest;
}

} // namespace Calder::Refinement
