#include "core/hash_combine.h"
#include "csp/interleave_process.h"
#include "csp/interrupt_process.h"
#include "csp/sequential_composition_process.h"
#include "csp/sliding_choice_process.h"
#include "tests/csp/construct_test.h"
#include "tests/support/fake_process.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

/// Sliding choice, sequential composition and interrupt: what they do with their two arguments, and
/// what they share.
class BinaryProcessesTest : public ConstructTest {
  protected:
    using Make = ProcessPointer (*)(ProcessPointer const&, ProcessPointer const&);

    static ProcessPointer sliding(ProcessPointer const& p, ProcessPointer const& q) {
        return new SlidingChoiceProcess(p, q);
    }
    static ProcessPointer sequence(ProcessPointer const& p, ProcessPointer const& q) {
        return new SequentialCompositionProcess(p, q);
    }
    static ProcessPointer interrupt(ProcessPointer const& p, ProcessPointer const& q) {
        return new InterruptProcess(p, q);
    }

    ProcessPointer const skip{new InterleaveProcess(0U)};
    ProcessPointer const p = source.reference("P");
    ProcessPointer const q = source.reference("Q");
    ProcessPointer const ticks_between =
        choice({prefix(a, p), prefix(tick, p), prefix(tau, p), prefix(b, p)});
};

TEST_F(BinaryProcessesTest, transitions) {
    struct {
        char const* rule;
        ProcessPointer term;
        char const* steps;
    } const rows[] = {
        {"the timeout comes first", sliding(prefix(a, p), q), "tau to Q\na to P\n"},
        {"the timeout stays after a silent step", sliding(prefix(tau, p), q),
         "tau to Q\ntau to P [> Q\n"},
        {"tick decides", sliding(skip, q), "tau to Q\ntick to STOP\n"},
        {"nothing offered", sliding(stop, q), "tau to Q\n"},

        {"tick becomes a silent step to the second", sequence(skip, q), "tau to Q\n"},
        {"all else goes on, in the order of the first", sequence(ticks_between, q),
         "a to P ; Q\ntau to Q\n"
         "tau to (a -> P [] tick -> P [] P [] b -> P) ; Q\nb to P ; Q\n"},
        {"nothing to do", sequence(stop, q), ""},

        {"the first, then the second", interrupt(prefix(a, p), prefix(b, q)),
         "a to P /\\ b -> Q\nb to Q\n"},
        {"a silent step of the second decides nothing", interrupt(prefix(tau, p), prefix(tau, q)),
         "tau to P /\\ tau -> Q\ntau to tau -> P /\\ Q\n"},
        {"tick of the first ends the whole", interrupt(prefix(tick, p), prefix(b, q)),
         "tick to STOP\nb to Q\n"},
        {"tick of the second is its own", interrupt(stop, prefix(tick, q)), "tick to Q\n"},
        {"nothing on either side", interrupt(stop, stop), ""},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(steps_text(*row.term), row.steps) << row.rule;
    }
}

TEST_F(BinaryProcessesTest, successors_that_are_arguments_are_passed_on_themselves) {
    EXPECT_EQ(steps(*sequence(skip, q))[0].second, q);
    EXPECT_EQ(steps(*sliding(prefix(a, p), q)), (Steps{{tau, q}, {a, p}}));
    EXPECT_EQ(steps(*interrupt(stop, prefix(b, q)))[0].second, q);
    EXPECT_EQ(steps(*interrupt(prefix(tick, p), stop))[0].second,
              steps(*interrupt(prefix(tick, q), stop))[0].second)
        << "one STOP for the whole file";
}

TEST_F(BinaryProcessesTest, stop_where_their_visitor_does) {
    for (ProcessPointer const& term :
         {sliding(ticks_between, q), sequence(ticks_between, q), interrupt(ticks_between, skip)}) {
        for (std::size_t refused = 0; refused < 4; ++refused) {
            EXPECT_EQ(steps(*term, refused).size(), refused + 1) << text(*term);
        }
        EXPECT_THROW(term->visit_transitions(source, {}), std::bad_function_call);
    }
}

TEST_F(BinaryProcessesTest, high_level_transitions) {
    std::vector<BitSet> const alphabets = {{tau, tick, a}, {b}};
    EXPECT_EQ(high_level_text(*sequence(p, q), alphabets),
              "[tau] tau to P ; Q, moved\n[tick] tau to Q\n[a] a to P ; Q, moved\n");
    EXPECT_EQ(high_level_text(*sliding(p, q), alphabets), "");
    EXPECT_EQ(high_level_text(*interrupt(p, q), alphabets), "");
}

TEST_F(BinaryProcessesTest, formats) {
    struct {
        ProcessPointer term;
        std::vector<BitSet> alphabets;
        char const* formats;
    } const rows[] = {
        {sliding(p, q),
         {{tau, a}, {b}},
         "0 runs 0: tau(0:tau)>0 a(0:a)>1 tau()>2\n"
         "1 runs 0: tau(0:tau)>1 a(0:a)>1\n"
         "2 runs 1: b(1:b)>2\n"},
        {sliding(p, q), {{}, {}}, "0 runs 0: tau()>2\n1 runs 0:\n2 runs 1:\n"},
        {sequence(p, q),
         {{a, tick}, {b}},
         "0 runs 0: tau(0:tick)>1 a(0:a)>0\n1 runs 1: b(1:b)>1\n"},
        {interrupt(p, q),
         {{a, tick}, {tau, b}},
         "0 runs 0 1: tick(0:tick)>2 a(0:a)>0 tau(1:tau)>0 b(1:b)>1\n"
         "1 runs 1: tau(1:tau)>1 b(1:b)>1\n"
         "2 runs:\n"},
        {interrupt(p, q), {{a}, {}}, "0 runs 0 1: a(0:a)>0\n1 runs 1:\n2 runs:\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(formats_text(*row.term, row.alphabets), row.formats);
    }
}

TEST_F(BinaryProcessesTest, identity) {
    struct {
        Make make;
        Make other;
        std::uint64_t seed;
        std::uint64_t seed_alone;
    } const rows[] = {
        {sliding, sequence, 4127, 0xa38e0dc7fface1ba},
        {sequence, interrupt, 3853, 0x808fbbe22b0b7092},
        {interrupt, sliding, 2029, 0x9cca30ae48460fb0},
    };
    for (auto const& row : rows) {
        ProcessPointer const term = row.make(prefix(a, p), q);
        expect_clones(*term);
        expect_equality(*term, *row.make(prefix(a, p), q), true);
        expect_equality(*term, *row.make(prefix(b, p), q), false);
        expect_equality(*term, *row.make(prefix(a, p), p), false);
        expect_equality(*term, *row.make(q, prefix(a, p)), false);
        expect_equality(*term, *row.other(prefix(a, p), q), false);
        EXPECT_EQ(term->hash_code(),
                  hash_combine(hash_combine(row.seed, prefix(a, p)->hash_code()), q->hash_code()));
        EXPECT_EQ(term->clone(false)->hash_code(), hash_combine(row.seed_alone, 0));
        EXPECT_EQ(term->argument(7), q) << "any index but 0 is the second";
    }
}

TEST_F(BinaryProcessesTest, an_equal_argument_is_asked_even_if_it_is_the_same_object) {
    struct Odd : Testing::FakeProcess {
        using FakeProcess::FakeProcess;
        bool operator==(Process const&) const override { return false; }
        bool operator!=(Process const&) const override { return true; }
    };
    ProcessPointer const odd(new Odd("odd"));
    for (Make const make : {sliding, sequence, interrupt}) {
        EXPECT_FALSE(*make(odd, q) == *make(odd, q));
        EXPECT_TRUE(*make(q, odd) != *make(q, odd));
    }
}

TEST_F(BinaryProcessesTest, printing) {
    struct {
        ProcessPointer term;
        char const* full;
    } const rows[] = {
        {sliding(sliding(p, q), p), "P [> Q [> P"},
        {sliding(p, sliding(q, p)), "P [> (Q [> P)"},
        {sliding(sequence(p, q), interrupt(p, q)), "P ; Q [> (P /\\ Q)"},
        {sequence(p, sequence(q, p)), "P ; Q ; P"},
        {sequence(sequence(p, q), p), "(P ; Q) ; P"},
        {sequence(prefix(a, p), sliding(p, q)), "a -> P ; (P [> Q)"},
        {interrupt(interrupt(p, q), p), "P /\\ Q /\\ P"},
        {interrupt(p, interrupt(q, p)), "P /\\ (Q /\\ P)"},
        {interrupt(sliding(p, q), choice({p, q})), "P [> Q /\\ (P [] Q)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
    }
    struct {
        ProcessPointer term;
        char const* symbol;
        char const* description;
    } const words[] = {
        {sliding(p, q), " [> ", "Sliding Choice"},
        {sequence(p, q), " ; ", "Sequential Composition"},
        {interrupt(p, q), " /\\ ", "Interrupt"},
    };
    for (auto const& row : words) {
        EXPECT_EQ(operator_text(*row.term), row.symbol);
        EXPECT_EQ(description(*row.term), row.description);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
