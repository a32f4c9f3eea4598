#pragma once

#include "state_space/export.h"
#include "state_space/machine/run/steps.h"

#include <vector>

namespace Calder::StateSpace {

/// How many transitions the steps of states are, where nothing but that is wanted of them: a step that may be
/// repeated counts once for its row. Keeps its storage.
class CALDER_STATE_SPACE_EXPORT RowCount {
  public:
    /// Of the row of steps from `first` up to `last`. Throws std::bad_alloc.
    std::uint64_t of_row(Steps const& steps, std::size_t first, std::size_t last) {
        std::size_t repeatable = 0;
        for (std::size_t step = first; step < last; ++step) {
            repeatable += steps.can_repeat(step) ? 1 : 0;
        }
        return repeatable < 2 ? last - first
                              : last - first - repeatable + different(steps, first, last);
    }

  private:
    std::uint64_t different(Steps const& steps, std::size_t first, std::size_t last);

    std::vector<std::size_t> m_repeatable;
};

} // namespace Calder::StateSpace
