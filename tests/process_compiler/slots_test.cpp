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

/// The two slots of the destructor come first.
template <typename... Members> void expect_in_order(Members... members) {
    std::size_t slot = 2;
    for (std::size_t const found : {slot_of(members)...}) {
        EXPECT_EQ(found, slot++);
    }
}

/// Plug-ins that were built before call by place: a function that moves is called for another.
TEST(Slots, of_processes_follow_the_destructor_in_a_fixed_order) {
    expect_in_order(&Process::clone, &Process::needs_memoisation, &Process::visit_transitions,
                    &Process::visit_high_level_transitions, &Process::high_level_formats,
                    &Process::operator==, &Process::operator!=, &Process::hash_code, &Process::kind,
                    &Process::pretty_print, &Process::pretty_print_operator,
                    &Process::pretty_print_operator_description, &Process::pretty_print_information,
                    &Process::pretty_print_is_same_operator, &Process::recursion_type,
                    &Process::allows_recursion, &Process::process_state, &Process::discarded_by,
                    &Process::turned_on_by, &Process::preferred_compilation_level,
                    &Process::is_commutative, &Process::argument_count, &Process::argument,
                    &Process::set_arguments);
}

TEST(Slots, of_operators_follow_the_destructor_in_a_fixed_order) {
    expect_in_order(&Operator::operator==, &Operator::operator!=, &Operator::hash_code,
                    &Operator::operator_kind, &Operator::visit_transitions,
                    &Operator::visit_high_level_transitions, &Operator::high_level_formats,
                    &Operator::recursion_type, &Operator::allows_recursion,
                    &Operator::process_state, &Operator::discarded_by, &Operator::turned_on_by,
                    &Operator::preferred_compilation_level, &Operator::is_commutative,
                    &Operator::pretty_print, &Operator::pretty_print_description,
                    &Operator::pretty_print_operator_process, &Operator::pretty_print_information,
                    &Operator::pretty_print_is_same_operator);
}

} // namespace
} // namespace Calder::ProcessCompiler
