#include "core/hash_combine.h"
#include "csp/external_choice_process.h"
#include "tests/csp/construct_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

class ExternalChoiceTest : public ConstructTest {
  protected:
    ProcessPointer const p = prefix(a, stop);
    ProcessPointer const q = prefix(b, stop);
    ProcessPointer const hesitant = prefix(tau, q);
    ProcessPointer const done = prefix(tick, stop);
};

TEST_F(ExternalChoiceTest, is_decided_by_all_but_silent_steps) {
    ProcessPointer const term = choice({p, hesitant, done});
    Steps const seen = steps(*term);
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_EQ(seen[0], Step(a, stop));
    EXPECT_EQ(seen[1].first, tau);
    EXPECT_EQ(seen[2], Step(tick, stop));

    ProcessPointer const& open = seen[1].second;
    expect_equality(*open, *choice({p, q, done}), true);
    EXPECT_EQ(open->argument(0), p) << "the others are shared";
    EXPECT_EQ(open->argument(1), q);
    EXPECT_EQ(open->argument(2), done);
}

TEST_F(ExternalChoiceTest, of_nothing_does_nothing) {
    EXPECT_TRUE(steps(*stop).empty());
    EXPECT_EQ(text(*stop), "STOP");
    EXPECT_EQ(formats_text(*stop, {}), "0 runs:\n");
}

TEST_F(ExternalChoiceTest, stops_where_its_visitor_does) {
    ProcessPointer const term = choice({p, choice({hesitant, q}), p});
    for (std::size_t refused = 0; refused < 3; ++refused) {
        EXPECT_EQ(steps(*term, refused).size(), refused + 1);
    }
    EXPECT_THROW(term->visit_transitions(source, TransitionVisitor()), std::bad_function_call);
}

TEST_F(ExternalChoiceTest, is_compiled_with_a_format_for_each_argument) {
    EXPECT_EQ(formats_text(*choice({p, hesitant}), {{a, tick}, {tau, b}}),
              "0 runs 0 1: tick(0:tick)>1 a(0:a)>1 tau(1:tau)>0 b(1:b)>2\n"
              "1 runs 0: tick(0:tick)>1 a(0:a)>1\n"
              "2 runs 1: tau(1:tau)>2 b(1:b)>2\n");
}

TEST_F(ExternalChoiceTest, is_its_arguments_in_order) {
    ProcessPointer const term = choice({p, q});
    expect_clones(*term);
    expect_clones(*stop);
    struct {
        ProcessPointer other;
        bool equal;
    } const rows[] = {
        {choice({prefix(a, stop), prefix(b, stop)}), true},
        {choice({q, p}), false},
        {choice({p}), false},
        {choice({p, q, q}), false},
        {stop, false},
        {p, false},
    };
    for (auto const& row : rows) {
        expect_equality(*term, *row.other, row.equal);
    }
    EXPECT_NE(term->hash_code(), choice({q, p})->hash_code());
    EXPECT_EQ(stop->hash_code(), hash_combine(0x493, hash_combine(0xc1, 0)));
    EXPECT_EQ(ExternalChoiceProcess(2U).hash_code(),
              hash_combine(0x493, hash_combine(hash_combine(hash_combine(0xc1, 2), 0), 0)));
    EXPECT_EQ(choice({p})->hash_code(),
              hash_combine(0x493, hash_combine(hash_combine(0xc1, 1), p->hash_code())));
}

TEST_F(ExternalChoiceTest, keeps_its_arguments_for_ever) {
    ProcessPointer const kept = prefix(c, stop);
    choice({kept, kept}).reset();
    EXPECT_EQ(kept->reference_count(), 3U);
}

TEST_F(ExternalChoiceTest, prints) {
    struct {
        ProcessPointer term;
        char const* full;
    } const rows[] = {
        {choice({p, q}), "a -> (STOP) [] b -> (STOP)"},
        {choice({choice({p, q}), choice({q, p})}),
         "a -> (STOP) [] b -> (STOP) [] b -> (STOP) [] a -> (STOP)"},
        {choice({stop, source.reference("P")}), "STOP [] P"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
    }
    EXPECT_EQ(text(*rows[0].term, true), "a -> … [] b -> …");
    EXPECT_EQ(operator_text(*stop), " [] ");
    EXPECT_EQ(description(*stop), "External Choice");
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
