#include "csp/operator_helpers.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/recursion_watch.h"

#include <algorithm>

namespace Calder::ProcessCompiler::CSP {

namespace {

using Entry = SyncVector::value_type;

bool has_lower_event(Entry const& left, Entry const& right) {
    return left.first < right.first;
}

/// The end of the entries on `event` that begin at `entry`.
Entry const* end_of_run(Entry const* entry, Entry const* end, unsigned event) {
    while (entry != end && entry->first == event) {
        ++entry;
    }
    return entry;
}

/// The first entry, from `entry` on, on `event` or a later one.
Entry const* skip_to(Entry const* entry, Entry const* end, unsigned event) {
    while (entry != end && entry->first < event) {
        ++entry;
    }
    return entry;
}

/// Short vectors, as most are, mostly need few moves, and swapping is the cheapest: what assigns a
/// counted pointer looks whether there is another to be released.
void sort_entries(Entry* begin, Entry* end) {
    constexpr std::ptrdiff_t few = 16; // up to there std::sort leaves equal ones in order, too
    if (end - begin > few) {
        std::sort(begin, end, has_lower_event);
        return;
    }
    for (Entry* next = begin; next != end; ++next) {
        for (Entry* at = next; at != begin && has_lower_event(at[0], at[-1]); --at) {
            at[0].swap(at[-1]);
        }
    }
}

/// What cart_product does for two arguments, as most operators have: the term is built from where
/// their successors stand, as copies would only be counted, copied again and dropped.
bool offer_pairs(Entry const* left, Entry const* left_end, Entry const* right,
                 Entry const* right_end, TransitionVisitor const& callback, unsigned event,
                 OperatorPointer const& op) {
    for (; left != left_end; ++left) {
        for (Entry const* with = right; with != right_end; ++with) {
            if (event == tick) {
                callback(tick, shared_stop);
                continue;
            }
            watch_recursion(); // of one visit there may be any number
            if (!callback(event, new OperatorProcess(op, left->second, with->second))) {
                return false;
            }
        }
    }
    return true;
}

/// What cart_product does.
template <typename Vectors>
bool offer_combinations(ProcessArray const& arguments, Vectors const& vectors,
                        unsigned const* start, unsigned const* end, ProcessArray& joint_arguments,
                        unsigned* current, TransitionVisitor const& callback, unsigned event,
                        OperatorPointer const& op) {
    if (arguments.size() == 2) {
        Entry const* const left = vectors[0].data();
        Entry const* const right = vectors[1].data();
        return offer_pairs(left + start[0], left + end[0], right + start[1], right + end[1],
                           callback, event, op);
    }
    auto const choose = [&](std::size_t argument, unsigned position) {
        current[argument] = position;
        joint_arguments[argument] = vectors[argument][position].second;
    };
    for (std::size_t argument = 0; argument < arguments.size(); ++argument) {
        choose(argument, start[argument]);
    }
    while (true) {
        if (event == tick) {
            callback(tick, shared_stop);
        } else if (!callback(event, new OperatorProcess(op, joint_arguments))) {
            return false;
        }
        std::size_t argument = arguments.size() - 1;
        while (current[argument] + 1 == end[argument]) {
            if (argument == 0) {
                return true;
            }
            choose(argument, start[argument]);
            --argument;
        }
        choose(argument, current[argument] + 1);
    }
}

/// What cart_product_synchronised_events does for two arguments.
template <typename Vector>
bool offer_synchronised_pairs(BitSet const& synchronised, Vector const& lefts, Vector const& rights,
                              TransitionVisitor const& callback, OperatorPointer const& op) {
    Entry const* left = lefts.data();
    Entry const* right = rights.data();
    Entry const* const left_last = left + lefts.size();
    Entry const* const right_last = right + rights.size();
    while (left != left_last && right != right_last) {
        unsigned const event = left->first;
        Entry const* const left_end = end_of_run(left, left_last, event);
        right = skip_to(right, right_last, event);
        Entry const* const right_end = end_of_run(right, right_last, event);
        if (right != right_end && synchronised.member(event) &&
            !offer_pairs(left, left_end, right, right_end, callback, event, op)) {
            return false;
        }
        left = left_end;
        right = right_end;
    }
    return true;
}

/// Moves `start` on to the first entry on `event` and sets `end` behind the last one. False when
/// there is none; `start` is then where the search for a later event goes on.
template <typename Vector>
bool advance_to_run(Vector const& vector, unsigned event, unsigned& start, unsigned& end) {
    Entry const* const first = vector.data();
    Entry const* const last = first + vector.size();
    Entry const* const run = skip_to(first + start, last, event);
    start = static_cast<unsigned>(run - first);
    end = static_cast<unsigned>(end_of_run(run, last, event) - first);
    return end > start;
}

/// What cart_product_synchronised_events does.
template <typename Vectors>
bool offer_synchronised(BitSet const& synchronised, Vectors const& vectors,
                        ProcessArray const& arguments, TransitionVisitor const& callback,
                        OperatorPointer const& op) {
    if (arguments.size() == 2) {
        return offer_synchronised_pairs(synchronised, vectors[0], vectors[1], callback, op);
    }
    auto const& first = vectors[0];
    if (first.empty()) {
        return true;
    }
    CartProductScratch scratch(arguments.size());
    // What all can perform the first one can; of the set there may be far more.
    for (std::size_t next = 0; next < first.size(); next = scratch.end[0]) {
        unsigned const event = first[next].first;
        std::size_t argument = 0;
        while (argument < arguments.size() &&
               advance_to_run(vectors[argument], event, scratch.start[argument],
                              scratch.end[argument])) {
            ++argument;
        }
        if (argument == arguments.size() && synchronised.member(event) &&
            !offer_combinations(arguments, vectors, scratch.start, scratch.end,
                                scratch.joint_arguments, scratch.current, callback, event, op)) {
            return false;
        }
    }
    return true;
}

/// What sort_sync_vectors does.
template <typename Vectors> void sort_each(Vectors& vectors) {
    for (auto& vector : vectors) {
        sort_entries(vector.data(), vector.data() + vector.size());
    }
}

} // namespace

void sort_sync_vectors(SyncVectors& vectors) noexcept {
    sort_each(vectors);
}

void sort_kept(KeptVectors& vectors) noexcept {
    sort_each(vectors);
}

// NOLINTBEGIN(performance-unnecessary-value-param): the callback is taken by value by contract
bool cart_product(ProcessArray const& arguments, SyncVectors const& vectors,
                  IndexArray const& start, IndexArray const& end, ProcessArray& joint_arguments,
                  IndexArray& current, TransitionVisitor callback, unsigned event,
                  OperatorPointer const& op) {
    return offer_combinations(arguments, vectors, start.begin(), end.begin(), joint_arguments,
                              current.begin(), callback, event, op);
}

bool cart_product_synchronised_events(BitSet const& synchronised, SyncVectors const& vectors,
                                      ProcessArray const& arguments, TransitionVisitor callback,
                                      OperatorPointer const& op) {
    return offer_synchronised(synchronised, vectors, arguments, callback, op);
}

// NOLINTEND(performance-unnecessary-value-param)

/// The first room is a small block.
bool KeptVector::add_with_more_room(unsigned event, ProcessPointer const& successor) {
    constexpr std::size_t first_room = SmallBlocks::most_small_bytes / sizeof(Entry);
    std::size_t const room = m_begin == nullptr ? first_room : size() * 2;
    auto* const begin = static_cast<Entry*>(SmallBlocks::allocate(room * sizeof(Entry)));
    Entry* const end = std::uninitialized_move(m_begin, m_end, begin);
    std::destroy(m_begin, m_end);
    SmallBlocks::free(m_begin, room_bytes());
    m_begin = begin;
    m_end = end;
    m_room_end = begin + room;
    return add(event, successor);
}

bool CartProductScratch::find_run(KeptVectors const& vectors, std::size_t index, unsigned event,
                                  std::size_t left_out) {
    Entry const* const all = vectors[index].data();
    auto const [first, last] = std::equal_range(all, all + vectors[index].size() - left_out,
                                                Entry(event, nullptr), has_lower_event);
    start[index] = static_cast<unsigned>(first - all);
    end[index] = static_cast<unsigned>(last - all);
    return first != last;
}

bool SynchronisedVisit::move(unsigned event, ProcessPointer const& successor) const {
    return visitor(event, new OperatorProcess(op, arguments, moving, successor));
}

bool SynchronisedVisit::combine_on(BitSet const& synchronised) {
    sort_kept(vectors);
    return offer_synchronised(synchronised, vectors, arguments, visitor, op);
}

bool SynchronisedVisit::combine(CartProductScratch& scratch, unsigned event) const {
    return offer_combinations(arguments, vectors, scratch.start, scratch.end,
                              scratch.joint_arguments, scratch.current, visitor, event, op);
}

} // namespace Calder::ProcessCompiler::CSP
