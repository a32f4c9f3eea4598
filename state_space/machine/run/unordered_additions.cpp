#include "state_space/machine/run/unordered_additions.h"

#include "state_space/machine/run/team.h"

#include <algorithm>

namespace Calder::StateSpace {

void UnorderedAdditions::begin(std::size_t most, Team& team) {
    m_states.make_room(most, &team);
    m_states.make_blocks(std::uint64_t{m_states.size()} + most +
                         std::uint64_t{team.size()} * numbers_at_a_time);
    m_buckets = m_states.m_buckets.get();
    m_bucket_count = m_states.m_bucket_count;
    m_first = m_states.size();
    m_next.store(m_first, std::memory_order_relaxed);
    m_adders.assign(m_adders.size(), {});
}

/// Of the adder's next number, which stays its own until it is used. A lock would have to wait for memory that is not
/// in the cache.
Word* UnorderedAdditions::free_place(Adder& adder) noexcept {
    if (adder.next == adder.end) {
        adder.next = m_next.fetch_add(numbers_at_a_time, std::memory_order_relaxed);
        adder.end = adder.next + numbers_at_a_time;
    }
    return m_states.place_of(adder.next);
}

/// Whether a thread took it and had no addition for it.
bool UnorderedAdditions::is_unused(StateNumber number) const noexcept {
    return std::any_of(m_adders.begin(), m_adders.end(),
                       [&](Adder const& each) { return each.next <= number && number < each.end; });
}

/// The unused numbers are few, and given to the last additions.
void UnorderedAdditions::end() noexcept {
    StateNumber last = m_next.load(std::memory_order_relaxed);
    StateNumber end = last;
    for (Adder const& each : m_adders) {
        end -= each.end - each.next;
    }
    for (Adder const& each : m_adders) {
        for (StateNumber unused = each.next; unused < std::min(each.end, end); ++unused) {
            do {
                --last;
            } while (is_unused(last));
            renumber(last, unused);
        }
    }
    m_states.m_size = end;
}

void UnorderedAdditions::renumber(StateNumber from, StateNumber to) noexcept {
    Word const* const words = m_states.place_of(from);
    copy_words(words, m_states.place_of(to), m_states.width());
    std::size_t place = m_states.bucket_of(VisitedStates::hash(words, m_states.width()));
    while (!m_buckets[place].replace(from, to)) {
        place = m_states.next(place);
    }
}

/// As they were appended last, they are the last ones of each bucket.
void UnorderedAdditions::take_back() noexcept {
    std::for_each(m_buckets, m_buckets + m_bucket_count,
                  [this](Bucket& each) { each.take_back(m_first); });
}

} // namespace Calder::StateSpace
