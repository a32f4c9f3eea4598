#pragma once

#include "state_space/labelled_transition_system.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace Calder::StateSpace {

/// Asks for the memory that the lookups of a job's steps will need, by their hashes and some steps ahead: first
/// the bucket, then the state that it names. `States` is VisitedStates, VisitedPairs, SharedAdditions, or
/// UnorderedAdditions.
template <typename States> class LookingAhead {
  public:
    void begin(States& states, std::span<std::uint64_t const> hashes) {
        std::size_t const steps = hashes.size();
        for (std::size_t step = 0; step < std::min(bucket_distance, steps); ++step) {
            states.prefetch_bucket(hashes[step]);
        }
        for (std::size_t step = 0; step < std::min(state_distance, steps); ++step) {
            m_ahead[step] = states.prefetch_state(hashes[step]);
        }
    }

    /// Steps come one after another. Tells the state that this one most likely leads to, or no_state.
    StateNumber likely_target(States& states, std::span<std::uint64_t const> hashes,
                              std::size_t step) {
        std::size_t const steps = hashes.size();
        StateNumber& ahead = m_ahead[step % state_distance];
        StateNumber const likely = ahead;
        if (step + bucket_distance < steps) {
            states.prefetch_bucket(hashes[step + bucket_distance]);
        }
        if (step + state_distance < steps) {
            ahead = states.prefetch_state(hashes[step + state_distance]);
        }
        return likely;
    }

  private:
    static constexpr std::size_t bucket_distance = 32;
    static constexpr std::size_t state_distance = 16;

    /// Of the steps to come, the states: step i is at i modulo the distance.
    std::array<StateNumber, state_distance> m_ahead{};
};

} // namespace Calder::StateSpace
