#pragma once

#include "state_space/machine/run/bucket.h"
#include "state_space/machine/run/lateness.h"
#include "state_space/machine/run/patience.h"
#include "state_space/machine/run/visited_states.h"

#include <utility>

namespace Calder::StateSpace {

/// Looks for the state of this hash in a table of so many buckets, while other threads do so, too, and appends it when
/// it is new: `is_state(number)` tells whether it is one of those with its tag. Before it is appended
/// `prepare(bucket, place)` comes, which may be in vain, and then, while the bucket is locked, `next_number()`; where
/// that is no_state, nothing is appended. Returns the number, and whether it is new.
template <typename IsState, typename Prepare, typename NextNumber>
std::pair<StateNumber, bool> find_or_append(Bucket* buckets, std::size_t bucket_count,
                                            std::uint64_t hash, IsState&& is_state,
                                            Prepare&& prepare, NextNumber&& next_number) noexcept {
    std::uint8_t const tag = VisitedStates::tag_of(hash);
    std::size_t place = VisitedStates::bucket_of(hash, bucket_count);
    for (Patience patience;;) {
        Bucket& bucket = buckets[place];
        Bucket::Head const head = bucket.shared_head();
        for (unsigned rest = head.matches(tag); rest != 0; rest &= rest - 1) {
            StateNumber const known = bucket.shared_number(VisitedStates::first_of_set(rest));
            if (is_state(known)) {
                return {known, false};
            }
        }
        if (head.is_full()) {
            place = place + 1 == bucket_count ? 0 : place + 1;
        } else if (head.is_locked()) {
            patience.wait();
        } else {
            prepare(place, head.count());
            may_be_late();
            if (bucket.lock(head)) { // nobody has added it meanwhile
                may_be_late();
                StateNumber const number = next_number();
                if (number == no_state) {
                    bucket.unlock(head);
                } else {
                    bucket.append_and_unlock(head, number, tag);
                }
                return {number, true};
            }
        }
    }
}

} // namespace Calder::StateSpace
