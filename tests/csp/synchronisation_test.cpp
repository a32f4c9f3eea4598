#include "csp/operator_helpers.h"
#include "tests/csp/terms.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler::CSP {
namespace {

/// (event, number of the successor) by argument. A successor prints its number, so that a
/// combination can be told by the numbers of its arguments.
using Numbers = std::vector<std::vector<std::pair<unsigned, unsigned>>>;

OwningArray<SyncVector> vectors_of(Numbers const& numbers) {
    OwningArray<SyncVector> vectors(numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        for (auto const& [event, number] : numbers[i]) {
            vectors[i].emplace_back(event, source.reference(std::to_string(number)));
        }
    }
    return vectors;
}

OperatorPointer const op{new GeneralisedParallelOperator(BitSet{})};

/// What is offered, as text: `3 of 0 1, `; stops at the first offer numbered `refused`, and ends in
/// the answer.
std::string offers(BitSet const& synchronised, Numbers const& numbers, int refused) {
    OwningArray<SyncVector> vectors = vectors_of(numbers);
    sort_sync_vectors(vectors);
    Terms const arguments(numbers.size());
    std::string offered;
    bool const answer = cart_product_synchronised_events(
        synchronised, vectors, arguments,
        [&](unsigned event, Term successor) {
            offered += std::to_string(event) + (successor->argument_count() == 0 ? "" : " of");
            for (unsigned i = 0; i < successor->argument_count(); ++i) {
                offered += " " + text(*successor->argument(i));
            }
            offered += ", ";
            return refused-- != 0;
        },
        op);
    return offered + (answer ? "done" : "stopped");
}

TEST(Synchronisation, offers_what_all_arguments_can_perform) {
    Numbers const with_tick{{{tick, 0}, {tick, 1}, {3, 2}, {3, 3}, {4, 4}},
                            {{tick, 5}, {3, 6}, {4, 7}}};
    struct {
        char const* fault;
        BitSet synchronised;
        Numbers numbers;
        char const* offers;
        int refused = -1;
    } const rows[] = {
        {"the odometer runs backwards, or stops early",
         {3},
         {{{3, 0}, {3, 1}}, {{3, 2}, {3, 3}, {3, 4}}},
         "3 of 0 2, 3 of 0 3, 3 of 0 4, 3 of 1 2, 3 of 1 3, 3 of 1 4, done"},
        {"one argument cannot, and yet it is offered",
         {3, 4},
         {{{3, 0}, {4, 1}}, {{4, 2}}},
         "4 of 1 2, done"},
        {"a cursor does not persist, or runs too far",
         {3, 5, 7},
         {{{7, 0}, {3, 1}, {5, 2}}, {{5, 3}, {7, 4}, {4, 5}}},
         "5 of 2 3, 7 of 0 4, done"},
        {"an event outside the set is combined", {4}, {{{3, 0}}, {{3, 1}}}, "done"},
        {"one argument alone is not enumerated", {3}, {{{3, 0}, {3, 1}}}, "3 of 0, 3 of 1, done"},
        {"nothing to combine", {3}, {{}, {}}, "done"},
        {"a refusal of a tick ends it",
         {tick, 3, 4},
         with_tick,
         "2, 2, 3 of 2 6, 3 of 3 6, 4 of 4 7, done",
         1},
        {"a refusal does not end it", {tick, 3, 4}, with_tick, "2, 2, 3 of 2 6, stopped", 2},
        {"a refusal of the last answers true",
         {tick, 3, 4},
         with_tick,
         "2, 2, 3 of 2 6, 3 of 3 6, 4 of 4 7, stopped",
         4},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(offers(row.synchronised, row.numbers, row.refused), row.offers) << row.fault;
    }
}

TEST(Synchronisation, an_exception_on_the_way_releases_everything) {
    ProcessPointer const held = source.reference("0");
    std::uintptr_t const before = held->reference_count();
    {
        OwningArray<SyncVector> vectors = vectors_of({{{3, 0}}, {{3, 0}}});
        Terms const arguments(2);
        EXPECT_THROW(cart_product_synchronised_events({3}, vectors, arguments, {}, op),
                     std::bad_function_call);
    }
    EXPECT_EQ(held->reference_count(), before);
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
