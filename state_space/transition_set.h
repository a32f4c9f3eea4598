#pragma once

#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"

namespace Calder::StateSpace {

/// A set of transitions that is emptied in constant time and keeps its storage, so that one serves
/// row after row.
///
/// Open addressing with linear probing; a slot counts as taken when it carries the stamp of the
/// present filling.
class CALDER_STATE_SPACE_EXPORT TransitionSet {
  public:
    /// False when it was there already. Constant time on average.
    bool insert(Transition transition);

    void clear() noexcept;

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;
    /// What `additions` more members could allocate besides what there is.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    struct Slot {
        Transition transition;
        std::uint32_t stamp;
    };

    [[nodiscard]] Slot& slot_for(Transition transition) noexcept;
    void grow();

    std::vector<Slot> m_slots; // a power of two of them, or none
    std::uint64_t m_size = 0;
    std::uint32_t m_stamp = 1; // new slots have 0
};

} // namespace Calder::StateSpace
