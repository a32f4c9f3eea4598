#include "core/hash_combine.h"
#include "csp/prefix_process.h"
#include "tests/csp/construct_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

class PrefixTest : public ConstructTest {};

TEST_F(PrefixTest, performs_its_event_and_becomes_its_continuation_itself) {
    ProcessPointer const next = prefix(b, stop);
    ProcessPointer const term = prefix(a, next);
    EXPECT_EQ(steps(*term), (Steps{{a, next}}));
    EXPECT_EQ(steps(*term, 0), (Steps{{a, next}}));
    EXPECT_EQ(high_level_text(*term, {{}}), "[] a to b -> (STOP)\n");
    EXPECT_FALSE(term->needs_memoisation());
}

TEST_F(PrefixTest, is_compiled_to_its_event_and_the_continuation_alone) {
    struct {
        BitSet alphabet;
        char const* formats;
    } const rows[] = {
        {{}, "0 runs: a()>1\n1 runs 0:\n"},
        {{tau, tick, b}, "0 runs: a()>1\n1 runs 0: tau(0:tau)>1 tick(0:tick)>1 b(0:b)>1\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(formats_text(*prefix(a, stop), {row.alphabet}), row.formats);
    }
}

TEST_F(PrefixTest, built_from_a_session_waits_for_its_continuation) {
    EventPointer const event(new Event("b"));
    ProcessPointer const term(new PrefixProcess(session, event));
    EXPECT_EQ(term->argument(0), nullptr);
    EXPECT_EQ(term->hash_code(), hash_combine(hash_combine(0xc41, b), 0));

    ProcessPointer const complete(new PrefixProcess(session, event));
    std::uintptr_t const before = stop->reference_count();
    complete->set_arguments(OwningArray<ProcessPointer>{stop});
    EXPECT_EQ(stop->reference_count(), before + 1);
    expect_equality(*complete, *prefix(b, stop), true);
    EXPECT_EQ(complete->argument(5), stop) << "whatever the index";
}

TEST_F(PrefixTest, is_its_event_and_its_continuation) {
    ProcessPointer const term = prefix(a, prefix(b, stop));
    EXPECT_EQ(term->hash_code(),
              hash_combine(hash_combine(0xc41, a), prefix(b, stop)->hash_code()));
    expect_clones(*term);
    struct {
        ProcessPointer other;
        bool equal;
    } const rows[] = {
        {prefix(a, prefix(b, stop)), true},
        {prefix(b, prefix(b, stop)), false},
        {prefix(a, prefix(c, stop)), false},
        {prefix(a, stop), false},
        {choice({term}), false},
    };
    for (auto const& row : rows) {
        expect_equality(*term, *row.other, row.equal);
    }
    EXPECT_FALSE(*term->clone(false) == *stop) << "another kind is told without the arguments";
}

TEST_F(PrefixTest, prints) {
    ProcessPointer const name = source.reference("P");
    struct {
        ProcessPointer term;
        char const* full;
        char const* abbreviated;
    } const rows[] = {
        {prefix(a, prefix(b, name)), "a -> b -> P", "a -> …"},
        {prefix(a, choice({prefix(b, name), name})), "a -> (b -> P [] P)", "a -> …"},
        {prefix(tau, stop), "tau -> (STOP)", "tau -> …"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
        EXPECT_EQ(text(*row.term, true), row.abbreviated);
    }
    EXPECT_EQ(operator_text(*rows[0].term), "->");
    EXPECT_EQ(description(*rows[0].term), "Prefix a");
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
