#pragma once

#include "refinement/pair_round.h"

#include <optional>

namespace Calder::Refinement {

/// What a search found that may not be.
struct Finding {
    enum class Kind { event, offer, loop };

    Kind kind;
    /// The pair that performs the event or makes the offer, or the first of the loop.
    StateNumber pair;
    /// Of an event.
    unsigned event = 0;
    std::vector<Word> target{}; // its state, without a node
    /// Of a loop: the pairs that its silent steps lead through, from `pair` up to the last before it.
    std::vector<StateNumber> loop{};
};

/// The steps of one pair as its side gives them.
struct PairSteps {
    std::vector<Word> state; // without its node
    NodeNumber node = 0;
    Steps steps{};
};

/// Runs the concrete side beside an observer, breadth-first: pairs are numbered in the order in which
/// they are reached first. So what is found takes the fewest steps of all events and offers that may
/// not be, and is the same every time.
///
/// A loop is only seen once every silent step around it is explored, and is looked for whenever the
/// number of pairs has doubled, between two levels, and at the end: this takes as much as one pass over
/// the silent steps that may be on one. It goes before what takes more steps to get to. What it takes to
/// come round does not count; so where something is found, silent steps alone are followed on until half
/// as many pairs more, or 1024, are reached, and only a loop that closes beyond them is missed.
///
/// Levels are explored batch by batch, by one thread, and where they are large round by round, by several. All
/// that is found and counted is the same with any number of them: what may not be one thread finds, as it would
/// without rounds, and forgets what they reached from the batch in which it stands.
class PairSearch {
  public:
    /// `threads` is at least 1; a side without a machine is searched by one.
    PairSearch(Side& side, Observer& observer, SearchMonitor& monitor, unsigned threads = 1,
               StateSpace::Cut const& cut = {});

    /// What was found; nothing when every pair is explored that takes fewer steps than `most_depth`.
    /// Throws what Side does, SearchEnded at the limits.
    [[nodiscard]] std::optional<Finding> run(StateNumber most_depth = StateSpace::no_state);
    /// Something is found, though an interruption may have ended the search for a loop that is nearer.
    [[nodiscard]] bool is_decided() const noexcept { return m_is_decided; }

    [[nodiscard]] VisitedPairs const& pairs() const noexcept { return m_pairs; }
    /// Explored ones: steps that the search did not follow, such as ticks, as often as they were
    /// reported, all others once.
    [[nodiscard]] std::uint64_t transition_count() const noexcept { return m_transitions; }
    /// Pairs whose steps are all known; they are the first ones.
    [[nodiscard]] StateNumber explored_count() const noexcept { return m_explored; }

    /// Those of any pair that was explored, or is the one of the finding.
    void find_steps(StateNumber pair, PairSteps& found);
    /// The pair that a step leads to; no_state where the search did not follow it.
    [[nodiscard]] StateNumber target_of(PairSteps const& from, std::size_t step);

  private:
    /// What there was when the batch that is being explored began, and what of it rounds have explored.
    struct Begun {
        StateNumber first_source = 0;
        std::uint64_t transitions = 0;
        std::size_t loop_heads = 0;
        std::uint64_t steps = 0;
        std::uint64_t passed = 0;
    };

    void add_start(NodeNumber node);
    std::optional<Finding> explore_level();
    std::optional<StateSpace::RoundSize> next_round();
    bool has_team();
    void explore_round(StateSpace::RoundSize const& size);
    bool try_round(StateSpace::RoundSize const& size);
    std::uint64_t count_job(PairRound::Job const& job);
    std::optional<Finding> explore_batch();
    void begin_batch() noexcept;
    void leave_batch();
    void fill_batch();
    std::uint64_t most_steps() const noexcept;
    void fit_side(NodeNumber most_node = 0);
    std::optional<Finding> examine_batch();
    void follow_row(std::size_t source);
    void note_event(std::size_t source, std::size_t step);
    void insert_batch();
    bool reach_pairs();
    std::optional<Finding> find_loop();
    std::optional<Finding> find_loop_before(Finding found);
    void follow_silent_steps(StateNumber most_more);
    void look_around(std::uint64_t work);

    Side& m_side;
    Observer& m_observer;
    Observer::Offers const m_looks_at = m_observer.looks_at();
    SearchMonitor& m_monitor;
    unsigned const m_threads;
    StateSpace::Cut const m_cut;
    VisitedPairs m_pairs;
    Answers m_answers{m_observer};
    std::uint64_t m_transitions = 0;
    StateNumber m_explored = 0;
    StateNumber m_depth = 0;
    StateNumber m_level_end = 1;
    std::optional<Finding> m_event; // the first on this level
    /// Pairs that a silent step leads to from themselves or a later one: the first of each loop is one.
    std::vector<StateNumber> m_loop_heads;
    StateNumber m_searched_for_loops = 1024; // how many pairs there were then
    bool m_is_decided = false;

    Begun m_begun;
    PairBatch m_batch; // sources in a row, and their steps
    StateSpace::LookingAhead<VisitedPairs> m_ahead;
    std::optional<StateSpace::Team> m_team; // from the first round on
    std::optional<PairRound> m_round;
    StateNumber m_alone_until = 0; // what a round could not do
    Side::Scratch m_scratch;
    std::vector<Word> m_words; // of a pair that is looked up
};

} // namespace Calder::Refinement
