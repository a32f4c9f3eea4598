#include "state_space/machine/run/word_set.h"

#include "state_space/machine/run/team.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

namespace Calder::StateSpace {

namespace {

/// Fuller than this, searches go on into the next group too often. In percent.
constexpr std::uint64_t most_load = 75;

/// Groups that a thread of a team moves at a time.
constexpr std::size_t piece = 4096;

} // namespace

/// Place by place, and group by group.
template <bool is_shared>
WordSet::Found WordSet::find_or_add_slowly(Hash hash, bool may_add) noexcept {
    if (hash == is_free) {
        return find_or_add_zero(may_add);
    }
    std::size_t number = number_of_group(hash);
    for (std::size_t displaced = 0;; ++displaced) {
        for (unsigned place = 0; place < group_size;) {
            Hash& here = m_groups[number].hashes[place];
            Hash const found = read(here);
            if (found == hash) {
                return Found::known;
            }
            if (found != is_free) {
                ++place;
            } else if (!may_add) {
                return Found::one_too_many;
            } else if (take<is_shared>(here, hash)) {
                note_displaced(displaced);
                return Found::added;
            }
        }
        number = number + 1 == m_group_count ? 0 : number + 1;
    }
}

template WordSet::Found WordSet::find_or_add_slowly<false>(Hash, bool) noexcept;
template WordSet::Found WordSet::find_or_add_slowly<true>(Hash, bool) noexcept;

WordSet::Found WordSet::find_or_add_zero(bool may_add) noexcept {
    if (m_has_zero.load(std::memory_order_relaxed)) {
        return Found::known;
    }
    if (!may_add) {
        return Found::one_too_many;
    }
    may_be_late();
    return m_has_zero.exchange(true, std::memory_order_relaxed) ? Found::known : Found::added;
}

void WordSet::note_displaced(std::size_t groups) noexcept {
    std::atomic_ref most(m_most_displaced);
    for (std::size_t known = most.load(std::memory_order_relaxed);
         known < groups && !most.compare_exchange_weak(known, groups, std::memory_order_relaxed);) {
    }
}

/// More groups are put behind the old ones, whose hashes then move, the last ones first: those of the groups
/// from `first` up to `last` at a time, all of which lead behind `last`. A hash stands up to `m_most_displaced` groups
/// behind its own, whose number grows by the factor by which there are more groups. For the first few that is not
/// enough: their hashes are taken out, and come last.
void WordSet::make_room(std::uint64_t count, Team* team) {
    std::size_t const before = m_group_count;
    std::size_t const after = groups_for(m_size + count);
    if (after == before) {
        return;
    }
    std::size_t const displaced = m_most_displaced;
    std::size_t const few = std::min(before, (displaced + 1) * after / (after - before) + 1);
    std::vector<Group> taken_out(few);
    grow_groups(after);
    m_most_displaced = 0;
    std::swap_ranges(taken_out.begin(), taken_out.end(), m_groups.get());
    for (std::size_t last = before; last > few;) {
        std::size_t const first = std::max(few, last * before / after + 1 + displaced);
        move_groups(first, last, team);
        last = first;
    }
    for (Group& each : taken_out) {
        move<false>(each);
    }
}

/// The new ones are free.
void WordSet::grow_groups(std::size_t count) {
    std::size_t const before = bytes_of(m_group_count);
    std::size_t const after = bytes_of(count);
    auto* const larger = static_cast<Group*>(grow_large(m_groups.get(), before, after));
    static_cast<void>(m_groups.release()); // it is freed, or the same
    m_groups = LargeArray<Group>(larger, FreeLarge{after});
    if (after <
        large_page) { // otherwise pages come with zeros, and none behind the old groups was written to
        std::memset(static_cast<void*>(larger + m_group_count), 0, after - before);
    }
    m_group_count = count;
}

void WordSet::move_groups(std::size_t first, std::size_t last, Team* team) noexcept {
    if (team == nullptr || last - first <= piece) {
        std::for_each(&m_groups[first], &m_groups[last],
                      [this](Group& each) { move<false>(each); });
        return;
    }
    auto const move_piece = [&](unsigned, std::size_t number) {
        std::size_t const begin = first + number * piece;
        std::for_each(&m_groups[begin], &m_groups[std::min(begin + piece, last)],
                      [this](Group& each) { move<true>(each); });
    };
    team->each((last - first + piece - 1) / piece, std::cref(move_piece)); // allocates nothing
}

/// What stands in a group, which is free then, to where it belongs, where it does not stand yet.
template <bool is_shared> void WordSet::move(Group& group) noexcept {
    for (Hash& each : group.hashes) {
        if (each != is_free) {
            find_or_add<is_shared>(each, true);
            each = is_free;
        }
    }
}

/// Of a set of so many states, which are no fewer than there are: twice as many groups as there are, or what is needed.
std::size_t WordSet::groups_for(std::uint64_t states) const noexcept {
    auto const capacity = [](std::uint64_t groups) {
        return groups * group_size * most_load / 100;
    };
    if (states <= capacity(m_group_count)) {
        return m_group_count;
    }
    return std::max<std::size_t>(m_group_count * 2, states * 100 / (most_load * group_size) + 1);
}

} // namespace Calder::StateSpace
