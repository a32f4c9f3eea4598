#include "process_compiler/high_level_machine.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::HighLevelMachine {
namespace {

TEST(HighLevelMachine, a_standard_format_replaces_what_stood_there_and_a_stop_may_be_appended) {
    std::deque<UnCompiledFormat> formats(2);
    formats[1].active_components = {9};
    append_rule(formats[1], 5, 0);
    make_identity_format(formats, 1, BitSet{8, 1}, 4);
    EXPECT_EQ(formats[1].active_components, std::vector<unsigned>{4});
    EXPECT_EQ(formats[1].rules, (std::deque<UnCompiledRule>{{1, 1, {std::pair(4U, 1U)}, {}},
                                                            {8, 1, {std::pair(4U, 8U)}, {}}}));
    make_stop_format(formats, 1);
    EXPECT_EQ(formats[1], UnCompiledFormat());
    make_stop_format(formats, 2);
    EXPECT_EQ(formats.size(), 3U);
    EXPECT_THROW(make_stop_format(formats, 4), std::out_of_range);
    EXPECT_THROW(make_identity_format(formats, 3, BitSet{}, 0), std::out_of_range);
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
