#include "state_space/machine/run/team.h"

#include "state_space/machine/run/lateness.h"

#include <system_error>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Calder::StateSpace {

namespace {

/// How often a thread looks before it sleeps, some ten microseconds together: works follow each other closely,
/// and waking it up takes longer. It does not give its processor to others meanwhile, who would keep it.
constexpr unsigned looks_before_sleep = 400;

/// Waits while the value is the given one.
void wait_while(std::atomic<unsigned> const& value, unsigned old, unsigned looks) noexcept {
    for (unsigned look = 0; look < looks; ++look) {
        if (value.load(std::memory_order_acquire) != old) {
            return;
        }
#ifdef __SSE2__
        _mm_pause();
#endif
    }
    value.wait(old, std::memory_order_acquire);
}

} // namespace

/// Where threads are more than processors, looking keeps others from what they are waited for.
Team::Team(unsigned threads, ThreadStarter const& start)
    : m_looks(threads <= std::thread::hardware_concurrency() ? looks_before_sleep : 0) {
    try {
        m_threads.reserve(threads); // a thread that has no place would end the program
        for (unsigned thread = 1; thread < threads; ++thread) {
            m_threads.push_back(start([this, thread] { work_along(thread); }));
        }
    } catch (std::system_error const&) { // the system gives no more: those that started do
    } catch (...) {
        stop();
        throw;
    }
}

std::thread Team::start_thread(std::function<void()> work) {
    return std::thread(std::move(work));
}

void Team::all(Work const& work) {
    if (m_threads.empty()) {
        work(0);
        return;
    }
    m_work = &work;
    m_busy.store(size() - 1, std::memory_order_relaxed);
    announce();
    work(0);
    while (unsigned const busy = m_busy.load(std::memory_order_acquire)) {
        wait_while(m_busy, busy, m_looks);
    }
}

void Team::each(std::size_t count, PieceWork const& work) {
    m_next.store(0, std::memory_order_relaxed);
    auto const take_pieces = [&](unsigned thread) {
        for (;;) {
            std::size_t const piece = m_next.fetch_add(1, std::memory_order_relaxed);
            if (piece >= count) {
                return;
            }
            work(thread, piece);
            may_be_late();
        }
    };
    if (count > 1) {
        all([&take_pieces](unsigned thread) { take_pieces(thread); });
    } else {
        take_pieces(0);
    }
}

void Team::stop() noexcept {
    m_ends = true;
    announce();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
    m_threads.clear();
}

void Team::announce() noexcept {
    m_announced.fetch_add(1, std::memory_order_release);
    m_announced.notify_all();
}

/// A thread's life.
void Team::work_along(unsigned thread) {
    for (unsigned heard = 0;; ++heard) {
        wait_while(m_announced, heard, m_looks);
        may_be_late();
        if (m_ends) {
            return;
        }
        (*m_work)(thread);
        if (m_busy.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            m_busy.notify_one();
        }
    }
}

} // namespace Calder::StateSpace
