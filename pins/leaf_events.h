#pragma once

#include "state_space/machine/compile/leaf.h"

#include <cstdint>
#include <map>
#include <tuple>

namespace Calder::Pins {

/// What an event does to the states of a leaf, all taken together; each is found out once. Larger
/// leaves than `most_states` are not looked through, nor any for two events after `most_looks`: then the
/// answer is the one that promises least.
class LeafEvents {
  public:
    struct Effect {
        /// It can happen in every state, and leads to the same states from all.
        bool is_constant = false;
        /// It leads from no state to another one.
        bool only_loops = false;
        /// It can happen in every state.
        bool is_always_possible = false;
    };

    static constexpr StateSpace::StateNumber most_states = 1 << 16;
    /// At states, for all pairs of events: a leaf of thousands of events has millions of pairs. A look
    /// costs some 5 ns, or 150 ns in a leaf that has no dense tables.
    static constexpr std::uint64_t most_looks = std::uint64_t{1} << 25;

    Effect const& effect(StateSpace::Leaf const& leaf, std::uint32_t event_index);
    /// Whether some state comes to the same state by either event.
    bool may_meet(StateSpace::Leaf const& leaf, std::uint32_t left, std::uint32_t right);
    /// Whether `next` can happen in some state that `event` leads to.
    bool may_follow(StateSpace::Leaf const& leaf, std::uint32_t event, std::uint32_t next);

  private:
    bool may_look_through(StateSpace::Leaf const& leaf);

    using EventOfLeaf = std::pair<StateSpace::Leaf const*, std::uint32_t>;
    using EventsOfLeaf = std::tuple<StateSpace::Leaf const*, std::uint32_t, std::uint32_t>;

    std::map<EventOfLeaf, Effect> m_effects;
    std::map<EventsOfLeaf, bool> m_meetings;
    std::map<EventsOfLeaf, bool> m_followers;
    std::uint64_t m_looks = 0;
};

} // namespace Calder::Pins
