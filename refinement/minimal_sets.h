#pragma once

#include "state_space/search_monitor.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace Calder::Refinement {

/// Events, ascending.
using Events = std::vector<unsigned>;

/// Keeps of these ascending sets those that contain no other, each once, the smaller ones first.
/// Compares each with the minimal ones that are smaller, whose number `look_around` is told before.
template <typename LookAround>
void keep_minimal(std::vector<std::vector<unsigned>>& sets, LookAround const& look_around) {
    // What is contained in a set then stands before it.
    std::sort(sets.begin(), sets.end(), [](auto const& left, auto const& right) {
        return left.size() != right.size() ? left.size() < right.size() : left < right;
    });
    sets.erase(std::unique(sets.begin(), sets.end()), sets.end());
    std::size_t kept = 0;
    for (std::size_t next = 0; next < sets.size(); ++next) {
        look_around(kept + 1);
        auto const minimal = std::span(sets).first(kept);
        auto const& set = sets[next];
        if (std::none_of(minimal.begin(), minimal.end(), [&set](auto const& smaller) {
                return std::includes(set.begin(), set.end(), smaller.begin(), smaller.end());
            })) {
            std::swap(sets[kept++], sets[next]);
        }
    }
    sets.resize(kept);
}

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
