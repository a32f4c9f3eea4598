#include "state_space/machine/run/row_count.h"

#include <algorithm>

namespace Calder::StateSpace {

/// Of the steps of a row that may be repeated, how many there are.
std::uint64_t RowCount::different(Steps const& steps, std::size_t first, std::size_t last) {
    m_repeatable.clear();
    for (std::size_t step = first; step < last; ++step) {
        if (steps.can_repeat(step)) {
            m_repeatable.push_back(step);
        }
    }
    auto const comes_before = [&](std::size_t left, std::size_t right) {
        return steps.event(left) != steps.event(right)
                   ? steps.event(left) < steps.event(right)
                   : std::lexicographical_compare(
                         steps.words(left), steps.words(left) + steps.width(), steps.words(right),
                         steps.words(right) + steps.width());
    };
    std::sort(m_repeatable.begin(), m_repeatable.end(), comes_before);
    auto const end = std::unique(
        m_repeatable.begin(), m_repeatable.end(),
        [&](std::size_t left, std::size_t right) { return !comes_before(left, right); });
    return static_cast<std::uint64_t>(end - m_repeatable.begin());
}

} // namespace Calder::StateSpace
