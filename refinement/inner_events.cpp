#include "refinement/inner_events.h"

#include "process_compiler/event_numbers.h"

#include <algorithm>

namespace Calder::Refinement {

using HighLevelMachine::ComponentEvent;
using HighLevelMachine::UnCompiledFormat;
using HighLevelMachine::UnCompiledRule;
using ProcessCompiler::no_event;
using ProcessCompiler::tau;
using StateSpace::ConfigurationNumber;
using StateSpace::Configurations;
using StateSpace::none;
using StateSpace::Part;
using StateSpace::Participant;

namespace {

/// Finds which rule of each construct led to the participants.
class Derivation {
  public:
    Derivation(Configurations const& configurations, std::span<Participant const> participants)
        : m_configurations(configurations), m_participants(participants) {}

    /// Whether the tree, whose slots begin at `first_slot`, performs the event by exactly those
    /// participants that are among its slots.
    bool performs(ConfigurationNumber number, std::uint32_t first_slot, unsigned event) {
        if (m_stack.is_low() || m_configurations.part(number) == none) {
            return false;
        }
        Part const& part = m_configurations.machine().parts[m_configurations.part(number)];
        if (!part.is_construct()) {
            return std::find(m_participants.begin(), m_participants.end(),
                             Participant{first_slot, event}) != m_participants.end();
        }
        UnCompiledFormat const& format = part.formats[m_configurations.format(number)];
        return std::any_of(
            format.rules.begin(), format.rules.end(), [&](UnCompiledRule const& rule) {
                return rule.event == event && fires(number, first_slot, format, rule);
            });
    }

    std::vector<unsigned> const& inner() const noexcept { return m_inner; }

  private:
    bool fires(ConfigurationNumber number, std::uint32_t first_slot, UnCompiledFormat const& format,
               UnCompiledRule const& rule) {
        auto const children = m_configurations.children(number);
        std::vector<unsigned> wanted(children.size(), no_event);
        for (ComponentEvent const& participant : rule.component_events) {
            if (participant.event == no_event) {
                continue; // named without taking part
            }
            std::uint32_t const place = StateSpace::place_of(participant.component, format);
            if (place == none) {
                return false;
            }
            wanted[place] = participant.event;
        }
        std::size_t const noted = m_inner.size();
        for (std::size_t place = 0; place < children.size(); ++place) {
            std::uint32_t const slots = m_configurations.slot_count(children[place]);
            if (wanted[place] == no_event ? has_participant(first_slot, slots)
                                          : !performs(children[place], first_slot, wanted[place])) {
                m_inner.resize(noted); // what led nowhere was not it
                return false;
            }
            first_slot += slots;
        }
        if (rule.event == tau) {
            note(wanted);
        }
        return true;
    }

    bool has_participant(std::uint32_t first_slot, std::uint32_t count) const {
        return std::any_of(
            m_participants.begin(), m_participants.end(),
            [=](Participant const& participant) { return participant.slot - first_slot < count; });
    }

    /// The construct that made the tau is the lowest whose arguments perform something else.
    void note(std::vector<unsigned> const& events) {
        for (unsigned const event : events) {
            if (event != no_event && event != tau &&
                std::find(m_inner.begin(), m_inner.end(), event) == m_inner.end()) {
                m_inner.push_back(event);
            }
        }
    }

    StateSpace::StackGuard const m_stack{};
    Configurations const& m_configurations;
    std::span<Participant const> m_participants;
    std::vector<unsigned> m_inner;
};

} // namespace

std::vector<unsigned> inner_events(Configurations const& configurations,
                                   ConfigurationNumber configuration,
                                   std::span<Participant const> participants) {
    Derivation derivation(configurations, participants);
    return derivation.performs(configuration, 0, tau) ? derivation.inner()
                                                      : std::vector<unsigned>();
}

} // namespace Calder::Refinement
