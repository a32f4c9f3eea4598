#pragma once

#include "refinement/next_nodes.h"
#include "refinement/observer.h"
#include "refinement/side.h"
#include "refinement/visited_pairs.h"
#include "state_space/transition_set.h"

#include <array>
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
class PairSearch {
  public:
    PairSearch(Side& side, Observer& observer, SearchMonitor& monitor);

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
    /// A step to be followed.
    struct Followed {
        std::uint32_t source; // in the batch
        std::uint32_t step;
        NodeNumber node;
        bool is_silent;
        bool can_repeat;
    };

    void add_start(NodeNumber node);
    std::optional<Finding> explore_level();
    void fill_batch();
    void fit_side(NodeNumber most_node = 0);
    std::optional<Finding> examine_batch();
    [[nodiscard]] bool looks_at_offer(std::size_t source) const noexcept;
    bool allows_offer(std::size_t source);
    void make_room_to_follow();
    void follow_row(std::size_t source);
    void follow(std::size_t source, std::size_t step, NodeNumber next);
    [[nodiscard]] NodeNumber next_node(NodeNumber node, unsigned event);
    void note_event(std::size_t source, std::size_t step);
    void insert_batch();
    void write_followed(std::size_t place);
    void insert(std::size_t place, StateNumber likely);
    bool is_first(Followed const& followed, StateNumber target);
    std::optional<Finding> find_loop();
    std::optional<Finding> find_loop_before(Finding found);
    void follow_silent_steps(StateNumber most_more);
    void look_around(std::uint64_t work);

    [[nodiscard]] std::size_t row_begin(std::size_t source) const noexcept {
        return source == 0 ? 0 : m_row_ends[source - 1];
    }

    Side& m_side;
    Observer& m_observer;
    Observer::Offers const m_looks_at = m_observer.looks_at();
    SearchMonitor& m_monitor;
    VisitedPairs m_pairs;
    NextNodes m_next_nodes;
    std::uint64_t m_transitions = 0;
    StateNumber m_explored = 0;
    StateNumber m_depth = 0;
    StateNumber m_level_end = 1;
    std::optional<Finding> m_event; // the first on this level
    /// Pairs that a silent step leads to from themselves or a later one: the first of each loop is one.
    std::vector<StateNumber> m_loop_heads;
    StateNumber m_searched_for_loops = 1024; // how many pairs there were then
    bool m_is_decided = false;

    static constexpr StateNumber no_pair = StateSpace::no_state;
    static constexpr std::size_t pair_distance = 16;
    /// Of the steps to come, the pairs that they most likely lead to: step i is at i modulo the
    /// distance.
    std::array<StateNumber, pair_distance> m_ahead{};

    // The batch: sources in a row, and their steps.
    StateNumber m_first_source = 0;
    PairSteps m_source; // the one that is being added
    std::vector<NodeNumber> m_source_nodes;
    Steps m_steps;
    std::vector<std::size_t> m_row_ends; // by source
    std::size_t m_followed_count = 0;
    std::vector<Followed> m_followed;    // there may be more than these, here and in the next two
    std::vector<Word> m_words;           // of the pairs that these steps lead to
    std::vector<std::uint64_t> m_hashes; // of those
    NodeNumber m_most_node = 0;
    StateSpace::TransitionSet m_row;    // steps that may repeat
    StateNumber m_row_source = no_pair; // whose they are
    std::vector<unsigned> m_offer;
};

} // namespace Calder::Refinement
