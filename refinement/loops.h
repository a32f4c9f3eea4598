#pragma once

#include "refinement/pair_search.h"

namespace Calder::Refinement {

/// Of the loops of silent steps among explored pairs that can be reached silently from one of `heads`:
/// a shortest one of those through the lowest pair that is on any, beginning with that pair. Empty
/// where there is none. Linear in the pairs and silent steps that the heads lead to (Tarjan, 1972);
/// 4 bytes for every pair of the search besides.
[[nodiscard]] std::vector<StateNumber>
first_loop(PairSearch& search, std::vector<StateNumber> const& heads, SearchMonitor& monitor);

} // namespace Calder::Refinement
