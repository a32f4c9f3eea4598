#include "core/hash_combine.h"
#include "csp/event_set_prefix_process.h"
#include "tests/csp/construct_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

class EventSetPrefixTest : public ConstructTest {
  protected:
    static ProcessPointer set_prefix(BitSet const& events, ProcessPointer const& next) {
        return new EventSetPrefixProcess(events, next);
    }
};

TEST_F(EventSetPrefixTest, performs_any_event_of_its_set_in_ascending_order) {
    ProcessPointer const term = set_prefix({c, a, tick}, stop);
    EXPECT_EQ(steps(*term), (Steps{{tick, stop}, {a, stop}, {c, stop}}));
    EXPECT_EQ(steps(*term, 1).size(), 2U);
    EXPECT_TRUE(steps(*set_prefix({}, stop)).empty());
    EXPECT_EQ(high_level_text(*set_prefix({b, a}, stop), {{}}), "[] a to STOP\n[] b to STOP\n");
    EXPECT_FALSE(term->needs_memoisation());
}

TEST_F(EventSetPrefixTest, is_compiled_to_its_events_and_the_continuation_alone) {
    EXPECT_EQ(formats_text(*set_prefix({b, a}, stop), {{tau, c}}),
              "0 runs: a()>1 b()>1\n1 runs 0: tau(0:tau)>1 c(0:c)>1\n");
    EXPECT_EQ(formats_text(*set_prefix({}, stop), {{}}), "0 runs:\n1 runs 0:\n");
}

TEST_F(EventSetPrefixTest, is_its_set_and_its_continuation) {
    ProcessPointer const term = set_prefix({a, b}, prefix(c, stop));
    expect_clones(*term);
    EXPECT_EQ(term->argument(3), term->argument(0)) << "whatever the index";
    struct {
        ProcessPointer other;
        bool equal;
    } const rows[] = {
        {set_prefix({b, a}, prefix(c, stop)), true},
        {set_prefix({a}, prefix(c, stop)), false},
        {set_prefix({a, b}, stop), false},
        {prefix(a, prefix(c, stop)), false},
    };
    for (auto const& row : rows) {
        expect_equality(*term, *row.other, row.equal);
    }
    EXPECT_EQ(set_prefix({}, stop)->clone(false)->hash_code(), hash_combine(0x9a52b77682efdea8, 0));
    // The set {a} folds to 2^a: only the kind tells this prefix from one on that event.
    EXPECT_EQ(set_prefix({a}, stop)->hash_code(), prefix(1U << a, stop)->hash_code());
    expect_equality(*set_prefix({a}, stop), *prefix(1U << a, stop), false);
}

TEST_F(EventSetPrefixTest, prints) {
    ProcessPointer const name = source.reference("P");
    struct {
        ProcessPointer term;
        char const* full;
    } const rows[] = {
        {set_prefix({a, b}, name), "{{a, b}} -> P"},
        {set_prefix({}, set_prefix({a}, name)), "{{}} -> {{a}} -> P"},
        {set_prefix({a}, prefix(b, name)), "{{a}} -> (b -> P)"},
        {prefix(a, set_prefix({b}, name)), "a -> ({{b}} -> P)"},
        {set_prefix({a}, choice({name, name})), "{{a}} -> (P [] P)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
    }
    EXPECT_EQ(text(*rows[0].term, true), "{…} -> …");
    EXPECT_EQ(operator_text(*rows[0].term), "->");
    EXPECT_EQ(description(*rows[0].term), "Prefix event set:\n    {a, b}");
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
