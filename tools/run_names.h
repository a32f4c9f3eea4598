#pragma once

#include "refinement/waiting.h"
#include "tools/leaf_names.h"

#include <memory>
#include <span>

namespace Calder::Tools {

/// What people call the events and components of a run.
class RunNames {
  public:
    RunNames(Script::Script const& script, Refinement::RunningMachine const& machine);

    std::string event(unsigned event) const;
    std::vector<std::string> events(std::span<unsigned const> events) const;

    /// The components of a state, slot by slot; none where there is no machine.
    std::vector<std::string> const& components(Refinement::RunState const& state);

    /// The beginning of the term that a state is; empty where there is a machine.
    std::string term(Refinement::RunState const& state) const;

    /// Who takes part.
    std::vector<std::string> participants(Refinement::EvidenceStep const& step);

  private:
    ProcessCompiler::Session const& m_session;
    std::unique_ptr<LeafNames const> m_leaves; // null where there is no machine
    std::vector<std::uint32_t> m_running;      // in the state asked for last
    std::vector<std::string> m_components;     // their names
};

} // namespace Calder::Tools
