#pragma once

#include "state_space/machine/flatten/flat_rules.h"

namespace Calder::Refinement {

/// What became a tau when these leaves took part in one in a configuration: the events that arguments
/// performed below the construct that made it silent, each once. Empty where none did.
///
/// The rules of the constructs are gone through from above until some lead to the same participants.
/// Slow; for people who ask what was hidden.
[[nodiscard]] std::vector<unsigned>
inner_events(StateSpace::Configurations const& configurations,
             StateSpace::ConfigurationNumber configuration,
             std::span<StateSpace::Participant const> participants);

} // namespace Calder::Refinement
