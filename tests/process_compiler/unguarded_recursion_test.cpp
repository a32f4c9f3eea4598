#include "process_compiler/unguarded_recursion.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakePointer;
using Testing::FakeProcess;

// Which cycles are found is told by tests/sessions/unguarded_recursion.session.

TEST(UnguardedRecursion, is_not_looked_for_behind_a_name_without_a_definition_nor_behind_a_guard) {
    NamedProcessSource source;
    for (ArgumentState const state : {ArgumentState::on, ArgumentState::off}) {
        OwningArray<ProcessPointer> const names{source.reference("GHOST"), source.reference("P")};
        FakePointer const term(new FakeProcess("term", names));
        term->state = state;
        source.define("P", term);
        EXPECT_EQ(find_unguarded_recursion(source).size(), state == ArgumentState::on ? 1U : 0U);
    }
}

TEST(UnguardedRecursion, shared_arguments_and_long_chains_cost_their_size) {
    NamedProcessSource source;
    ProcessPointer shared(new FakeProcess("leaf"));
    for (int level = 0; level < 200; ++level) { // 2^200 paths
        shared = new FakeProcess("pair", OwningArray<ProcessPointer>{shared, shared});
    }
    source.define("DIAMOND", shared);
    constexpr int length = 100'000;
    for (int i = 0; i < length; ++i) {
        source.define(std::to_string(i), source.reference(std::to_string((i + 1) % length)));
    }
    std::vector<NameCycle> const cycles = find_unguarded_recursion(source);
    ASSERT_EQ(cycles.size(), 1U);
    EXPECT_EQ(cycles[0].size(), static_cast<std::size_t>(length));
}

} // namespace
} // namespace Calder::ProcessCompiler
