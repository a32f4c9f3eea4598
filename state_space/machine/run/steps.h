#pragma once

#include "state_space/export.h"
#include "state_space/machine/compile/machine.h"
#include "state_space/machine/run/layout.h"

#include <vector>

namespace Calder::StateSpace {

/// Successors of states of a machine with the events that lead to them, in the order in which they
/// were added. Keeps its storage when it is cleared.
class CALDER_STATE_SPACE_EXPORT Steps {
  public:
    /// Marks an event whose step one state may report twice; see SuccessorTable.
    static constexpr unsigned may_repeat = most_event + 1;

    /// More than any machine has.
    static constexpr std::size_t unbounded = std::size_t{1} << 40;

    [[nodiscard]] std::size_t size() const noexcept { return m_size; }
    /// The words of each successor.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_width; }

    [[nodiscard]] unsigned event(std::size_t step) const noexcept {
        return m_events[step] & ~may_repeat;
    }
    [[nodiscard]] bool can_repeat(std::size_t step) const noexcept {
        return (m_events[step] & may_repeat) != 0;
    }
    [[nodiscard]] Word const* words(std::size_t step) const noexcept {
        return &m_words[step * m_width];
    }

    void clear(std::uint32_t width) noexcept {
        m_size = 0;
        m_width = width;
    }

    /// More steps than these are refused: one state may have as many as its leaves have
    /// combinations of successors.
    void limit(std::size_t most_steps) noexcept { m_most_steps = most_steps; }

    /// Room for `count` more steps that are then added without a look at the room. Throws
    /// std::bad_alloc, above the limit, too.
    void make_room(std::size_t count) {
        if (m_events.size() < m_size + count) {
            grow(m_size + count);
        }
        if (m_words.size() < m_events.size() * m_width) {
            m_words.resize(m_events.size() * m_width);
        }
    }

    /// One more step; the caller writes all words of the successor.
    Word* add(unsigned marked_event) noexcept {
        m_events[m_size] = marked_event;
        return &m_words[m_size++ * m_width];
    }
    /// The same for a successor of one word.
    void add_word(unsigned marked_event, Word successor) noexcept {
        m_events[m_size] = marked_event;
        m_words[m_size++] = successor;
    }

    /// Another successor for the step.
    void set_words(std::size_t step, Word const* successor) noexcept {
        copy_words(successor, &m_words[step * m_width], m_width);
    }

  private:
    void grow(std::size_t wanted);

    std::size_t m_most_steps = unbounded;
    std::size_t m_size = 0;
    std::uint32_t m_width = 1;
    std::vector<unsigned> m_events; // there may be more than `m_size` of them
    std::vector<Word> m_words;
};

} // namespace Calder::StateSpace
