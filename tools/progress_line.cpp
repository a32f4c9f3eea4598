#include "tools/progress_line.h"

#include "tools/standard_streams.h"
#include "tools/summary.h"

#include <fmt/format.h>

#include <unistd.h>
#include <utility>

namespace Calder::Tools {

namespace {

constexpr std::chrono::milliseconds terminal_interval(200);
constexpr std::chrono::milliseconds log_interval(2000);

double per_second(std::uint64_t now, std::uint64_t before, std::chrono::duration<double> time) {
    return static_cast<double>(now - before) / time.count();
}

} // namespace

ProgressLine::ProgressLine(bool shown, std::string prefix)
    : m_shown(shown), m_prefix(std::move(prefix)), m_on_terminal(isatty(STDERR_FILENO) == 1),
      m_next(Clock::now() + (m_on_terminal ? terminal_interval * 2 : log_interval)),
      m_last(Clock::now()) {}

ProgressLine::~ProgressLine() {
    if (m_line_is_open) {
        print_message("\r\x1b[K");
    }
}

void ProgressLine::update(StateSpace::Progress const& progress) {
    if (!m_shown) {
        return;
    }
    Clock::time_point const now = Clock::now();
    if (now >= m_next) {
        show(progress, now);
    }
}

void ProgressLine::show(StateSpace::Progress const& progress, Clock::time_point now) {
    std::string const line = fmt::format(
        "{}{} states ({:.0f}/s), {} transitions ({:.0f}/s), frontier {}, depth {}, {:.0f} MiB",
        m_prefix, progress.states, per_second(progress.states, m_last_states, now - m_last),
        progress.transitions, per_second(progress.transitions, m_last_transitions, now - m_last),
        progress.frontier, progress.depth,
        static_cast<double>(progress.memory) / static_cast<double>(bytes_per_mib));
    print_message(m_on_terminal ? "\r" + line + "\x1b[K" : line + "\n");
    m_line_is_open = m_on_terminal;
    m_last = now;
    m_last_states = progress.states;
    m_last_transitions = progress.transitions;
    m_next = now + (m_on_terminal ? terminal_interval : log_interval);
}

} // namespace Calder::Tools
