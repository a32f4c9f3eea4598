#pragma once

#include "state_space/machine/run/successor_table.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace Calder::StateSpace {

/// A few states in a row whose successors are wanted, and then these, with their hashes. It has all
/// that a thread needs to find them.
class SearchJob {
  public:
    /// For states of `width` words each, that have no more than `most_steps` successors together.
    void clear(std::uint32_t width, std::size_t most_steps = Steps::unbounded) noexcept;
    void add_source(Word const* state, SuccessorTable const& table);

    /// Finds the successors. What it throws is kept until `rethrow`.
    void search() noexcept;
    void rethrow() const;

    /// Makes the successors longer; see Steps.
    void widen(std::uint32_t width);

    [[nodiscard]] std::size_t source_count() const noexcept { return m_tables.size(); }
    [[nodiscard]] Steps const& steps() const noexcept { return m_steps; }
    [[nodiscard]] std::uint64_t hash(std::size_t step) const noexcept { return m_hashes[step]; }
    /// Where the successors of the source of this number end.
    [[nodiscard]] std::size_t row_end(std::size_t source) const noexcept {
        return m_row_ends[source];
    }

  private:
    void hash_steps();

    std::uint32_t m_width = 1;
    std::vector<Word> m_sources;
    std::vector<SuccessorTable const*> m_tables; // by source
    Steps m_steps;
    std::vector<std::uint64_t> m_hashes; // by step
    std::vector<std::size_t> m_row_ends; // by source
    std::vector<StateNumber> m_scratch;
    std::exception_ptr m_error;
};

/// A queue of jobs that are done by several threads, and come out in the order in which they went
/// in. One thread owns it and works, too, whenever it would have to wait.
class SuccessorSearch {
  public:
    using ThreadStarter = std::function<std::thread(std::function<void()>)>;

    /// `threads` counts the owner. Where `start` throws std::system_error, those that started must
    /// do; the owner alone does, too.
    explicit SuccessorSearch(unsigned threads, ThreadStarter const& start = start_thread);
    ~SuccessorSearch() { stop(); }
    SuccessorSearch(SuccessorSearch const&) = delete;
    SuccessorSearch& operator=(SuccessorSearch const&) = delete;

    [[nodiscard]] bool is_idle() const noexcept { return m_in_use == 0; }
    [[nodiscard]] bool has_room() const noexcept { return m_in_use < m_ring.size(); }

    /// A job to fill in; there must be room. `submit` then hands it out.
    [[nodiscard]] SearchJob& free_job() noexcept {
        return m_ring[(m_oldest + m_in_use) % m_ring.size()].job;
    }
    void submit();

    /// The job that was submitted first, once it is done; there must be one. It is the owner's
    /// until `release_oldest`.
    [[nodiscard]] SearchJob& oldest();
    void release_oldest() noexcept;

    /// Ends the threads; what was submitted need not be done.
    void stop();

  private:
    enum class State { waiting, running, done };

    struct Entry {
        SearchJob job;
        State state = State::done;
    };

    static std::thread start_thread(std::function<void()> work);
    [[nodiscard]] Entry* next_waiting();
    void work();

    std::deque<Entry> m_ring;
    std::size_t m_oldest = 0;
    std::size_t m_in_use = 0;
    std::vector<std::thread> m_threads;
    // What follows, and the states of entries, belong to whoever holds the lock.
    std::mutex m_lock;
    std::condition_variable m_work_came;
    std::condition_variable m_job_done;
    std::deque<Entry*> m_waiting;
    bool m_ends = false;
};

} // namespace Calder::StateSpace
