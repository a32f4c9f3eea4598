#include "state_space/machine/compile/term_graph.h"
#include "tests/state_space/machine/fake_construct.h"
#include "tests/state_space/stack_of_size.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::NamedProcess;
using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using namespace Testing;

using Names = std::vector<std::string>;
using Terms = std::vector<ProcessPointer>;

constexpr std::nullopt_t as_wished = std::nullopt;

ProcessPointer leveled(std::string name, std::optional<CompilationLevel> level, Terms const& terms,
                       std::set<unsigned> forbidden = {}) {
    auto* const made = new FakeConstruct(std::move(name), terms);
    made->level = level;
    made->forbids_recursion = std::move(forbidden);
    return made;
}

ProcessPointer high(std::string name, Terms const& terms, std::set<unsigned> forbidden = {}) {
    return leveled(std::move(name), CompilationLevel::high, terms, std::move(forbidden));
}

ProcessPointer low(std::string name, Terms const& terms, std::set<unsigned> forbidden = {}) {
    return leveled(std::move(name), CompilationLevel::low, terms, std::move(forbidden));
}

std::string name_of(TermGraph::Vertex const& vertex) {
    return vertex.is_name ? static_cast<NamedProcess const&>(*vertex.term).name()
                          : static_cast<FakeProcess const&>(*vertex.term).name;
}

Names constructs_of(TermGraph const& graph) {
    Names names;
    for (TermGraph::Vertex const& vertex : graph.vertices) {
        if (vertex.is_construct) {
            names.push_back(name_of(vertex));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(MachineTermGraph, a_term_is_a_construct_if_it_or_something_inside_prefers_the_high_level) {
    ProcessPointer const a = leaf("a", {{}});
    NamedProcessSource source;
    source.define("N", high("H", {a}));
    source.define("M", a);
    ProcessPointer const n = source.reference("N");
    ProcessPointer const m = source.reference("M");
    struct {
        char const* shape;
        ProcessPointer term;
        Names constructs;
    } const rows[] = {
        {"no arguments", high("H", {}), {}},
        {"high over a leaf", high("H", {a}), {"H"}},
        {"low over a leaf", low("L", {a}), {}},
        {"low over high", low("L", {a, high("H", {a})}), {"H", "L"}},
        {"low over low over high", low("L", {low("K", {high("H", {a})})}), {"H", "K", "L"}},
        {"high over low", high("H", {low("L", {a})}), {"H"}},
        {"as wished, with nothing wished", leveled("W", as_wished, {low("L", {a})}), {}},
        {"as wished over high", leveled("W", as_wished, {high("H", {a})}), {"H", "W"}},
        {"high beside low", high("R", {low("L", {a}), high("H", {a})}), {"H", "R"}},
        {"low over high without arguments", low("L", {high("H", {})}), {}},
        {"low over a name of high", low("L", {n}), {"H", "L", "N"}},
        {"low over a name of a leaf", low("L", {m}), {}},
        {"high over a name of a leaf", high("R", {m}), {"R"}},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(constructs_of(make_term_graph(row.term, source)), row.constructs) << row.shape;
    }
}

TEST(MachineTermGraph, recursion_is_refused_where_a_construct_forbids_it) {
    struct {
        char const* what;
        std::set<unsigned> forbidden_by_outer, forbidden_by_inner;
        bool inner_is_high;
        Names constructs;
        Names refused; // the construct, its argument, the names on the cycle
    } const rows[] = {
        {"allowed", {}, {}, true, {"Inner", "Outer", "P", "Q", "Top"}, {}},
        {"forbidden off the cycle", {0}, {1}, true, {"Inner", "Outer", "P", "Q", "Top"}, {}},
        {"forbidden outside", {1}, {}, true, {"Top"}, {"Outer", "1", "Q", "P"}},
        {"forbidden inside", {}, {0}, true, {"Top"}, {"Inner", "0", "Q", "P"}},
        {"forbidden for what is not compiled", {1}, {0}, false, {"Top"}, {}},
    };
    for (auto const& row : rows) {
        NamedProcessSource source;
        ProcessPointer const q = source.reference("Q"); // comes up before P
        ProcessPointer const p = source.reference("P");
        ProcessPointer const a = leaf("a", {{}});
        source.define("P", low("Outer", {a, q}, row.forbidden_by_outer));
        source.define("Q",
                      leveled("Inner",
                              row.inner_is_high ? CompilationLevel::high : CompilationLevel::low,
                              {p, a}, row.forbidden_by_inner));
        TermGraph const graph = make_term_graph(high("Top", {p}, {0}), source);
        EXPECT_EQ(constructs_of(graph), row.constructs) << row.what;
        Names refused;
        for (RefusedRecursion const& each : graph.refused) {
            refused.push_back(static_cast<FakeConstruct const&>(*each.construct).name);
            refused.push_back(std::to_string(each.argument));
            for (auto const& name : each.names) {
                refused.push_back(name->name());
            }
        }
        EXPECT_EQ(refused, row.refused) << row.what;
    }
}

void follow_a_long_chain_of_names() {
    constexpr unsigned length = 100'000;
    NamedProcessSource source;
    for (unsigned i = 0; i < length; ++i) {
        source.define(std::to_string(i), source.reference(std::to_string(i + 1)));
    }
    source.define(std::to_string(length), high("H", {leaf("a", {{}})}));
    TermGraph graph = make_term_graph(source.reference("0"), source);
    EXPECT_EQ(graph.vertices.size(), length + 3);
    EXPECT_EQ(constructs_of(graph).size(), length + 2);
    Compilation const compilation = compile(std::move(graph), source);
    ASSERT_NE(compilation.machine, nullptr);
    EXPECT_EQ(compilation.machine->parts.size(), 2U);
}

TEST(MachineTermGraph, a_long_chain_of_names_needs_no_stack) {
    run_with_stack(std::size_t{1} << 20, follow_a_long_chain_of_names);
}

} // namespace
} // namespace Calder::StateSpace
