#pragma once

#include "state_space/exploration.h"

#include <chrono>
#include <string>

namespace Calder::Tools {

/// Shows how an exploration gets on, on standard error: on a terminal as one line that is written
/// over, elsewhere as a line now and then. Nothing is shown of an exploration that ends soon.
class ProgressLine {
  public:
    /// `prefix` stands in front of each line.
    explicit ProgressLine(bool shown, std::string prefix = "");
    ~ProgressLine();
    ProgressLine(ProgressLine const&) = delete;
    ProgressLine& operator=(ProgressLine const&) = delete;

    void update(StateSpace::Progress const& progress);

  private:
    using Clock = std::chrono::steady_clock;

    void show(StateSpace::Progress const& progress, Clock::time_point now);

    bool m_shown;
    std::string m_prefix;
    bool m_on_terminal;
    bool m_line_is_open = false;
    Clock::time_point m_next;
    Clock::time_point m_last;
    std::uint64_t m_last_states = 0;
    std::uint64_t m_last_transitions = 0;
};

} // namespace Calder::Tools
