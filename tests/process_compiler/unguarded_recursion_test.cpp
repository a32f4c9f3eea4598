#include "process_compiler/unguarded_recursion.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakePointer;
using Testing::FakeProcess;

/// A name and the names that its definition runs from the start or only later.
struct Definition {
    std::string name;
    std::vector<std::string> at_start;
    std::vector<std::string> later;
};

FakePointer term_over(NamedProcessSource& source, std::vector<std::string> const& names,
                      ArgumentState state) {
    OwningArray<ProcessPointer> arguments(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        arguments[i] = source.reference(names[i]);
    }
    FakePointer term(new FakeProcess("term", arguments));
    term->state = state;
    return term;
}

std::vector<std::string> cycles_of(std::vector<Definition> const& definitions) {
    NamedProcessSource source;
    for (Definition const& definition : definitions) {
        source.reference(definition.name);
    }
    for (Definition const& definition : definitions) {
        OwningArray<ProcessPointer> const parts{
            term_over(source, definition.at_start, ArgumentState::on),
            term_over(source, definition.later, ArgumentState::off)};
        source.define(definition.name, new FakeProcess("choice", parts));
    }
    std::vector<std::string> texts;
    for (NameCycle const& cycle : find_unguarded_recursion(source)) {
        std::string& text = texts.emplace_back();
        for (NamedProcessPointer const& name : cycle) {
            text += name->name() + ' ';
        }
    }
    return texts;
}

TEST(UnguardedRecursion, is_a_cycle_through_what_runs_from_the_start) {
    struct {
        char const* fault;
        std::vector<Definition> definitions;
        std::vector<std::string> cycles;
    } const rows[] = {
        {"a guarded name is reported", {{"P", {}, {"P"}}}, {}},
        {"a name on itself is missed", {{"P", {"P"}, {}}}, {"P "}},
        {"a cycle of two is missed or told twice",
         {{"P", {"Q"}, {}}, {"Q", {"P"}, {"Q"}}},
         {"P Q "}},
        {"the way into a cycle counts as part of it",
         {{"A", {"P"}, {}}, {"P", {"Q"}, {}}, {"Q", {"P"}, {}}},
         {"P Q "}},
        {"two paths to one name count as a cycle",
         {{"A", {"B", "C"}, {}}, {"B", {"D"}, {}}, {"C", {"D"}, {}}, {"D", {}, {"A"}}},
         {}},
        {"the second of two cycles is missed",
         {{"P", {"P"}, {}}, {"Q", {"R"}, {}}, {"R", {"Q"}, {}}},
         {"P ", "Q R "}},
        {"a name is told again and again",
         {{"P", {"P", "Q"}, {}}, {"Q", {"P", "Q"}, {}}},
         {"P ", "P Q "}},
        {"a guard anywhere in the cycle is ignored",
         {{"P", {"Q"}, {}}, {"Q", {"R"}, {}}, {"R", {}, {"P"}}},
         {}},
        {"a name without a definition ends the search", {{"P", {"GHOST", "P"}, {}}}, {"P "}},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(cycles_of(row.definitions), row.cycles) << row.fault;
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
