#include "state_space/machine/run/state_set.h"

#include "state_space/machine/run/patience.h"
#include "state_space/machine/run/team.h"

#include <algorithm>
#include <cstring>

namespace Calder::StateSpace {

namespace {

/// Fuller than this, searches go on into the next group too often. In percent.
constexpr std::uint64_t most_load = 75;

/// Groups that a thread of a team moves at a time.
constexpr std::size_t piece = 4096;

} // namespace

void StateSet::swap(StateSet& other) noexcept {
    std::swap(m_width, other.m_width);
    std::swap(m_size, other.m_size);
    std::swap(m_groups, other.m_groups);
    std::swap(m_group_count, other.m_group_count);
    std::swap(m_most_displaced, other.m_most_displaced);
    std::swap(m_unusual, other.m_unusual);
}

/// From this group on.
template <bool is_shared>
StateSet::Found StateSet::find_or_add_from(std::size_t number, Word const* words,
                                           std::uint64_t hash, bool may_add) {
    if (hash <= is_being_written) {
        return find_or_add_unusual(words, may_add);
    }
    for (std::size_t displaced = 0;; ++displaced) {
        Word* const group = this->group(number);
        Seen const seen = look(group, hash);
        for (unsigned rest = seen.equal; rest != 0; rest &= rest - 1) {
            if (is_state(group, first_of_set(rest), words, hash)) {
                return Found::known;
            }
        }
        Patience patience;
        for (unsigned place = first_of(seen.unsettled); place < group_size;) {
            Word const found = std::atomic_ref(group[place]).load(std::memory_order_acquire);
            if (found == is_free) {
                if (!may_add) {
                    return Found::one_too_many;
                }
                if (take_place<is_shared>(group, place, words + 1, hash)) {
                    note_displaced(displaced);
                    return Found::added;
                }
            } else if (found == is_being_written) {
                patience.wait();
            } else if (found == hash && has_others(group, place, words)) {
                return Found::known;
            } else {
                ++place;
            }
        }
        number = next(number);
    }
}

template StateSet::Found StateSet::find_or_add_from<false>(std::size_t, Word const*, std::uint64_t,
                                                           bool);
template StateSet::Found StateSet::find_or_add_from<true>(std::size_t, Word const*, std::uint64_t,
                                                          bool);

StateSet::Found StateSet::find_or_add_unusual(Word const* words, bool may_add) {
    std::lock_guard const lock(m_unusual_mutex);
    for (std::size_t first = 0; first < m_unusual.size(); first += m_width) {
        if (are_equal_words(&m_unusual[first], words, m_width)) {
            return Found::known;
        }
    }
    if (!may_add) {
        return Found::one_too_many;
    }
    m_unusual.insert(m_unusual.end(), words, words + m_width);
    return Found::added;
}

/// In place. More groups are put behind the old ones, whose states then move, the last ones first: those of the
/// groups from `first` up to `last` at a time, all of which lead behind `last`. A state stands up to
/// `m_most_displaced` groups behind its own, whose number grows by the factor by which there are more groups. For
/// the first few that is not enough: their states are taken out, and come last.
void StateSet::make_room(std::uint64_t count, Team* team) {
    std::size_t const before = m_group_count;
    std::size_t const after = groups_for(m_size + count);
    if (after == before) {
        return;
    }
    std::size_t const displaced = m_most_displaced;
    std::size_t const few = std::min(before, (displaced + 1) * after / (after - before) + 1);
    std::vector<Word> taken_out(few * group_size * m_width);
    grow_groups(after);
    m_most_displaced = 0;
    std::swap_ranges(taken_out.begin(), taken_out.end(), group(0));
    for (std::size_t last = before; last > few;) {
        std::size_t const first = std::max(few, last * before / after + 1 + displaced);
        move_groups(first, last, team);
        last = first;
    }
    for (std::size_t number = 0; number < few; ++number) {
        move<false>(&taken_out[number * group_size * m_width]);
    }
}

/// The new ones are free.
void StateSet::grow_groups(std::size_t count) {
    std::size_t const before = bytes_of(m_group_count);
    std::size_t const after = bytes_of(count);
    auto* const larger = static_cast<Word*>(grow_large(m_groups.get(), before, after));
    static_cast<void>(m_groups.release()); // it is freed, or the same
    m_groups = LargeArray<Word>(larger, FreeLarge{after});
    m_group_count = count;
    if (after <
        large_page) { // otherwise pages come with zeros, and none behind the old groups was written to
        std::memset(reinterpret_cast<char*>(larger) + before, 0, after - before);
    }
}

void StateSet::move_groups(std::size_t first, std::size_t last, Team* team) {
    if (team == nullptr || last - first <= piece) {
        for (std::size_t number = first; number < last; ++number) {
            move<false>(group(number));
        }
        return;
    }
    team->each((last - first + piece - 1) / piece, [&](unsigned, std::size_t done) {
        std::size_t const end = std::min(last, first + (done + 1) * piece);
        for (std::size_t number = first + done * piece; number < end; ++number) {
            move<true>(group(number));
        }
    });
}

/// What stands in a group, which is free then.
template <bool is_shared> void StateSet::move(Word* group) noexcept {
    for (unsigned place = 0; place < group_size && group[place] != is_free; ++place) {
        insert<is_shared>(others(group, place), group[place]);
        group[place] = is_free;
    }
}

/// What is not there yet.
template <bool is_shared> void StateSet::insert(Word const* others, std::uint64_t hash) noexcept {
    std::size_t number = number_of_group(hash);
    for (std::size_t displaced = 0;; ++displaced) {
        Word* const group = this->group(number);
        for (unsigned place = first_of(look(group, hash).unsettled); place < group_size; ++place) {
            if (is_free_now(group, place) && take_place<is_shared>(group, place, others, hash)) {
                note_displaced(displaced);
                return;
            }
        }
        number = next(number);
    }
}

void StateSet::note_displaced(std::size_t groups) noexcept {
    std::atomic_ref most(m_most_displaced);
    for (std::size_t known = most.load(std::memory_order_relaxed);
         known < groups && !most.compare_exchange_weak(known, groups, std::memory_order_relaxed);) {
    }
}

std::uint64_t StateSet::memory_bytes() const noexcept {
    return bytes_of(m_group_count) + m_unusual.size() * sizeof(Word);
}

std::uint64_t StateSet::growth_bytes(std::uint64_t additions) const noexcept {
    return bytes_of(groups_for(m_size + additions)) - bytes_of(m_group_count);
}

/// How many groups a set of so many states has, which are no fewer than there are: twice as many, or what is needed.
std::size_t StateSet::groups_for(std::uint64_t states) const noexcept {
    if (states <= capacity(m_group_count)) {
        return m_group_count;
    }
    return std::max<std::size_t>(m_group_count * 2, states * 100 / (most_load * group_size) + 1);
}

/// How many states so many groups have room for.
std::uint64_t StateSet::capacity(std::size_t groups) noexcept {
    return std::uint64_t{groups} * group_size * most_load / 100;
}

} // namespace Calder::StateSpace
