#include "state_space/machine/run/numbered_keys.h"

#include "state_space/machine/run/lateness.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

/// No number is `no_state`, however many threads find the room full at once.
constexpr NumberedKeys::Number most_keys = no_state - (NumberedKeys::Number{1} << 16);

/// Rather than room for a few keys again and again, room for so many more than are known at least.
constexpr std::uint64_t room_at_once(std::uint64_t known) noexcept {
    return std::max<std::uint64_t>(1024, known / 8);
}

} // namespace

/// The next number, whose key is written before a bucket tells of it; no_state where there is no room.
NumberedKeys::Number NumberedKeys::add(Word const* key) noexcept {
    Number const number = m_next.fetch_add(1, std::memory_order_relaxed);
    if (number >= m_end) {
        m_next.fetch_sub(1, std::memory_order_relaxed);
        return no_state;
    }
    copy_words(key, m_states.place_of(number), width());
    may_be_late();
    return number;
}

void NumberedKeys::grow(std::uint64_t count, Team* team) {
    Number const known = size();
    std::uint64_t const wanted = std::max(count, room_at_once(known));
    if (wanted > most_keys - known) {
        throw std::bad_alloc();
    }
    m_next.store(known, std::memory_order_relaxed);
    m_end = known;
    m_states.m_size = known;
    m_states.make_room(wanted, team);
    m_states.make_blocks(known + wanted);
    m_end = known + static_cast<Number>(wanted);
}

std::uint64_t NumberedKeys::memory_bytes() const noexcept {
    return std::uint64_t{size()} * width() * sizeof(Word) +
           m_states.m_bucket_count * sizeof(Bucket);
}

std::uint64_t NumberedKeys::growth_bytes(std::uint64_t additions) const noexcept {
    std::uint64_t const keys = additions * width() * sizeof(Word);
    std::uint64_t const last = size() + additions;
    return last <= m_end ? keys : keys + m_states.table_growth_bytes(last + room_at_once(last));
}

} // namespace Calder::StateSpace
