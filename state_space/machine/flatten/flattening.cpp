#include "state_space/machine/flatten/flattening.h"

#include "process_compiler/event_numbers.h"
#include "state_space/machine/machine_refusal.h"
#include "state_space/memory.h"

#include <algorithm>
#include <numeric>

namespace Calder::StateSpace {

using HighLevelMachine::ComponentEvent;
using HighLevelMachine::UnCompiledFormat;
using HighLevelMachine::UnCompiledRule;
using ProcessCompiler::no_event;

namespace {

struct Child {
    ConfigurationNumber number;
    FlatRules const* rules;
    std::uint32_t first_slot;
};

/// A child that takes part in the rule at hand, and its rules for its event.
struct Taker {
    std::uint32_t child;
    std::span<FlatRules::Rule const> options;
    std::size_t chosen;

    FlatRules::Rule const& option() const noexcept { return options[chosen]; }
};

/// Of one configuration with a construct at its root.
class ConstructFlattening {
  public:
    ConstructFlattening(Configurations& configurations, ConfigurationNumber number,
                        std::vector<Child> children, SearchMonitor& monitor)
        : m_configurations(configurations), m_monitor(monitor), m_number(number),
          m_part(configurations.machine().parts[configurations.part(number)]),
          m_format(m_part.formats[configurations.format(number)]), m_children(std::move(children)),
          m_taker_of(m_children.size(), none) {}

    FlatRules run() {
        for (UnCompiledRule const* const rule : rules_that_fire()) {
            find_takers(*rule);
            do {
                add(*rule);
            } while (choose_next());
            forget_takers();
        }
        return std::move(m_flat);
    }

  private:
    std::vector<UnCompiledRule const*> rules_that_fire();
    bool find_takers(UnCompiledRule const& rule);
    void forget_takers();
    bool choose_next();
    void add(UnCompiledRule const& rule);
    void add_participants();
    bool every_taker_stays() const;
    void add_target(UnCompiledRule const& rule, FlatRules::Rule& flat);
    ConfigurationNumber add_sources_of_child(std::uint32_t child);
    void drop_double();
    void watch(std::size_t added) const;

    Configurations& m_configurations;
    SearchMonitor& m_monitor;
    ConfigurationNumber m_number;
    Part const& m_part;
    UnCompiledFormat const& m_format;
    std::vector<Child> m_children;
    std::vector<Taker> m_takers;
    std::vector<std::uint32_t> m_taker_of; // by child; `none` when it takes no part
    FlatRules m_flat;
};

/// By event, so that the flat rules, of which there may be millions, need not be sorted. Most rules
/// of some constructs never fire.
std::vector<UnCompiledRule const*> ConstructFlattening::rules_that_fire() {
    std::vector<UnCompiledRule const*> rules;
    for (UnCompiledRule const& rule : m_format.rules) {
        if (find_takers(rule)) {
            rules.push_back(&rule);
        }
        forget_takers();
    }
    std::stable_sort(rules.begin(), rules.end(),
                     [](UnCompiledRule const* left, UnCompiledRule const* right) {
                         return left->event < right->event;
                     });
    return rules;
}

/// False when one of those who are to take part does not run, or cannot.
bool ConstructFlattening::find_takers(UnCompiledRule const& rule) {
    for (ComponentEvent const& participant : rule.component_events) {
        if (participant.event == no_event) {
            continue; // named without taking part
        }
        std::uint32_t const child = place_of(participant.component, m_format);
        if (child == none) {
            return false;
        }
        auto const options = m_children[child].rules->of_event(participant.event);
        if (options.empty()) {
            return false;
        }
        m_taker_of[child] = static_cast<std::uint32_t>(m_takers.size());
        m_takers.push_back({child, options, 0});
    }
    return true;
}

void ConstructFlattening::forget_takers() {
    for (Taker const& taker : m_takers) {
        m_taker_of[taker.child] = none;
    }
    m_takers.clear();
}

/// The next combination of what the takers do, the last one's choice changing fastest.
bool ConstructFlattening::choose_next() {
    for (auto taker = m_takers.rbegin(); taker != m_takers.rend(); ++taker) {
        if (++taker->chosen < taker->options.size()) {
            return true;
        }
        taker->chosen = 0;
    }
    return false;
}

void ConstructFlattening::add(UnCompiledRule const& rule) {
    if (m_flat.rules.size() >= Flattening::most_rules) {
        throw MachineRefusal("it has too many rules");
    }
    std::size_t const before = m_flat.participants.size() + m_flat.sources.size();
    auto const first = static_cast<std::uint32_t>(m_flat.participants.size());
    add_participants();
    auto const count = static_cast<std::uint32_t>(m_flat.participants.size()) - first;
    FlatRules::Rule flat{rule.event, m_number, first, count, none};
    if (rule.target_format != m_configurations.format(m_number) || !every_taker_stays()) {
        add_target(rule, flat);
    }
    m_flat.rules.push_back(flat);
    watch(m_flat.participants.size() + m_flat.sources.size() - before);
    drop_double();
}

/// Participants and sources may be many for each rule: it is they that take the memory.
void ConstructFlattening::watch(std::size_t added) const {
    if (m_flat.participants.size() >= none || m_flat.sources.size() >= none) {
        throw MachineRefusal("it has too many rules");
    }
    if (m_monitor.is_due(added + 1)) {
        std::uint64_t const ahead = m_monitor.work_ahead();
        m_monitor.go_on(0, growth_bytes(m_flat.rules, ahead) +
                               growth_bytes(m_flat.participants, ahead) +
                               growth_bytes(m_flat.sources, ahead));
    }
}

void ConstructFlattening::add_participants() {
    for (Taker const& taker : m_takers) {
        Child const& child = m_children[taker.child];
        for (Participant const& inner : child.rules->participants_of(taker.option())) {
            m_flat.participants.push_back({inner.slot + child.first_slot, inner.event});
        }
    }
}

bool ConstructFlattening::every_taker_stays() const {
    return std::all_of(m_takers.begin(), m_takers.end(),
                       [](Taker const& taker) { return taker.option().stays(); });
}

/// The configuration that the rule leads to, and where the states of its slots come from: from the
/// slots of the same argument, stepped or not, or from the start of an argument that did not run.
void ConstructFlattening::add_target(UnCompiledRule const& rule, FlatRules::Rule& flat) {
    flat.first_source = static_cast<std::uint32_t>(m_flat.sources.size());
    std::vector<ConfigurationNumber> children;
    for (unsigned const argument : m_part.formats[rule.target_format].active_components) {
        std::uint32_t const child = place_of(argument, m_format);
        if (child != none) {
            children.push_back(add_sources_of_child(child));
        } else {
            children.push_back(m_configurations.start_of(m_part.arguments[argument]));
            m_flat.sources.resize(m_flat.sources.size() +
                                      m_configurations.slot_count(children.back()),
                                  FlatRules::fresh);
        }
    }
    flat.target =
        m_configurations.in_format(m_configurations.part(m_number), rule.target_format, children);
}

/// Returns the configuration that the child is in afterwards.
ConfigurationNumber ConstructFlattening::add_sources_of_child(std::uint32_t number) {
    Child const& child = m_children[number];
    Taker const* const taker = m_taker_of[number] == none ? nullptr : &m_takers[m_taker_of[number]];
    if (taker == nullptr || taker->option().stays()) {
        std::size_t const before = m_flat.sources.size();
        m_flat.sources.resize(before + m_configurations.slot_count(child.number));
        std::iota(m_flat.sources.begin() + static_cast<std::ptrdiff_t>(before),
                  m_flat.sources.end(), child.first_slot);
        return child.number;
    }
    FlatRules::Rule const& inner = taker->option();
    for (std::uint32_t slot = 0; slot < m_configurations.slot_count(inner.target); ++slot) {
        std::uint32_t const source = child.rules->sources[inner.first_source + slot];
        m_flat.sources.push_back(source == FlatRules::fresh ? source : source + child.first_slot);
    }
    return inner.target;
}

/// Some constructs list a rule twice: where the two meet, the later one goes. Others may stay, as
/// the transitions of a state are a set in any case.
void ConstructFlattening::drop_double() {
    if (m_flat.rules.size() < 2) {
        return;
    }
    FlatRules::Rule const& last = m_flat.rules.back();
    FlatRules::Rule const& before = m_flat.rules[m_flat.rules.size() - 2];
    auto const participants = m_flat.participants_of(last);
    auto const participants_before = m_flat.participants_of(before);
    bool is_double = last.event == before.event && last.target == before.target &&
                     last.stays() == before.stays() &&
                     std::equal(participants.begin(), participants.end(),
                                participants_before.begin(), participants_before.end());
    if (is_double && !last.stays()) {
        auto const source = [this](FlatRules::Rule const& rule) {
            return m_flat.sources.begin() + static_cast<std::ptrdiff_t>(rule.first_source);
        };
        is_double = std::equal(source(last), m_flat.sources.end(), source(before));
    }
    if (is_double) {
        m_flat.participants.resize(last.first_participant);
        m_flat.sources.resize(last.stays() ? m_flat.sources.size() : last.first_source);
        m_flat.rules.pop_back();
    }
}

FlatRules rules_of_leaf(Leaf const& leaf) {
    FlatRules flat;
    for (Leaf::Event const& event : leaf.events()) {
        auto const place = static_cast<std::uint32_t>(flat.participants.size());
        flat.rules.push_back({event.event, none, place, 1, none});
        flat.participants.push_back({0, event.event});
    }
    return flat;
}

} // namespace

FlatRules const& Flattening::rules(ConfigurationNumber number, SearchMonitor& monitor) {
    if (FlatRules const* const known = known_rules(number)) {
        return *known;
    }
    refuse_if_low(m_stack);
    auto made = std::make_unique<FlatRules const>(flatten(number, monitor));
    if (m_rules.size() <= number) {
        m_rules.resize(std::size_t{number} + 1);
    }
    m_rules[number] = std::move(made);
    return *m_rules[number];
}

FlatRules Flattening::flatten(ConfigurationNumber number, SearchMonitor& monitor) {
    Machine const& machine = m_configurations.machine();
    PartNumber const part = m_configurations.part(number);
    if (part == none) {
        return {};
    }
    if (!machine.parts[part].is_construct()) {
        return rules_of_leaf(*machine.leaves[machine.parts[part].leaf]);
    }
    std::vector<Child> children;
    std::uint32_t slot = 0;
    for (ConfigurationNumber const child : m_configurations.children(number)) {
        children.push_back({child, &rules(child, monitor), slot});
        slot += m_configurations.slot_count(child);
    }
    return ConstructFlattening(m_configurations, number, std::move(children), monitor).run();
}

} // namespace Calder::StateSpace
