#pragma once

#include "refinement/determinisation.h"
#include "refinement/evidence.h"
#include "refinement/pair_search.h"

namespace Calder::Refinement {

/// What people want to know of the states and steps of a side.
[[nodiscard]] RunState described_state(Side const& side, StateNumber number, Word const* state);
[[nodiscard]] EvidenceStep described_step(Side const& side, StateNumber source,
                                          Word const* source_words, unsigned event,
                                          StateNumber target, Word const* target_words);

/// The way by which a search reached the pair first. The events are found again, pair by pair.
[[nodiscard]] std::vector<EvidenceStep> steps_to(PairSearch& search, Side const& side,
                                                 StateNumber pair);

/// The silent steps through these pairs and back to the first.
[[nodiscard]] std::vector<EvidenceStep> loop_through(PairSearch& search, Side const& side,
                                                     std::vector<StateNumber> const& pairs);

[[nodiscard]] RunState state_of(PairSearch& search, Side const& side, StateNumber pair);

/// What the pair's state can do, ascending, each event once.
[[nodiscard]] std::vector<unsigned> offer_of(PairSearch& search, StateNumber pair);

/// Their visible events.
[[nodiscard]] std::vector<unsigned> trace_of(std::vector<EvidenceStep> const& steps);

} // namespace Calder::Refinement
