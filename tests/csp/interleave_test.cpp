#include "core/hash_combine.h"
#include "csp/interleave_process.h"
#include "tests/csp/construct_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

class InterleaveTest : public ConstructTest {
  protected:
    static ProcessPointer interleave(std::initializer_list<ProcessPointer> of) {
        return new InterleaveProcess(OwningArray<ProcessPointer>(of));
    }

    ProcessPointer const skip = interleave({});
    ProcessPointer const p = prefix(a, stop);
    ProcessPointer const done_twice = choice({prefix(tick, stop), prefix(tick, p), p});
};

TEST_F(InterleaveTest, moves_one_argument_and_terminates_with_all) {
    struct {
        ProcessPointer term;
        char const* steps;
    } const rows[] = {
        {interleave({p, prefix(b, skip)}),
         "a to STOP ||| b -> (SKIP)\nb to a -> (STOP) ||| SKIP\n"},
        {interleave({prefix(tau, p), p}),
         "tau to a -> (STOP) ||| a -> (STOP)\na to tau -> a -> (STOP) ||| STOP\n"},
        {interleave({skip, p}), "a to SKIP ||| STOP\n"},
        {interleave({skip, skip}), "tick to STOP\n"},
        {interleave({done_twice, skip}), "a to STOP ||| SKIP\ntick to STOP\n"},
        {interleave({done_twice, p}),
         "a to STOP ||| a -> (STOP)\n"
         "a to tick -> (STOP) [] tick -> a -> (STOP) [] a -> (STOP) ||| STOP\n"},
        {skip, "tick to STOP\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(steps_text(*row.term), row.steps);
    }
    EXPECT_EQ(steps(*skip)[0].second, steps(*interleave({skip}))[0].second) << "one shared STOP";
}

TEST_F(InterleaveTest, shares_the_arguments_that_stay) {
    ProcessPointer const successor = steps(*interleave({skip, p, skip}))[0].second;
    EXPECT_EQ(successor->argument(0), skip);
    EXPECT_EQ(successor->argument(1), stop);
    EXPECT_EQ(successor->argument(2), skip);
}

TEST_F(InterleaveTest, stops_where_its_visitor_does) {
    ProcessPointer const term =
        interleave({choice({prefix(tick, stop), p}), choice({p, prefix(tick, stop)})});
    for (std::size_t refused = 0; refused < 3; ++refused) {
        EXPECT_EQ(steps(*term, refused).size(), refused + 1);
    }
    EXPECT_THROW(skip->visit_transitions(source, {}), std::bad_function_call);
}

TEST_F(InterleaveTest, is_compiled_to_one_format) {
    ProcessPointer const term = interleave({p, p});
    struct {
        std::vector<BitSet> alphabets;
        char const* formats;
    } const rows[] = {
        {{{a, tick}, {tau, tick}}, "0 runs 0 1: a(0:a)>0 tau(1:tau)>0 tick(0:tick 1:tick)>0\n"},
        {{{a, tick}, {a}}, "0 runs 0 1: a(0:a)>0 a(1:a)>0\n"},
        {{{a}, {tick}, {tick}}, "0 runs 0 1: a(0:a)>0\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(formats_text(*term, row.alphabets), row.formats);
    }
    EXPECT_EQ(formats_text(*skip, {}), "0 runs: tick()>0\n");
}

TEST_F(InterleaveTest, is_its_arguments_in_order) {
    ProcessPointer const term = interleave({p, skip});
    expect_clones(*term);
    struct {
        ProcessPointer other;
        bool equal;
    } const rows[] = {
        {interleave({prefix(a, stop), interleave({})}), true},
        {interleave({skip, p}), false},
        {interleave({p}), false},
        {choice({p, skip}), false},
    };
    for (auto const& row : rows) {
        expect_equality(*term, *row.other, row.equal);
    }
    EXPECT_EQ(skip->hash_code(), hash_combine(0x8e1, hash_combine(0xc1, 0)));
    EXPECT_NE(term->hash_code(), interleave({skip, p})->hash_code());
}

TEST_F(InterleaveTest, prints) {
    ProcessPointer const name = source.reference("P");
    struct {
        ProcessPointer term;
        char const* full;
    } const rows[] = {
        {interleave({name, prefix(a, name), name}), "P ||| a -> P ||| P"},
        {interleave({name, interleave({name, name})}), "P ||| P ||| P"},
        {interleave({skip, choice({name, name})}), "SKIP ||| P [] P"},
        {choice({interleave({name, name}), name}), "(P ||| P) [] P"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
    }
    EXPECT_EQ(operator_text(*skip), " ||| ");
    EXPECT_EQ(description(*skip), "Interleave");
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
