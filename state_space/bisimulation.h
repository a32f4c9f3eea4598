#pragma once

#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"

#include <vector>

namespace Calder::StateSpace {

/// The classes of strong bisimilarity (Park, 1981; Milner, 1989) of a system: two states have the
/// same number exactly when each can answer every event of the other by the same event, to states
/// that again can. Tau is an event like any other. The numbers are below the number of classes. A
/// state that was not explored counts as one without transitions.
///
/// Partition refinement by signatures (Blom and Orzan, 2005): a state's signature is the set of its
/// (event, class of target), and a class is split where signatures differ. Only states with a
/// target whose class has changed are looked at again, and of a class that is split the largest
/// part keeps its number (Hopcroft, 1971), so a state's class changes at most log n times. Memory
/// is linear in the system.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::vector<StateNumber>
bisimulation_classes(LabelledTransitionSystem const& lts);

/// Whether the starts of two systems are strongly bisimilar. A system without states has no start,
/// and is like another one without.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT bool are_bisimilar(LabelledTransitionSystem const& left,
                                                           LabelledTransitionSystem const& right);

} // namespace Calder::StateSpace
