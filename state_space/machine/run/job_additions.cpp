#include "state_space/machine/run/job_additions.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

/// How many additions ahead the memory is asked for to which a number will be written.
constexpr std::size_t number_distance = 16;

} // namespace

void JobAdditions::keep_first(SharedAdditions const& shared, std::size_t job) noexcept {
    auto const begin = m_additions.begin();
    auto const kept = std::remove_if(
        begin, begin + static_cast<std::ptrdiff_t>(m_size), [&](Addition const& each) {
            return !shared.is_met_first(each.state, place(job, each.step));
        });
    m_size = static_cast<std::size_t>(kept - begin);
}

void JobAdditions::give_numbers(SharedAdditions& shared, StateNumber first) const noexcept {
    for (std::size_t i = 0; i < m_size; ++i) {
        if (i + number_distance < m_size) {
            shared.prefetch_entry(m_additions[i + number_distance].state);
        }
        shared.give_number(m_additions[i].state, first + static_cast<StateNumber>(i));
    }
}

void JobAdditions::take_back(SharedAdditions& shared) const noexcept {
    for (Addition const& each : all()) {
        shared.take_back(each.state);
    }
}

} // namespace Calder::StateSpace
