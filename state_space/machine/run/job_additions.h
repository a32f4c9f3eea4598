#pragma once

#include "state_space/machine/run/shared_additions.h"

#include <span>
#include <vector>

namespace Calder::StateSpace {

/// What a job of a round adds to a set that all threads share, in the order of its steps. A round takes them
/// through three works, between which all threads wait: it notes each addition that nobody had met at a lower
/// place by then, keeps those that nobody met at a lower place at all, and gives these numbers. All additions
/// are then each in one job, in the order in which one thread would have made them. Keeps its storage.
class CALDER_STATE_SPACE_EXPORT JobAdditions {
  public:
    struct Addition {
        std::uint32_t step;
        StateNumber state;
    };

    /// A place as SharedAdditions wants it.
    [[nodiscard]] static SharedAdditions::Place place(std::size_t job, std::size_t step) noexcept {
        return SharedAdditions::Place{job} << 32 | step;
    }

    void clear() noexcept { m_size = 0; }
    /// For a job of so many steps.
    void make_room(std::size_t steps) {
        if (m_additions.size() < steps) {
            m_additions.resize(steps);
        }
    }
    /// Steps ascend.
    void note(std::size_t step, SharedAdditions::Found found) noexcept {
        if (found.is_first) {
            m_additions[m_size++] = {static_cast<std::uint32_t>(step), found.state};
        }
    }

    [[nodiscard]] std::size_t size() const noexcept { return m_size; }
    [[nodiscard]] std::span<Addition const> all() const noexcept {
        return std::span(m_additions).first(m_size);
    }

    /// The second work.
    void keep_first(SharedAdditions const& shared, std::size_t job) noexcept;
    /// The third work.
    void give_numbers(SharedAdditions& shared, StateNumber first) const noexcept;
    /// Instead of that, when the round turns out not to be.
    void take_back(SharedAdditions& shared) const noexcept;

  private:
    std::vector<Addition> m_additions; // there may be more than `m_size`
    std::size_t m_size = 0;
};

} // namespace Calder::StateSpace
