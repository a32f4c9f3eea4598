#include "state_space/exploration.h"
#include "tests/state_space/counted_allocation.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::StateSpace {
namespace {

using namespace Testing;
using ProcessCompiler::Testing::FakePointer;
using ProcessCompiler::Testing::FakeProcess;

TEST(Allocation, steps_allocate_nothing_but_growing_arrays) {
    if (!allocations_can_fail()) {
        GTEST_SKIP() << why_not_counted;
    }
    constexpr unsigned size = 20'000;
    std::vector<FakePointer> states;
    for (unsigned number = 0; number < size; ++number) {
        states.emplace_back(new FakeProcess(std::to_string(number)));
        states.back()->hash = hash_combine(1, number);
    }
    for (unsigned number = 0; number < size; ++number) {
        // One row in ten is wide.
        for (unsigned event = 3; event < (number % 10 == 0 ? 43 : 6); ++event) {
            states[number]->transitions.emplace_back(event, states[(number + event) % size]);
        }
    }
    ProcessCompiler::NamedProcessSource const source;
    std::size_t const before = Testing::allocation_count();
    Exploration const found = explore(states[0], source);
    std::size_t const used = Testing::allocation_count() - before;
    EXPECT_EQ(found.lts.state_count(), size);
    EXPECT_LT(used, 100U);
    EXPECT_GT(used, 0U) << "or nothing is counted";
    for (FakePointer const& state : states) {
        state->transitions.clear(); // the test's own cycles of pointers
    }
}

} // namespace
} // namespace Calder::StateSpace
