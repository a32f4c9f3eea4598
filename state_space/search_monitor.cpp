#include "state_space/search_monitor.h"

#include "state_space/memory.h"

#include <algorithm>
#include <limits>

namespace Calder::StateSpace {

namespace {

constexpr std::chrono::milliseconds wanted_between_looks(10);

} // namespace

SearchMonitor::SearchMonitor(ExplorationOptions const& options, std::uint64_t longest_interval)
    : m_options(options), m_longest_interval(longest_interval) {
    m_progress.memory = options.max_memory == 0 ? 0 : resident_bytes();
}

bool SearchMonitor::look_around(Progress const& progress, std::uint64_t growth) {
    m_progress = progress;
    m_progress.memory = resident_bytes();
    if (m_options.max_memory != 0 && m_progress.memory + growth > m_options.max_memory) {
        return stop(Outcome::memory_limit);
    }
    if (m_options.progress && !m_options.progress(m_progress)) {
        return stop(Outcome::interrupted);
    }
    adapt_interval();
    return true;
}

bool SearchMonitor::is_overdue() const noexcept {
    return Clock::now() - m_last_look > wanted_between_looks;
}

std::uint64_t SearchMonitor::memory_left() const noexcept {
    return m_options.max_memory == 0
               ? std::numeric_limits<std::uint64_t>::max()
               : m_options.max_memory - std::min(m_options.max_memory, m_progress.memory);
}

void SearchMonitor::adapt_interval() {
    Clock::time_point const now = Clock::now();
    m_interval = now - m_last_look > wanted_between_looks
                     ? std::max<std::uint64_t>(m_interval / 2, 1)
                     : std::min(m_interval * 2, m_longest_interval);
    m_until_look = m_interval;
    m_last_look = now;
}

} // namespace Calder::StateSpace
