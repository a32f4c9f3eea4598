#pragma once

#include "refinement/answers.h"
#include "refinement/side.h"
#include "refinement/visited_pairs.h"
#include "state_space/transition_set.h"

#include <algorithm>

namespace Calder::Refinement {

/// Some pairs in a row, the sources, with their steps, and the pairs to which those steps lead that are
/// followed. It has all that a thread needs to find them, and keeps its storage: first the sources are added,
/// then their rows are followed or ended, and last the pairs are reached.
class PairBatch {
  public:
    /// What there is up to the end of a source's steps.
    struct Row {
        NodeNumber node; // of the source itself
        std::uint32_t steps;
        std::uint32_t followed = 0;
        std::uint32_t passed = 0;      // steps that are not followed: nothing behind them matters
        std::uint32_t transitions = 0; // different ones among the followed
        std::uint32_t loop_heads = 0;
    };

    /// A step to be followed.
    struct Followed {
        std::uint32_t step;
        NodeNumber node;
        bool is_silent;
        bool can_repeat;
    };

    /// The first source will be `first`. More than `most_steps` are refused by std::bad_alloc.
    void begin(StateNumber first, std::uint32_t state_width, std::size_t most_steps) noexcept;

    /// The state of the pair that is to be the next source.
    Word const* read(VisitedPairs const& pairs, StateNumber pair) {
        m_node = pairs.node(pair);
        m_state.resize(pairs.state_width());
        pairs.read_state(pair, m_state.data());
        return m_state.data();
    }
    /// Adds the pair that was read. Throws what Side::append_steps does.
    void add(Side& side) {
        side.append_steps(m_state.data(), m_steps, m_scratch);
        m_rows.push_back({m_node, static_cast<std::uint32_t>(m_steps.size())});
    }

    [[nodiscard]] StateNumber first_source() const noexcept { return m_first; }
    [[nodiscard]] std::size_t source_count() const noexcept { return m_rows.size(); }
    [[nodiscard]] NodeNumber node(std::size_t source) const noexcept { return m_rows[source].node; }
    [[nodiscard]] Steps const& steps() const noexcept { return m_steps; }
    [[nodiscard]] std::size_t row_begin(std::size_t source) const noexcept {
        return source == 0 ? 0 : m_rows[source - 1].steps;
    }
    [[nodiscard]] std::size_t row_end(std::size_t source) const noexcept {
        return m_rows[source].steps;
    }

    /// Whether the offer of a source is among these.
    [[nodiscard]] bool is_among(std::size_t source, Observer::Offers offers) const noexcept {
        return offers == Observer::Offers::all ||
               (offers == Observer::Offers::empty && row_begin(source) == row_end(source));
    }
    /// The events of a source, ascending. Good until the next call.
    [[nodiscard]] std::span<unsigned const> offer(std::size_t source);

    /// All sources are there.
    void begin_following(VisitedPairs const& pairs);
    /// Follows the steps of a source up to the first that may not come, or of which it is not known where it
    /// leads. Tells that one; the end of the row where there is none.
    template <typename Judge>
    std::size_t follow_row(std::size_t source, VisitedPairs const& pairs, Judge const& judge);
    /// Of the steps of a source from this one on, follows the silent ones.
    void follow_silent_steps(std::size_t source, std::size_t step, VisitedPairs const& pairs);
    /// All steps of a source are followed that should be.
    void end_row(std::size_t source) noexcept {
        m_rows[source].followed = static_cast<std::uint32_t>(m_followed_count);
        m_rows[source].passed = m_passed;
    }
    /// After the pairs have become wider.
    void write_again(VisitedPairs const& pairs);

    /// Steps that are not followed so far, as nothing behind them matters.
    [[nodiscard]] std::uint32_t passed() const noexcept { return m_passed; }
    /// The highest one that a step which is followed leads to.
    [[nodiscard]] NodeNumber most_node() const noexcept { return m_most_node; }
    /// Of the pairs that steps lead to, in their order, hashes and words.
    [[nodiscard]] std::span<std::uint64_t const> hashes() const noexcept {
        return std::span(m_hashes).first(m_followed_count);
    }
    [[nodiscard]] Word const* words(std::size_t place) const noexcept {
        return &m_words[place * m_width];
    }

    /// Counts the different transitions, and notes heads of loops where these are wanted: pairs that a silent step
    /// leads to from themselves or a later one. `target_of` tells the pair of a place, reached from a source, or
    /// no_state to end; whether it never did.
    template <typename TargetOf> bool reach(bool notes_loops, TargetOf const& target_of);

    /// Among the pairs that are reached.
    [[nodiscard]] std::uint32_t transitions() const noexcept { return m_transitions; }
    [[nodiscard]] std::vector<StateNumber> const& loop_heads() const noexcept {
        return m_loop_heads;
    }
    /// By source.
    [[nodiscard]] std::vector<Row> const& rows() const noexcept { return m_rows; }
    /// Swaps the rows and the heads for others, whose storage it keeps.
    void hand_over(std::vector<Row>& rows, std::vector<StateNumber>& loop_heads) noexcept {
        m_rows.swap(rows);
        m_loop_heads.swap(loop_heads);
    }

  private:
    void follow(std::size_t step, NodeNumber node, VisitedPairs const& pairs) {
        std::size_t const place = m_followed_count++;
        m_followed[place] = {static_cast<std::uint32_t>(step), node,
                             m_steps.event(step) == ProcessCompiler::tau, m_steps.can_repeat(step)};
        m_most_node = std::max(m_most_node, node);
        write(place, pairs);
    }
    /// Of a node that does not fit something else; `write_again` writes all anew then.
    void write(std::size_t place, VisitedPairs const& pairs) {
        Word* const pair = &m_words[place * m_width];
        pairs.write(m_steps.words(m_followed[place].step), m_followed[place].node, pair);
        m_hashes[place] = pairs.hash(pair);
    }
    bool is_first(std::size_t source, Followed const& followed, StateNumber target);

    StateNumber m_first = 0;
    std::vector<Word> m_state; // of the source that is being added
    NodeNumber m_node = 0;     // and its node
    Steps m_steps;
    Side::Scratch m_scratch;
    std::vector<Row> m_rows; // by source
    std::vector<unsigned> m_offer;
    std::uint32_t m_width = 1; // of pairs
    std::size_t m_followed_count = 0;
    std::vector<Followed> m_followed;    // there may be more than these, here and in the next two
    std::vector<Word> m_words;           // of the pairs that these steps lead to
    std::vector<std::uint64_t> m_hashes; // of those
    NodeNumber m_most_node = 0;
    std::uint32_t m_passed = 0;
    std::uint32_t m_transitions = 0;
    std::vector<StateNumber> m_loop_heads;
    StateSpace::TransitionSet m_row; // steps that may repeat
    std::size_t m_row_source = 0;    // whose they are
};

template <typename Judge> std::size_t
PairBatch::follow_row(std::size_t source, VisitedPairs const& pairs, Judge const& judge) {
    NodeNumber const node = m_rows[source].node;
    std::size_t const end = row_end(source);
    std::span<NodeNumber const> known = judge.next_nodes().row(node);
    for (std::size_t step = row_begin(source); step < end; ++step) {
        unsigned const event = m_steps.event(step);
        if (event == ProcessCompiler::tau) {
            follow(step, node, pairs);
            continue;
        }
        NodeNumber next = NextNodes::in_row(known, event);
        if (next == not_known) {
            next = judge.next_node(node, event);
            known = judge.next_nodes().row(node);
        }
        if (is_node(next)) {
            follow(step, next, pairs);
        } else if (next == nothing_matters) {
            ++m_passed;
        } else {
            return step;
        }
    }
    return end;
}

template <typename TargetOf> bool PairBatch::reach(bool notes_loops, TargetOf const& target_of) {
    std::size_t place = 0;
    for (std::size_t source = 0; source < m_rows.size(); ++source) {
        StateNumber const parent = m_first + static_cast<StateNumber>(source);
        for (; place < m_rows[source].followed; ++place) {
            Followed const& followed = m_followed[place];
            StateNumber const target = target_of(place, parent);
            if (target == StateSpace::no_state) {
                return false;
            }
            m_transitions += !followed.can_repeat || is_first(source, followed, target) ? 1 : 0;
            if (followed.is_silent && target <= parent && notes_loops) {
                m_loop_heads.push_back(target);
            }
        }
        m_rows[source].transitions = m_transitions;
        m_rows[source].loop_heads = static_cast<std::uint32_t>(m_loop_heads.size());
    }
    return true;
}

} // namespace Calder::Refinement
