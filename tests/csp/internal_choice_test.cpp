#include "core/hash_combine.h"
#include "csp/internal_choice_process.h"
#include "tests/csp/construct_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

class InternalChoiceTest : public ConstructTest {
  protected:
    static ProcessPointer internal(std::initializer_list<ProcessPointer> of) {
        return new InternalChoiceProcess(OwningArray<ProcessPointer>(of));
    }

    ProcessPointer const p = prefix(a, stop);
    ProcessPointer const q = prefix(b, stop);
};

TEST_F(InternalChoiceTest, becomes_each_argument_itself_by_a_silent_step) {
    EXPECT_EQ(steps(*internal({p, q, p})), (Steps{{tau, p}, {tau, q}, {tau, p}}));
    EXPECT_EQ(steps(*internal({p, q, p}), 1), (Steps{{tau, p}, {tau, q}}));
    EXPECT_TRUE(steps(*internal({})).empty());
    EXPECT_EQ(high_level_text(*internal({p, q}), {{}, {}}),
              "[] tau to a -> (STOP)\n[] tau to b -> (STOP)\n");
    EXPECT_FALSE(internal({})->needs_memoisation());
    EXPECT_THROW(internal({p})->visit_transitions(source, {}), std::bad_function_call);
    EXPECT_THROW(internal({p})->visit_high_level_transitions({}, {}), std::bad_function_call);
}

TEST_F(InternalChoiceTest, is_compiled_with_a_format_for_each_argument) {
    EXPECT_EQ(formats_text(*internal({p, q}), {{a, tick}, {tau}}),
              "0 runs: tau()>1 tau()>2\n"
              "1 runs 0: tick(0:tick)>1 a(0:a)>1\n"
              "2 runs 1: tau(1:tau)>2\n");
    EXPECT_EQ(formats_text(*internal({}), {}), "0 runs:\n");
}

TEST_F(InternalChoiceTest, is_its_arguments_in_order) {
    ProcessPointer const term = internal({p, q});
    expect_clones(*term);
    struct {
        ProcessPointer other;
        bool equal;
    } const rows[] = {
        {internal({p, q}), true},  {internal({prefix(a, stop), prefix(b, stop)}), true},
        {internal({q, p}), false}, {internal({p}), false},
        {choice({p, q}), false},
    };
    for (auto const& row : rows) {
        expect_equality(*term, *row.other, row.equal);
    }
    EXPECT_NE(term->hash_code(), internal({q, p})->hash_code());
    EXPECT_EQ(internal({})->hash_code(), hash_combine(1801, hash_combine(193, 0)));
}

TEST_F(InternalChoiceTest, prints) {
    ProcessPointer const name = source.reference("P");
    struct {
        ProcessPointer term;
        char const* full;
    } const rows[] = {
        {internal({name, choice({name, name}), name}), "P |~| P [] P |~| P"},
        {internal({internal({name, name}), name}), "P |~| P |~| P"},
        {choice({internal({name, name}), name}), "(P |~| P) [] P"},
        {internal({}), "STOP"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
    }
    EXPECT_EQ(operator_text(*internal({})), " |~| ");
    EXPECT_EQ(description(*internal({})), "Internal Choice");
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
