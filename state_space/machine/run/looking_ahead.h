#pragma once

#include "state_space/machine/run/search_job.h"

#include <algorithm>
#include <array>

namespace Calder::StateSpace {

/// Asks for the memory that the lookups of a job's steps will need, some steps ahead: first the bucket, then
/// the state that it names. `States` is VisitedStates, or SharedAdditions.
template <typename States> class LookingAhead {
  public:
    void begin(States& states, SearchJob const& job) {
        std::size_t const steps = job.steps().size();
        for (std::size_t step = 0; step < std::min(bucket_distance, steps); ++step) {
            states.prefetch_bucket(job.hash(step));
        }
        for (std::size_t step = 0; step < std::min(state_distance, steps); ++step) {
            m_ahead[step] = states.prefetch_state(job.hash(step));
        }
    }

    /// Steps come one after another. Tells the state that this one most likely leads to, or no_state.
    StateNumber likely_target(States& states, SearchJob const& job, std::size_t step) {
        std::size_t const steps = job.steps().size();
        StateNumber& ahead = m_ahead[step % state_distance];
        StateNumber const likely = ahead;
        if (step + bucket_distance < steps) {
            states.prefetch_bucket(job.hash(step + bucket_distance));
        }
        if (step + state_distance < steps) {
            ahead = states.prefetch_state(job.hash(step + state_distance));
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
