#pragma once

#include "script/script.h"
#include "state_space/machine/machine_exploration.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Calder::Tools {

/// What people call the leaves of a machine: by the name that the script gives the process, and
/// where it gives none, by the beginning of the term.
class LeafNames {
  public:
    LeafNames(Script::Script const& script, StateSpace::Machine const& machine);

    std::string const& name(std::uint32_t leaf) const { return m_names[leaf]; }

    /// Of leaves side by side; those of one name are told apart by #1, #2 and so on.
    std::vector<std::string> names(std::vector<std::uint32_t> const& leaves) const;

  private:
    std::vector<std::string> m_names; // by leaf
};

/// The names of the leaves that take part in the step from a state to another with this event.
std::vector<std::string> names_taking_part(LeafNames const& names,
                                           StateSpace::MachineExploration const& exploration,
                                           StateSpace::StateNumber source, unsigned event,
                                           StateSpace::StateNumber target);

/// The term as text, cut after about so many characters.
std::string short_text(ProcessCompiler::Process const& term,
                       ProcessCompiler::Session const& session, std::int32_t most_characters = 40);

/// The operator symbol of a construct, its sets abbreviated.
std::string operator_text(ProcessCompiler::Process const& construct,
                          ProcessCompiler::Session const& session);

} // namespace Calder::Tools
