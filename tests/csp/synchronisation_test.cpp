#include "csp/operator_helpers.h"
#include "tests/csp/terms.h"

#include <gtest/gtest.h>

#include <algorithm>

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

/// What is offered, as text: `3:0 1`, a line each; stops at the first offer numbered `refused`.
std::string offers(BitSet const& synchronised, Numbers const& numbers, std::size_t refused,
                   bool& answer) {
    OwningArray<SyncVector> vectors = vectors_of(numbers);
    sort_sync_vectors(vectors);
    Terms const arguments(numbers.size());
    std::string lines;
    std::size_t count = 0;
    answer = cart_product_synchronised_events(
        synchronised, vectors, arguments,
        [&](unsigned event, Term successor) {
            lines += std::to_string(event) + ":";
            for (unsigned i = 0; i < successor->argument_count(); ++i) {
                lines += " " + text(*successor->argument(i));
            }
            lines += "\n";
            return count++ != refused;
        },
        op);
    return lines;
}

TEST(Synchronisation, combines_what_all_arguments_can_perform) {
    struct {
        char const* fault;
        BitSet synchronised;
        Numbers numbers;
        char const* offers;
    } const rows[] = {
        {"the odometer runs backwards, or stops early",
         {3},
         {{{3, 0}, {3, 1}}, {{3, 2}, {3, 3}, {3, 4}}},
         "3: 0 2\n3: 0 3\n3: 0 4\n3: 1 2\n3: 1 3\n3: 1 4\n"},
        {"one argument cannot, and yet it is offered",
         {3, 4},
         {{{3, 0}, {4, 1}}, {{4, 2}}},
         "4: 1 2\n"},
        {"a cursor does not persist, or runs too far",
         {3, 5, 7},
         {{{7, 0}, {3, 1}, {5, 2}}, {{5, 3}, {7, 4}, {4, 5}}},
         "5: 2 3\n7: 0 4\n"},
        {"an event outside the set is combined", {4}, {{{3, 0}}, {{3, 1}}}, ""},
        {"one argument alone is not enumerated", {3}, {{{3, 0}, {3, 1}}}, "3: 0\n3: 1\n"},
        {"tick is not offered once a combination, to STOP",
         {tick},
         {{{tick, 0}, {tick, 1}}, {{tick, 2}}},
         "2:\n2:\n"},
        {"nothing to combine", {3}, {{}, {}}, ""},
    };
    for (auto const& row : rows) {
        bool answer = false;
        EXPECT_EQ(offers(row.synchronised, row.numbers, SIZE_MAX, answer), row.offers) << row.fault;
        EXPECT_TRUE(answer) << row.fault;
    }
}

TEST(Synchronisation, a_refusal_ends_it_except_of_a_tick) {
    Numbers const numbers = {{{tick, 0}, {tick, 1}, {3, 2}, {3, 3}, {4, 4}},
                             {{tick, 5}, {3, 6}, {4, 7}}};
    struct {
        std::size_t refused;
        bool answer;
        long offered;
    } const rows[] = {{0, true, 5}, {1, true, 5}, {2, false, 3}, {3, false, 4}, {4, false, 5}};
    for (auto const& row : rows) {
        bool answer = false;
        std::string const lines = offers({tick, 3, 4}, numbers, row.refused, answer);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), row.offered);
        EXPECT_EQ(answer, row.answer);
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
