#include "refinement/minimal_sets.h"

#include <algorithm>

namespace Calder::Refinement {

MinimalSets::Family MinimalSets::add(std::vector<Events> sets, StateSpace::SearchMonitor& monitor) {
    // Smaller ones first: what is contained in a set then stands before it.
    std::sort(sets.begin(), sets.end(), [](Events const& left, Events const& right) {
        return left.size() != right.size() ? left.size() < right.size() : left < right;
    });
    sets.erase(std::unique(sets.begin(), sets.end()), sets.end());
    std::vector<Events> minimal;
    for (Events& set : sets) {
        monitor.go_on(minimal.size() + 1);
        if (std::none_of(minimal.begin(), minimal.end(), [&set](Events const& smaller) {
                return std::includes(set.begin(), set.end(), smaller.begin(), smaller.end());
            })) {
            minimal.push_back(std::move(set));
        }
    }
    std::sort(minimal.begin(), minimal.end());
    auto const [place, is_new] =
        m_numbers.try_emplace(std::move(minimal), static_cast<Family>(m_families.size()));
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
