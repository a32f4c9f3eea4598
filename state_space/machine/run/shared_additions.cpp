#include "state_space/machine/run/shared_additions.h"

#include "state_space/machine/run/team.h"

namespace Calder::StateSpace {

/// Records come first, as most of the memory is theirs, and nothing is lost with them.
void SharedAdditions::begin(std::size_t most, Team& team) {
    m_width = m_states.width();
    m_record_words = head_words + m_width;
    std::size_t const records =
        most + std::size_t{team.size()} * records_at_a_time + record_distance;
    if (m_capacity < records * m_record_words) { // entries, too: states become no narrower
        m_capacity = 0;
        m_records.reset();
        m_entries.reset();
        m_records = make_large_array<Word>(records * m_record_words);
        m_entries = make_large_array<Word>(records);
        m_capacity = records * m_record_words;
    }
    m_states.make_room(most, &team);
    m_buckets = m_states.m_buckets.get();
    m_bucket_count = m_states.m_bucket_count;
    m_first = m_states.size();
    m_taken.store(0, std::memory_order_relaxed);
}

/// The next one of the adder, whose it stays until it is counted. A lock would have to wait for a record that
/// is not in the cache.
StateNumber SharedAdditions::free_record(Adder& adder) noexcept {
    if (adder.next == adder.end) {
        adder.next = m_taken.fetch_add(records_at_a_time, std::memory_order_relaxed);
        adder.end = adder.next + records_at_a_time;
    }
    StateNumber const free = m_first + static_cast<StateNumber>(adder.next);
    prefetch_to_write(record(free) + record_distance * m_record_words);
    return free;
}

/// Whether the place is lower than all at which the addition was met so far.
bool SharedAdditions::note(StateNumber addition, Place place) const noexcept {
    std::atomic_ref const least(record(addition)[order_word]);
    for (Place known = least.load(std::memory_order_relaxed); place < known;) {
        may_be_late();
        if (least.compare_exchange_weak(known, place, std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

void SharedAdditions::give_number(StateNumber addition, StateNumber number) noexcept {
    Word* const own = record(addition);
    own[order_word] = number;
    copy_words(own + head_words, m_states.place_of(number), m_width);
    constexpr Word places = (Word{1} << entry_bits) - 1;
    bucket_of_addition(addition).replace_shared(static_cast<unsigned>(entry(addition) & places),
                                                number);
}

void SharedAdditions::take_back(StateNumber addition) noexcept {
    bucket_of_addition(addition).take_back(m_first);
}

} // namespace Calder::StateSpace
