#pragma once

#include "state_space/search_monitor.h"

#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace Calder::Refinement {

/// Events, ascending.
using Events = std::vector<unsigned>;

/// Families of sets of events of which none contains another: the acceptances that matter of a
/// node's states. Equal families are one, since many nodes have the same.
class MinimalSets {
  public:
    using Family = std::uint32_t;

    /// The minimal ones of these sets. Compares each with the minimal ones that are smaller; throws
    /// SearchEnded when the monitor ends it.
    Family add(std::vector<Events> sets, StateSpace::SearchMonitor& monitor);

    /// Of a family, ascending.
    [[nodiscard]] std::vector<Events> const& sets(Family family) const {
        return *m_families[family];
    }

    /// Whether one of the family's sets is contained in the given one, which is ascending.
    [[nodiscard]] bool has_subset_of(Family family, std::span<unsigned const> set) const noexcept;

  private:
    std::map<std::vector<Events>, Family> m_numbers;
    std::vector<std::vector<Events> const*> m_families; // keys of `m_numbers`
};

} // namespace Calder::Refinement
