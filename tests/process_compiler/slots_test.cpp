#include "process_compiler/operator.h"
#include "process_compiler/process.h"

#include <gtest/gtest.h>

#include <cstring>

namespace Calder::ProcessCompiler {
namespace {

/// Where a virtual function stands in the table of its class: the Itanium C++ ABI, section 2.3,
/// keeps its offset in the pointer, plus one.
template <typename Member> std::size_t slot_of(Member member) {
    std::size_t words[2];
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(words, &member, sizeof(words));
    return (words[0] - 1) / sizeof(void*);
}

/// Plug-ins that were built before call by place: a function that moves is called for another.
TEST(Slots, of_processes_follow_the_destructor_in_a_fixed_order) {
    std::size_t const slots[] = {slot_of(&Process::clone),
                                 slot_of(&Process::needs_memoisation),
                                 slot_of(&Process::visit_transitions),
                                 slot_of(&Process::visit_high_level_transitions),
                                 slot_of(&Process::high_level_formats),
                                 slot_of(&Process::operator==),
                                 slot_of(&Process::operator!=),
                                 slot_of(&Process::hash_code),
                                 slot_of(&Process::kind),
                                 slot_of(&Process::pretty_print),
                                 slot_of(&Process::pretty_print_operator),
                                 slot_of(&Process::pretty_print_operator_description),
                                 slot_of(&Process::pretty_print_information),
                                 slot_of(&Process::pretty_print_is_same_operator),
                                 slot_of(&Process::recursion_type),
                                 slot_of(&Process::allows_recursion),
                                 slot_of(&Process::process_state),
                                 slot_of(&Process::discarded_by),
                                 slot_of(&Process::turned_on_by),
                                 slot_of(&Process::preferred_compilation_level),
                                 slot_of(&Process::is_commutative),
                                 slot_of(&Process::argument_count),
                                 slot_of(&Process::argument),
                                 slot_of(&Process::set_arguments)};
    for (std::size_t i = 0; i < std::size(slots); ++i) {
        EXPECT_EQ(slots[i], i + 2);
    }
}

TEST(Slots, of_operators_follow_the_destructor_in_a_fixed_order) {
    std::size_t const slots[] = {slot_of(&Operator::operator==),
                                 slot_of(&Operator::operator!=),
                                 slot_of(&Operator::hash_code),
                                 slot_of(&Operator::operator_kind),
                                 slot_of(&Operator::visit_transitions),
                                 slot_of(&Operator::visit_high_level_transitions),
                                 slot_of(&Operator::high_level_formats),
                                 slot_of(&Operator::recursion_type),
                                 slot_of(&Operator::allows_recursion),
                                 slot_of(&Operator::process_state),
                                 slot_of(&Operator::discarded_by),
                                 slot_of(&Operator::turned_on_by),
                                 slot_of(&Operator::preferred_compilation_level),
                                 slot_of(&Operator::is_commutative),
                                 slot_of(&Operator::pretty_print),
                                 slot_of(&Operator::pretty_print_description),
                                 slot_of(&Operator::pretty_print_operator_process),
                                 slot_of(&Operator::pretty_print_information),
                                 slot_of(&Operator::pretty_print_is_same_operator)};
    for (std::size_t i = 0; i < std::size(slots); ++i) {
        EXPECT_EQ(slots[i], i + 2);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler
