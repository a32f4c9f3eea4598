#include "tools/run_names.h"

namespace Calder::Tools {

namespace {

constexpr std::int32_t most_characters = 80;

} // namespace

RunNames::RunNames(Script::Script const& script, Refinement::RunningMachine const& machine)
    : m_session(script.session()),
      m_leaves(machine.machine ? std::make_unique<LeafNames>(script, *machine.machine) : nullptr) {}

std::string RunNames::event(unsigned event) const {
    return m_session.event_object(event)->name();
}

std::vector<std::string> RunNames::events(std::span<unsigned const> events) const {
    std::vector<std::string> names;
    for (unsigned const each : events) {
        names.push_back(event(each));
    }
    return names;
}

/// Most steps stay among the same leaves, whose names are made once.
std::vector<std::string> const& RunNames::components(Refinement::RunState const& state) {
    std::vector<std::uint32_t> running;
    for (Refinement::SlotState const& slot : state.slots) {
        running.push_back(slot.leaf);
    }
    if (running != m_running) {
        m_components = m_leaves->names(running);
        m_running = std::move(running);
    }
    return m_components;
}

std::string RunNames::term(Refinement::RunState const& state) const {
    return state.term ? short_text(*state.term, m_session, most_characters) : "";
}

std::vector<std::string> RunNames::participants(Refinement::EvidenceStep const& step) {
    std::vector<std::string> names;
    for (StateSpace::Participant const& participant : step.participants) {
        names.push_back(components(step.source)[participant.slot]);
    }
    return names;
}

} // namespace Calder::Tools
