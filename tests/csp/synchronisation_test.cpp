#include "csp/operator_helpers.h"
#include "tests/csp/terms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

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

/// Of `count` entries on three events, numbered in the order in which they came.
std::vector<std::pair<unsigned, unsigned>> on_three_events(unsigned count, std::mt19937& random) {
    std::vector<std::pair<unsigned, unsigned>> numbers;
    for (unsigned number = 0; number < count; ++number) {
        numbers.emplace_back(3 + static_cast<unsigned>(random() % 3), number);
    }
    return numbers;
}

TEST(Synchronisation, sorting_loses_nothing_and_keeps_few_in_order) {
    std::mt19937 random(7);
    for (unsigned count = 0; count < 80; ++count) {
        auto numbers = on_three_events(count, random);
        OwningArray<SyncVector> vectors = vectors_of({numbers});
        sort_sync_vectors(vectors);
        std::vector<std::pair<unsigned, unsigned>> sorted;
        for (auto const& [event, successor] : vectors[0]) {
            sorted.emplace_back(event, std::stoul(text(*successor)));
        }
        if (count > 16) {
            EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end(), [](auto left, auto right) {
                return left.first < right.first;
            }));
            std::sort(sorted.begin(), sorted.end());
        }
        std::sort(numbers.begin(), numbers.end()); // numbers ascend as they came
        EXPECT_EQ(sorted, numbers) << count;
    }
}

/// `first, first + 1, …` of the event, `count` of them: "3 0, 3 1, ".
ProcessPointer ways(unsigned event, unsigned count, unsigned first) {
    Terms all(count);
    for (unsigned i = 0; i < count; ++i) {
        all[i] = prefix(event, source.reference(std::to_string(first + i)));
    }
    return external(all);
}

/// What there is room for at first, and far more; two arguments and three, which go other ways.
TEST(Synchronisation, any_number_of_transitions_is_kept_and_let_go) {
    struct {
        char const* name;
        ProcessPointer (*of)(Terms const& arguments);
    } const operators[] = {
        {"generalised", [](Terms const& of) { return parallel({3}, of); }},
        {"alphabetised", [](Terms const& of) { return alphabetised(Sets(of.size(), {3}), of); }},
        {"choice", [](Terms const& of) { return sync_choice({3}, of); }},
    };
    for (unsigned const count : {1U, 16U, 17U, 40U}) {
        for (std::size_t arguments = 2; arguments < 4; ++arguments) {
            Terms of(arguments);
            for (std::size_t i = 0; i < arguments; ++i) {
                of[i] = ways(3, i == 2 ? 1 : count, static_cast<unsigned>(i) * 100);
            }
            std::set<std::string> all;
            for (unsigned left = 0; left < count; ++left) {
                for (unsigned right = 0; right < count; ++right) {
                    all.insert(std::to_string(left) + " " + std::to_string(100 + right) +
                               (arguments == 3 ? " 200" : ""));
                }
            }
            Term last = of[1]->argument(count - 1)->argument(0);
            for (auto const& each : operators) {
                ProcessPointer const term = each.of(of);
                std::uintptr_t const held = last->reference_count();
                std::set<std::string> offered;
                unsigned offers = 0;
                EXPECT_TRUE(term->visit_transitions(source, [&](unsigned, Term successor) {
                    std::string of_what = text(*successor->argument(0));
                    for (unsigned i = 1; i < arguments; ++i) {
                        of_what += " " + text(*successor->argument(i));
                    }
                    offered.insert(of_what);
                    return ++offers > 0;
                })) << each.name;
                EXPECT_EQ(offered, all) << each.name << ", " << count;
                EXPECT_EQ(offers, all.size()) << each.name << ", " << count;
                EXPECT_EQ(last->reference_count(), held) << each.name << ", " << count;
            }
        }
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
