#include "refinement/minimal_sets.h"

#include <algorithm>

namespace Calder::Refinement {

MinimalSets::Family MinimalSets::add(std::vector<Events> sets, StateSpace::SearchMonitor& monitor) {
    keep_minimal(sets, [&monitor](std::size_t compared) { monitor.go_on(compared); });
    std::sort(sets.begin(), sets.end());
    auto const [place, is_new] =
        m_numbers.try_emplace(std::move(sets), static_cast<Family>(m_families.size()));
    if (is_new) {
        m_families.push_back(&place->first);
    }
    return place->second;
}

bool MinimalSets::has_subset_of(Family family, std::span<unsigned const> set) const noexcept {
    return std::any_of(
        m_families[family]->begin(), m_families[family]->end(), [set](Events const& minimal) {
            return std::includes(set.begin(), set.end(), minimal.begin(), minimal.end());
        });
}

} // namespace Calder::Refinement
