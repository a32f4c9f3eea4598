#include "process_compiler/named_process_source.h"
#include "state_space/component_memory.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>

namespace Calder::StateSpace {
namespace {

using namespace Testing;

/// 0 leads to 1 and 2, which both lead to 3, and 3 to nothing.
Graph const diamond{{{{3, 1}, {4, 2}}, {{3, 3}}, {{3, 3}}, {}}};

Graph wide() {
    Graph graph{{{}}};
    for (unsigned node = 0; node < 40'000; ++node) {
        graph.rows[0].emplace_back(3, node);
    }
    return graph;
}

/// Goes on when it is refused, as a joint tick does.
class Insistent : public ProcessCompiler::Testing::FakeProcess {
  public:
    Insistent() : FakeProcess("insistent") {
        transitions.assign(40'000, {3, ProcessPointer(new FakeProcess("next"))});
    }
    bool visit_transitions(NamedProcessSource const&,
                           TransitionVisitor const& visitor) const override {
        for (auto const& [event, successor] : transitions) {
            visitor(event, successor);
        }
        return true;
    }
};

class ComponentMemoryTest : public testing::Test {
  protected:
    /// Each time a term of its own, which only equality tells to be the same.
    auto find(Graph const& graph, unsigned node, char const* label = "") {
        return memory.find(new NodeTerm(graph, node, label), source);
    }

    NamedProcessSource const source;
    StateTable states;
    ComponentMemory memory{states};
};

TEST_F(ComponentMemoryTest, keeps_what_is_asked_for_again) {
    EXPECT_FALSE(find(diamond, 0));
    EXPECT_EQ(memory.size(), 0U);
    auto const steps = find(diamond, 0);
    ASSERT_TRUE(steps);
    ASSERT_EQ(steps->size(), 2U);
    EXPECT_EQ((*steps)[0].first, 3U);
    EXPECT_EQ((*steps)[1].first, 4U);
    EXPECT_EQ(memory.size(), 1U);
    auto const again = find(diamond, 0);
    EXPECT_EQ(again->data(), steps->data());
}

TEST_F(ComponentMemoryTest, equal_successors_become_one_term) {
    for (unsigned const node : {1U, 1U, 2U, 2U}) {
        find(diamond, node);
    }
    ProcessPointer const left = find(diamond, 1)->front().second;
    EXPECT_EQ(left, find(diamond, 2)->front().second);
    // Nothing is still an answer.
    EXPECT_FALSE(find(diamond, 3));
    auto const none = find(diamond, 3);
    ASSERT_TRUE(none);
    EXPECT_TRUE(none->empty());
}

TEST_F(ComponentMemoryTest, takes_no_more_than_its_share) {
    Graph const graph = wide();
    for (unsigned time = 0; time < 3; ++time) {
        EXPECT_FALSE(find(graph, 0, "wide ")) << "too wide for an exploration without states";
    }
    ProcessPointer const insistent(new Insistent());
    for (unsigned time = 0; time < 3; ++time) {
        EXPECT_FALSE(memory.find(insistent, source)) << "only a part was remembered";
    }
    // Small ones still fit, as long as there is room.
    EXPECT_FALSE(find(diamond, 0));
    EXPECT_TRUE(find(diamond, 0));
    Graph many;
    for (unsigned node = 0; node < 2'000; ++node) {
        many.rows.push_back({{3, node}});
    }
    for (unsigned node = 0; node < 2'000; ++node) {
        find(many, node, "one of many ");
        find(many, node, "one of many ");
    }
    EXPECT_GT(memory.size(), 100U);
    EXPECT_LT(memory.size(), 500U);
    std::size_t const before = memory.size();
    for (unsigned node = 0; node < 5'000; ++node) {
        states.find_or_add(new NodeTerm(diamond, node, "state "));
    }
    for (unsigned node = 0; node < 2'000; ++node) {
        find(many, node, "one of many ");
        find(many, node, "one of many ");
    }
    EXPECT_GT(memory.size(), before + 400) << "more states, more room";
}

TEST_F(ComponentMemoryTest, what_never_comes_again_takes_no_more_and_more) {
    for (unsigned node = 0; node < 300'000; ++node) {
        find(diamond, node, "met once ");
    }
    EXPECT_EQ(memory.size(), 0U);
    EXPECT_LT(memory.growth_bytes(1), 64U << 10);
}

TEST_F(ComponentMemoryTest, goes_on_after_memory_ran_out) {
    Graph graph = diamond;
    graph.node_without_memory = 0;
    EXPECT_FALSE(find(graph, 0));
    EXPECT_THROW(find(graph, 0), std::bad_alloc);
    graph.node_without_memory = no_state;
    EXPECT_EQ(find(graph, 0)->size(), 2U);
}

} // namespace
} // namespace Calder::StateSpace
