#include "state_space/machine/run/successor_search.h"

#include "state_space/machine/run/visited_states.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace Calder::StateSpace {

void SearchJob::clear(std::uint32_t width, std::size_t most_steps) noexcept {
    m_width = width;
    m_steps.limit(most_steps);
    m_sources.clear();
    m_tables.clear();
    m_row_ends.clear();
    m_error = nullptr;
}

void SearchJob::add_source(Word const* state, SuccessorTable const& table) {
    m_sources.insert(m_sources.end(), state, state + m_width);
    m_tables.push_back(&table);
}

void SearchJob::search() noexcept try {
    m_steps.clear(m_width);
    for (std::size_t source = 0; source < m_tables.size(); ++source) {
        m_tables[source]->append_successors(&m_sources[source * m_width], m_steps, m_scratch);
        m_row_ends.push_back(m_steps.size());
    }
    hash_steps();
} catch (...) {
    m_error = std::current_exception();
}

void SearchJob::rethrow() const {
    if (m_error) {
        std::rethrow_exception(m_error);
    }
}

void SearchJob::widen(std::uint32_t width) {
    m_steps.widen(width);
    hash_steps();
}

void SearchJob::hash_steps() {
    m_hashes.resize(m_steps.size());
    for (std::size_t step = 0; step < m_steps.size(); ++step) {
        m_hashes[step] = VisitedStates::hash(m_steps.words(step), m_steps.width());
    }
}

SuccessorSearch::SuccessorSearch(unsigned threads, ThreadStarter const& start)
    : m_ring(threads > 1 ? std::size_t{3} * threads : 1) {
    try {
        m_threads.reserve(threads); // a thread that has no place would end the program
        for (unsigned thread = 1; thread < threads; ++thread) {
            m_threads.push_back(start([this] { work(); }));
        }
    } catch (std::system_error const&) { // the system gives no more: those that started do
    } catch (...) {
        stop();
        throw;
    }
}

std::thread SuccessorSearch::start_thread(std::function<void()> work) {
    return std::thread(std::move(work));
}

void SuccessorSearch::submit() {
    Entry& entry = m_ring[(m_oldest + m_in_use) % m_ring.size()];
    ++m_in_use;
    if (m_threads.empty()) {
        entry.job.search();
        return;
    }
    {
        std::lock_guard const held(m_lock);
        entry.state = State::waiting;
        m_waiting.push_back(&entry);
    }
    m_work_came.notify_one();
}

SearchJob& SuccessorSearch::oldest() {
    Entry& entry = m_ring[m_oldest];
    if (!m_threads.empty()) {
        std::unique_lock held(m_lock);
        while (entry.state != State::done) {
            if (Entry* const other = next_waiting()) {
                held.unlock();
                other->job.search();
                held.lock();
                other->state = State::done;
            } else {
                m_job_done.wait(held);
            }
        }
    }
    entry.job.rethrow();
    return entry.job;
}

void SuccessorSearch::release_oldest() noexcept {
    m_oldest = (m_oldest + 1) % m_ring.size();
    --m_in_use;
}

void SuccessorSearch::stop() {
    {
        std::lock_guard const held(m_lock);
        m_ends = true;
    }
    m_work_came.notify_all();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
    m_threads.clear();
}

/// Marks it as running. The lock must be held.
SuccessorSearch::Entry* SuccessorSearch::next_waiting() {
    if (m_waiting.empty()) {
        return nullptr;
    }
    Entry* const entry = m_waiting.front();
    m_waiting.pop_front();
    entry->state = State::running;
    return entry;
}

void SuccessorSearch::work() {
    std::unique_lock held(m_lock);
    for (;;) {
        m_work_came.wait(held, [this] { return m_ends || !m_waiting.empty(); });
        if (m_ends) {
            return;
        }
        Entry* const entry = next_waiting();
        held.unlock();
        entry->job.search();
        held.lock();
        entry->state = State::done;
        m_job_done.notify_one();
    }
}

} // namespace Calder::StateSpace
