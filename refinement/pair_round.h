#pragma once

#include "refinement/pair_batch.h"
#include "state_space/machine/run/job_additions.h"
#include "state_space/machine/run/looking_ahead.h"
#include "state_space/machine/run/round_size.h"
#include "state_space/machine/run/team.h"

#include <deque>

namespace Calder::Refinement {

/// Explores some pairs in a row by all threads of a team, as NumberedRound explores states: what it finds has the
/// numbers, the parents and the order afterwards that one thread alone would have given it.
///
/// Besides that, a search asks its observer, who belongs to one thread and may have to think. In a round, threads
/// go by what was answered before. A job that comes to something else, an answer that is not known or one that
/// forbids, adds nothing and is put off. When all jobs are done or put off, the first of the latter is
/// done by the owner's thread, who asks: everything before it is allowed by then, and so the observer is asked
/// what one thread would ask, in the same order. What it answers may be all that others lacked, so they are tried
/// again by all threads while that helps, and otherwise done by the owner, too. Their additions may come late, as
/// it is the places that tell the order.
///
/// Where the owner comes to what is forbidden, or to a node that does not fit the pairs, or there is not enough
/// room, the additions are taken back. Whoever goes on alone from the first pair comes to it again.
///
/// The configurations of all pairs must have been met, and the pairs be as wide as the side. Only for a side that has
/// a machine.
class PairRound {
  public:
    /// What was found by some pairs in a row.
    struct Job {
        std::vector<PairBatch::Row> rows; // by pair
        std::vector<StateNumber> loop_heads;
    };

    PairRound(StateSpace::Team& team, Side& side, VisitedPairs& pairs, Answers& answers);

    /// What a round may take besides what there is, in bytes.
    [[nodiscard]] std::uint64_t growth_bytes(StateSpace::RoundSize const& size,
                                             StateSpace::Cut const& cut) const noexcept;
    /// The first of these pairs whose configuration was not met, or `last`. The pairs must be as wide as the side.
    [[nodiscard]] StateNumber first_not_prepared(StateNumber first, StateNumber last);

    /// Makes room. Throws std::bad_alloc where there is no memory for it, of which one thread needs less; nothing
    /// has changed then.
    void begin(StateSpace::RoundSize const& size);
    /// Comes after that. False when nothing has changed, but for what the observer answered, and one thread must
    /// do it. Throws what the observer does, nothing else having changed, and what ends a search.
    bool explore();

    /// Of the last round.
    [[nodiscard]] std::size_t job_count() const noexcept { return m_job_count; }
    [[nodiscard]] Job const& job(std::size_t number) const noexcept { return m_jobs[number].found; }
    /// How many jobs the owner did.
    [[nodiscard]] std::size_t asked_count() const noexcept { return m_asked_count; }

  private:
    struct alignas(64) SharedJob {
        Job found;
        bool is_put_off = false;
        StateSpace::JobAdditions additions;
        StateNumber first_number = 0;
    };
    struct alignas(64) Worker {
        PairBatch batch;
        StateSpace::LookingAhead<StateSpace::SharedAdditions> ahead;
        StateSpace::SharedAdditions::Adder adder;
        std::vector<std::size_t> jobs; // that it has done in this round
    };

    void explore_jobs();
    void find(Worker& worker, std::size_t number) noexcept;
    void ask_for(std::size_t number);
    template <typename Judge> bool examine(Worker& worker, std::size_t number, Judge const& judge);
    void reach(Worker& worker, std::size_t number);
    [[nodiscard]] std::vector<std::size_t> put_off() const;
    void for_jobs_of_each(void (PairRound::*work)(std::size_t) noexcept);
    void keep_first(std::size_t number) noexcept;
    [[nodiscard]] bool make_room();
    void take_back() noexcept;
    void give_numbers(std::size_t number) noexcept;

    StateSpace::Team& m_team;
    Side& m_side;
    VisitedPairs& m_pairs;
    Answers& m_answers;
    Observer::Offers const m_looks_at = m_answers.observer().looks_at();
    bool const m_notes_loops = m_answers.observer().forbids_loops();
    StateSpace::SharedAdditions m_additions{m_pairs.states()};
    StateSpace::RoundSize m_size{};
    std::size_t m_job_count = 0;
    std::size_t m_asked_count = 0;
    std::deque<SharedJob> m_jobs; // there may be more than these
    std::vector<Worker> m_workers;
    std::atomic<std::int64_t> m_room_left = 0; // for additions
    std::atomic<bool> m_is_over = false;       // something happened
};

} // namespace Calder::Refinement
