#include "process_compiler/high_level_machine.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::HighLevelMachine {
namespace {

TEST(HighLevelMachine, a_participant_comes_from_a_literal_or_a_computed_index) {
    unsigned const computed = 3;
    EXPECT_EQ(ComponentEvent(std::pair(0, 7U)), ComponentEvent(std::pair(0U, 7U)));
    EXPECT_EQ(ComponentEvent(std::pair(computed, 7U)).component, 3U);
}

TEST(HighLevelMachine, an_identity_format_passes_its_alphabet_through) {
    std::deque<UnCompiledFormat> formats(2);
    formats[1].active_components = {9};
    append_rule(formats[1], 5, 0);
    make_identity_format(formats, 1, BitSet{8, 1, 2}, 4);

    EXPECT_EQ(formats[0], UnCompiledFormat());
    EXPECT_EQ(formats[1].active_components, std::vector<unsigned>{4});
    ASSERT_EQ(formats[1].rules.size(), 3U);
    unsigned const events[] = {1, 2, 8};
    for (std::size_t i = 0; i < 3; ++i) {
        UnCompiledRule const& rule = formats[1].rules[i];
        EXPECT_EQ(rule.event, events[i]);
        EXPECT_EQ(rule.target_format, 1U);
        EXPECT_EQ(rule.component_events, std::vector<ComponentEvent>{std::pair(4U, events[i])});
        EXPECT_TRUE(rule.extra_components.empty());
    }
    EXPECT_THROW(make_identity_format(formats, 2, BitSet{}, 0), std::out_of_range);
}

TEST(HighLevelMachine, a_stop_format_is_empty_and_may_be_appended) {
    std::deque<UnCompiledFormat> formats(2);
    make_identity_format(formats, 1, BitSet{1, 2}, 0);
    make_stop_format(formats, 1);
    EXPECT_EQ(formats[1], UnCompiledFormat());
    make_stop_format(formats, 2);
    EXPECT_EQ(formats.size(), 3U);
    EXPECT_THROW(make_stop_format(formats, 4), std::out_of_range);
}

TEST(HighLevelMachine, a_term_reports_no_high_level_transitions_and_wants_memory_by_default) {
    ProcessCompiler::ProcessPointer const term(new ProcessCompiler::Testing::FakeProcess("term"));
    term->visit_high_level_transitions({BitSet{3}}, [](std::vector<unsigned> const&, unsigned,
                                                       ProcessCompiler::ProcessPointer const&,
                                                       bool) { FAIL(); });
    EXPECT_TRUE(term->needs_memoisation());
}

} // namespace
} // namespace Calder::HighLevelMachine
