#include "pins/leaf_events.h"

#include <algorithm>

namespace Calder::Pins {

using StateSpace::Leaf;
using StateSpace::StateNumber;

namespace {

LeafEvents::Effect effect_of(Leaf const& leaf, std::uint32_t event_index) {
    LeafEvents::Effect effect{true, true, true};
    auto const first = leaf.successors(0, event_index);
    for (StateNumber state = 0; state < leaf.state_count(); ++state) {
        auto const successors = leaf.successors(state, event_index);
        effect.is_always_possible = effect.is_always_possible && !successors.empty();
        effect.is_constant =
            effect.is_constant && !successors.empty() &&
            std::equal(successors.begin(), successors.end(), first.begin(), first.end());
        effect.only_loops = effect.only_loops &&
                            std::all_of(successors.begin(), successors.end(),
                                        [state](StateNumber target) { return target == state; });
    }
    return effect;
}

bool meet(Leaf const& leaf, std::uint32_t left, std::uint32_t right) {
    for (StateNumber state = 0; state < leaf.state_count(); ++state) {
        auto const others = leaf.successors(state, right);
        for (StateNumber const target : leaf.successors(state, left)) {
            if (std::find(others.begin(), others.end(), target) != others.end()) {
                return true;
            }
        }
    }
    return false;
}

bool follows(Leaf const& leaf, std::uint32_t event, std::uint32_t next) {
    for (StateNumber state = 0; state < leaf.state_count(); ++state) {
        for (StateNumber const target : leaf.successors(state, event)) {
            if (!leaf.successors(target, next).empty()) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

LeafEvents::Effect const& LeafEvents::effect(Leaf const& leaf, std::uint32_t event_index) {
    auto const [place, is_new] = m_effects.try_emplace({&leaf, event_index});
    if (is_new && leaf.state_count() <= most_states) {
        place->second = effect_of(leaf, event_index);
    }
    return place->second;
}

bool LeafEvents::may_meet(Leaf const& leaf, std::uint32_t left, std::uint32_t right) {
    if (left == right) {
        return true;
    }
    EventsOfLeaf const key{&leaf, std::min(left, right), std::max(left, right)};
    auto const known = m_meetings.find(key);
    if (known != m_meetings.end()) {
        return known->second;
    }
    return !may_look_through(leaf) || (m_meetings[key] = meet(leaf, left, right));
}

bool LeafEvents::may_follow(Leaf const& leaf, std::uint32_t event, std::uint32_t next) {
    EventsOfLeaf const key{&leaf, event, next};
    auto const known = m_followers.find(key);
    if (known != m_followers.end()) {
        return known->second;
    }
    return !may_look_through(leaf) || (m_followers[key] = follows(leaf, event, next));
}

/// For two events that were not asked for yet.
bool LeafEvents::may_look_through(Leaf const& leaf) {
    if (leaf.state_count() > most_states || m_looks >= most_looks) {
        return false;
    }
    m_looks += leaf.state_count();
    return true;
}

} // namespace Calder::Pins
