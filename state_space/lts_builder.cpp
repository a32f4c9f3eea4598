#include "state_space/lts_builder.h"

#include <algorithm>
#include <utility>

namespace Calder::StateSpace {

namespace {

/// Up to this width a row is searched from its begin: two cache lines.
constexpr std::size_t narrow_row = 16;

} // namespace

void LtsBuilder::add(unsigned event, StateNumber target) {
    Transition const transition{event, target};
    if (!is_in_row(transition)) {
        m_lts.m_transitions.push_back(transition);
    }
}

void LtsBuilder::end_row() {
    m_lts.m_row_ends.push_back(m_lts.m_transitions.size());
    m_row_begin = m_lts.m_transitions.size();
    m_row_is_wide = false;
}

void LtsBuilder::drop_row() {
    m_lts.m_transitions.shrink(m_row_begin);
    m_row_is_wide = false;
}

LtsBuilder::Room LtsBuilder::make_room(std::size_t rows, std::uint64_t transitions) {
    drop_row();
    Room const room{m_lts.m_row_ends.size(), m_lts.m_transitions.size()};
    m_lts.m_row_ends.append(rows);
    try {
        m_lts.m_transitions.append(transitions);
    } catch (...) {
        m_lts.m_row_ends.shrink(room.first_row);
        throw;
    }
    m_row_begin = m_lts.m_transitions.size();
    return room;
}

LabelledTransitionSystem LtsBuilder::finish(StateNumber state_count) {
    drop_row();
    m_lts.m_state_count = state_count;
    m_row_begin = 0;
    return std::exchange(m_lts, {});
}

std::uint64_t LtsBuilder::memory_bytes() const noexcept {
    return m_lts.memory_bytes() + m_wide_row.memory_bytes();
}

std::uint64_t LtsBuilder::growth_bytes(std::uint64_t additions) const noexcept {
    return m_lts.m_transitions.growth_bytes(additions) + m_lts.m_row_ends.growth_bytes(additions) +
           m_wide_row.growth_bytes(additions);
}

/// Also notes the transition of a wide row as being there.
bool LtsBuilder::is_in_row(Transition transition) {
    GrowingArray<Transition> const& all = m_lts.m_transitions;
    Transition const* const row = all.begin() + m_row_begin;
    std::size_t const width = all.size() - m_row_begin;
    if (width < narrow_row) {
        return std::find(row, all.end(), transition) != all.end();
    }
    if (!m_row_is_wide) {
        m_row_is_wide = true;
        m_wide_row.clear();
        std::for_each(row, all.end(), [this](Transition each) { m_wide_row.insert(each); });
    }
    return !m_wide_row.insert(transition);
}

} // namespace Calder::StateSpace
