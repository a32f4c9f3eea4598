#pragma once

#include "state_space/export.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

namespace Calder::StateSpace {

/// Threads that do pieces of work side by side, one of them its owner's. Between two works all of them wait,
/// so that the owner is alone.
class CALDER_STATE_SPACE_EXPORT Team {
  public:
    using ThreadStarter = std::function<std::thread(std::function<void()>)>;
    /// What the thread of that number does, the owner's being 0. It must not throw.
    using Work = std::function<void(unsigned)>;
    /// The same for a piece of work, whose number comes second.
    using PieceWork = std::function<void(unsigned, std::size_t)>;

    /// `threads` counts the owner. Where `start` throws std::system_error, those that started must
    /// do; the owner alone does, too.
    explicit Team(unsigned threads, ThreadStarter const& start = start_thread);
    ~Team() { stop(); }
    Team(Team const&) = delete;
    Team& operator=(Team const&) = delete;

    /// The owner included.
    [[nodiscard]] unsigned size() const noexcept {
        return static_cast<unsigned>(m_threads.size()) + 1;
    }

    /// Lets each thread work once, and returns when all have. What was written before is seen in the work, and
    /// what the work writes afterwards.
    void all(Work const& work);
    /// The same for pieces 0 to `count` - 1, which the threads take one after another.
    void each(std::size_t count, PieceWork const& work);

  private:
    static std::thread start_thread(std::function<void()> work);
    void stop() noexcept;
    void work_along(unsigned thread);
    void announce() noexcept;

    unsigned const m_looks; // before a thread sleeps
    std::vector<std::thread> m_threads;
    // Of the work that is announced; the owner writes them while all others wait.
    Work const* m_work = nullptr;
    bool m_ends = false;
    std::atomic<unsigned> m_announced = 0; // works so far
    std::atomic<unsigned> m_busy = 0;      // threads besides the owner
    alignas(64) std::atomic<std::size_t> m_next = 0;
};

} // namespace Calder::StateSpace
