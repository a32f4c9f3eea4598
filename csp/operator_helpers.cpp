#include "csp/operator_helpers.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/recursion_watch.h"

#include <algorithm>

namespace Calder::ProcessCompiler::CSP {

namespace {

/// Moves `start` on to the first entry on `event` and sets `end` behind the last one. False when
/// there is none; `start` is then where the search for a later event goes on.
bool advance_to_run(SyncVector const& vector, unsigned event, unsigned& start, unsigned& end) {
    auto const size = static_cast<unsigned>(vector.size());
    while (start < size && vector[start].first < event) {
        ++start;
    }
    end = start;
    while (end < size && vector[end].first == event) {
        ++end;
    }
    return end > start;
}

bool has_lower_event(std::pair<unsigned, ProcessPointer> const& left,
                     std::pair<unsigned, ProcessPointer> const& right) {
    return left.first < right.first;
}

/// What cart_product does.
bool offer_combinations(ProcessArray const& arguments, SyncVectors const& vectors,
                        IndexArray const& start, IndexArray const& end,
                        ProcessArray& joint_arguments, IndexArray& current,
                        TransitionVisitor const& callback, unsigned event,
                        OperatorPointer const& op) {
    // Of two arguments, as most operators have, the term is built from where their successors stand:
    // copies would only be counted, copied again and dropped.
    bool const are_two = arguments.size() == 2;
    auto const chosen = [&](std::size_t argument) -> ProcessPointer const& {
        return vectors[argument][current[argument]].second;
    };
    auto const choose = [&](std::size_t argument, unsigned position) {
        current[argument] = position;
        if (!are_two) {
            joint_arguments[argument] = chosen(argument);
        }
    };
    auto const joint = [&]() -> ProcessPointer {
        if (!are_two) {
            return new OperatorProcess(op, joint_arguments);
        }
        watch_recursion(); // of one visit there may be any number
        return new OperatorProcess(op, chosen(0), chosen(1));
    };
    for (std::size_t argument = 0; argument < arguments.size(); ++argument) {
        choose(argument, start[argument]);
    }
    while (true) {
        if (event == tick) {
            callback(tick, shared_stop);
        } else if (!callback(event, joint())) {
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

/// What cart_product_synchronised_events does.
bool offer_synchronised(BitSet const& synchronised, SyncVectors const& vectors,
                        ProcessArray const& arguments, TransitionVisitor const& callback,
                        OperatorPointer const& op) {
    SyncVector const& first = vectors[0];
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

} // namespace

void sort_sync_vectors(SyncVectors& vectors) noexcept {
    for (SyncVector& vector : vectors) {
        std::sort(vector.begin(), vector.end(), has_lower_event);
    }
}

// NOLINTBEGIN(performance-unnecessary-value-param): the callback is taken by value by contract
bool cart_product(ProcessArray const& arguments, SyncVectors const& vectors,
                  IndexArray const& start, IndexArray const& end, ProcessArray& joint_arguments,
                  IndexArray& current, TransitionVisitor callback, unsigned event,
                  OperatorPointer const& op) {
    return offer_combinations(arguments, vectors, start, end, joint_arguments, current, callback,
                              event, op);
}

bool cart_product_synchronised_events(BitSet const& synchronised, SyncVectors const& vectors,
                                      ProcessArray const& arguments, TransitionVisitor callback,
                                      OperatorPointer const& op) {
    return offer_synchronised(synchronised, vectors, arguments, callback, op);
}

// NOLINTEND(performance-unnecessary-value-param)

bool CartProductScratch::find_run(SyncVectors const& vectors, std::size_t index, unsigned event,
                                  std::size_t left_out) {
    SyncVector const& vector = vectors[index];
    auto const [first, last] =
        std::equal_range(vector.begin(), vector.end() - static_cast<std::ptrdiff_t>(left_out),
                         std::pair(event, ProcessPointer()), has_lower_event);
    start[index] = static_cast<unsigned>(first - vector.begin());
    end[index] = static_cast<unsigned>(last - vector.begin());
    return first != last;
}

bool SynchronisedVisit::combine_on(BitSet const& synchronised) {
    sort_sync_vectors(vectors);
    return offer_synchronised(synchronised, vectors, arguments, visitor, op);
}

bool SynchronisedVisit::combine(CartProductScratch& scratch, unsigned event) const {
    return offer_combinations(arguments, vectors, scratch.start, scratch.end,
                              scratch.joint_arguments, scratch.current, visitor, event, op);
}

} // namespace Calder::ProcessCompiler::CSP
