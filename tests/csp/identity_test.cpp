#include "core/hash_combine.h"
#include "tests/csp/terms.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

#include <utility>

namespace Calder::ProcessCompiler::CSP {
namespace {

std::vector<EventPointer> const b_and_a{new Event("b"), new Event("a")};
EventSet const given(b_and_a);

template <typename Operator> ProcessPointer given_to(Terms const& arguments) {
    return apply(new Operator(session(), given), arguments);
}

ProcessPointer from_session(char const* event, Term next) {
    ProcessPointer const term(new PrefixProcess(session(), EventPointer(new Event(event))));
    term->set_arguments(Terms{next});
    return term;
}

/// Terms that are equal stand in one row; those of different rows differ.
std::vector<std::vector<ProcessPointer>> different_terms() {
    ProcessPointer const p = prefix(a, P);
    return {
        {STOP, external({})},
        {SKIP, interleave({})},
        {P},
        {prefix(a, P), prefix(a, P), from_session("a", P)},
        {prefix(b, P), from_session("b", P)},
        {prefix(a, Q)},
        {prefix(a, prefix(a, P))},
        {prefix(8, P)}, // 8 is also the word of the set {a}
        {set_prefix({a}, P), set_prefix({a}, P)},
        {set_prefix({a, b}, P), set_prefix({b, a}, P)},
        {set_prefix({a}, Q)},
        {set_prefix({a + 64}, P)},
        {run({}), run({})},
        {chaos({}), chaos({})},
        {run({a, b}), new RunProcess(session(), given)},
        {chaos({a, b}), new ChaosProcess(session(), given)},
        {run({a})},
        {run({a + 64})},
        {run({a, 640})},
        {chaos({a})},
        {chaos({a + 64})},
        {external({P, Q}), external({P, Q})},
        {external({Q, P})},
        {external({P})},
        {external({P, Q, Q})},
        {internal({P, Q}), internal({P, Q})},
        {internal({Q, P})},
        {internal({P})},
        {internal({})},
        {interleave({P, Q}), interleave({P, Q})},
        {interleave({Q, P})},
        {interleave({p}), interleave({prefix(a, P)})},
        {sliding(p, Q), sliding(prefix(a, P), Q)},
        {sliding(Q, p)},
        {sliding(p, P)},
        {sequence(p, Q), sequence(prefix(a, P), Q)},
        {sequence(Q, p)},
        {sequence(p, P)},
        {interrupt(p, Q), interrupt(prefix(a, P), Q)},
        {interrupt(Q, p)},
        {interrupt(p, P)},

        {parallel({a}, {P, Q}), parallel({tick, a}, {P, Q})},
        {parallel({a}, {Q, P})},
        {parallel({b}, {P, Q})},
        {parallel({}, {P, Q})},
        {alphabetised({{a}, {b}}, {P, Q}), alphabetised({{a, tick}, {b}}, {P, Q})},
        {alphabetised({{b}, {a}}, {P, Q})},
        {alphabetised({{a}, {a}}, {P, Q})},
        {alphabetised({{a}, {b}, {c}}, {P, Q, P})},
        {linked({{a, b}}, P, Q), linked({{a, b}}, P, Q)},
        {linked({{b, a}}, P, Q)},
        {linked({{a, c}}, P, Q)},
        {linked({{a, b}, {b, c}}, P, Q)},
        {linked({{b, c}, {a, b}}, P, Q)},
        {linked({}, P, Q)},
        {hide(P, {a, b}), given_to<HideOperator>({P})},
        {hide(P, {a})},
        {hide(P, {a + 64})},
        {hide(Q, {a})},
        {project(P, {a, b}), given_to<ProjectOperator>({P})},
        {project(P, {a})},
        {rename(P, {})},
        {rename(P, {{a, b}}), rename(P, {{a, b}})},
        {rename(P, {{a, c}})},
        {rename(P, {{b, a}})},
        {rename(P, {{a, b}, {a, b}})},
        {exception({a, b}, P, Q), given_to<ExceptionOperator>({P, Q})},
        {exception({a}, P, Q)},
        {exception({a}, Q, P)},
        {sync_choice({a}, {P, Q}), sync_choice({a}, {P, Q})},
        {sync_choice({b}, {P, Q})},
        {sync_choice({a}, {P})},
        {sync_interrupt({a}, P, Q), sync_interrupt({a}, P, Q)},
        {sync_interrupt({b}, P, Q)},
        {sync_interrupt({a}, Q, P)},
    };
}

TEST(Identity, is_of_the_construct_its_parameters_and_its_arguments_in_order) {
    auto const rows = different_terms();
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t other = 0; other < rows.size(); ++other) {
            for (ProcessPointer const& left : rows[row]) {
                for (ProcessPointer const& right : rows[other]) {
                    EXPECT_EQ(*left == *right, row == other) << text(*left) << ", " << text(*right);
                    EXPECT_EQ(*left != *right, row != other) << text(*left) << ", " << text(*right);
                }
            }
        }
        for (ProcessPointer const& term : rows[row]) {
            EXPECT_EQ(term->hash_code(), rows[row][0]->hash_code()) << text(*term);
        }
    }
}

TEST(Identity, of_a_renaming_is_free_of_the_order_of_its_pairs_and_its_hash_is_not) {
    ProcessPointer const one = rename(P, {{a, b}, {b, c}});
    ProcessPointer const other = rename(P, {{b, c}, {a, b}});
    EXPECT_TRUE(*one == *other);
    EXPECT_FALSE(*one != *other);
    EXPECT_NE(one->hash_code(), other->hash_code());
}

std::uint64_t h(std::uint64_t running, std::uint64_t next) {
    return hash_combine(running, next);
}
std::uint64_t h(Term term) {
    return term->hash_code();
}

TEST(Identity, hash_codes) {
    BitSet const several_words{1, 64 + 2, 640}; // folded to 7
    struct {
        ProcessPointer term;
        std::uint64_t code;
    } const rows[] = {
        {prefix(b, P), h(h(0xc41, b), h(P))},
        {new PrefixProcess(session(), b_and_a[0]), h(h(0xc41, b), 0)},
        {set_prefix({}, P)->clone(false), h(0x9a52b77682efdea8, 0)},
        {set_prefix(several_words, P), h(h(0xc41, 7), h(P))},
        {set_prefix({a}, P), prefix(1U << a, P)->hash_code()},
        {STOP, h(0x493, h(0xc1, 0))},
        {external({P, Q}), h(0x493, h(h(h(0xc1, 2), h(P)), h(Q)))},
        {new ExternalChoiceProcess(2U), h(0x493, h(h(h(0xc1, 2), 0), 0))},
        {internal({P}), h(0x709, h(h(0xc1, 1), h(P)))},
        {new InternalChoiceProcess(1U), h(0x709, h(h(0xc1, 1), 0))},
        {interleave({P}), h(0x8e1, h(h(0xc1, 1), h(P)))},
        {new InterleaveProcess(1U), h(0x8e1, h(h(0xc1, 1), 0))},
        {sliding(P, Q), h(h(4127, h(P)), h(Q))},
        {sliding(P, Q)->clone(false), h(0xa38e0dc7fface1ba, 0)},
        {sequence(P, Q), h(h(3853, h(P)), h(Q))},
        {sequence(P, Q)->clone(false), h(0x808fbbe22b0b7092, 0)},
        {interrupt(P, Q), h(h(2029, h(P)), h(Q))},
        {interrupt(P, Q)->clone(false), h(0x9cca30ae48460fb0, 0)},
        {run({}), 0x923b6fb0d4800626},
        {run(several_words), h(0x1a4d, 7)},
        {run({a, a + 64}), 0x923b6fb0d4800626}, // the words cancel
        {chaos({}), 0x4a896d9d8516b63e},
        {chaos(several_words), h(0x183b, 7)},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.term->hash_code(), row.code);
    }
    struct {
        OperatorPointer op;
        std::uint64_t code;
    } const operators[] = {
        {new HideOperator(BitSet{}), 0x20fbeb41c16ab054},
        {new HideOperator(several_words), h(0x62b, 7)},
        {new ProjectOperator(BitSet{}), 0x8e1e9933707c8024},
        {new RenameOperator({}), h(0xe27, h(0xc1, 0))},
        {new RenameOperator({{a, b}, {c, a}}), h(0xe27, h(h(h(0xc1, 2), h(a, b)), h(c, a)))},
        {new ExceptionOperator(BitSet{}), 0x883c343423895bba},
        {new SynchronisingExternalChoiceOperator({}), 0xf8c565d0b27f205e},
        {new SynchronisingInterruptOperator({}), 0x9aedb00c753c143c},
        {new GeneralisedParallelOperator({}), 0x41bb87b258c2de50},
        {new AlphabetisedParallelOperator({}), h(0x36d, h(0xc1, 0))},
        {new AlphabetisedParallelOperator({{a}, several_words}),
         h(0x36d, h(h(h(0xc1, 2), (1U << a) | (1U << tick)), 3))}, // 7, and tick a second time
        {new LinkedParallelOperator({}), h(0xa75, h(h(0xc1, 1), h(2, 2)))},
        {new LinkedParallelOperator({{a, b}}), h(0xa75, h(h(h(0xc1, 2), h(a, b)), h(2, 2)))},
    };
    for (auto const& row : operators) {
        EXPECT_EQ(row.op->hash_code(), row.code);
        EXPECT_EQ(row.op->hash_code(), row.code) << "asked again";
    }
}

TEST(Identity, of_a_successor_whose_code_comes_with_it_is_that_of_the_same_term_built_anew) {
    struct {
        ProcessPointer term;
        std::size_t codes_that_come;
    } const rows[] = {
        {interleave({prefix(a, P), prefix(b, Q), prefix(c, P)}), 3},
        {external({prefix(tau, P), prefix(b, Q), prefix(tau, Q), prefix(tau, P)}), 3},
        {interleave({interleave({prefix(a, P), prefix(b, P)}), prefix(c, Q)}), 3},
    };
    for (auto const& row : rows) {
        P->hash_code();
        Q->hash_code();
        row.term->hash_code(); // so that its arguments keep theirs, too
        std::size_t came = 0;
        row.term->visit_transitions(source, [&](unsigned, ProcessPointer const& successor) {
            if (successor->argument_count() > 0 && successor->kept_hash() != 0) {
                ++came;
                EXPECT_EQ(successor->kept_hash(), successor->clone(true)->hash_code())
                    << text(*successor);
            }
            return true;
        });
        EXPECT_EQ(came, row.codes_that_come) << text(*row.term);
    }
}

TEST(Identity, asks_an_argument_even_if_it_is_the_same_object) {
    struct Odd : Testing::FakeProcess {
        using FakeProcess::FakeProcess;
        bool operator==(Process const&) const override { return false; }
        bool operator!=(Process const&) const override { return true; }
    };
    ProcessPointer const odd(new Odd("odd"));
    for (auto* const make : {sliding, sequence, interrupt}) {
        EXPECT_FALSE(*make(odd, Q) == *make(odd, Q));
        EXPECT_FALSE(*make(Q, odd) == *make(Q, odd));
        EXPECT_TRUE(*make(odd, Q) != *make(odd, Q));
        EXPECT_TRUE(*make(Q, odd) != *make(Q, odd));
    }
}

/// Writes down what it is asked, and then answers as any other.
struct Spy : Testing::FakeProcess {
    Spy(char const* text, std::string& questions) : FakeProcess(text), asked(questions) {}
    bool operator==(Process const& other) const override {
        asked += name + "== ";
        return FakeProcess::operator==(other);
    }
    bool operator!=(Process const& other) const override {
        asked += name + "!= ";
        return !FakeProcess::operator==(other);
    }
    ProcessPointer clone(bool deep) const override {
        asked += name + "' ";
        return FakeProcess::clone(deep);
    }
    std::string& asked;
};

TEST(Identity, asks_arguments_in_order_for_what_each_construct_promises) {
    std::string const difference = "internal choice, interleave";
    for (Construct const& construct : constructs) {
        SCOPED_TRACE(construct.name);
        std::string asked;
        ProcessPointer const first(new Spy("P", asked));
        ProcessPointer const second(new Spy("Q", asked));
        ProcessPointer const term = construct.of(first, second);
        auto const all = [&](std::string const& question) {
            return (construct.operands > 0 ? "P" + question : "") +
                   (construct.operands > 1 ? "Q" + question : "");
        };
        ProcessPointer const same = construct.of(new Spy("P", asked), new Spy("Q", asked));
        EXPECT_TRUE(*term == *same);
        bool const by_difference = difference.find(construct.name) != std::string::npos;
        EXPECT_EQ(std::exchange(asked, ""), all(by_difference ? "!= " : "== "));
        EXPECT_FALSE(*term != *same);
        EXPECT_EQ(std::exchange(asked, ""), all("!= "));
        term->clone(true);
        EXPECT_EQ(std::exchange(asked, ""), all("' "));
    }
}

/// New objects all the way down, and equal.
void expect_deep_clone(Process const& clone, Process const& of) {
    ASSERT_NE(&clone, &of);
    ASSERT_EQ(clone.kind(), of.kind());
    ASSERT_EQ(clone.argument_count(), of.argument_count());
    for (unsigned i = 0; i < of.argument_count(); ++i) {
        ASSERT_NE(clone.argument(i), nullptr) << "argument " << i << " of a shallow clone";
        ASSERT_NO_FATAL_FAILURE(expect_deep_clone(*clone.argument(i), *of.argument(i)));
    }
}

TEST(Clones, deep_ones_are_new_all_the_way_down_and_shallow_ones_wait_for_arguments) {
    for (Construct const& construct : constructs) {
        SCOPED_TRACE(construct.name);
        ProcessPointer const first = prefix(a, interrupt(prefix(b, P), prefix(c, P)));
        ProcessPointer const second = prefix(c, sliding(prefix(a, P), prefix(b, Q)));
        ProcessPointer const term = construct.of(first, second);
        ProcessPointer const deep = term->clone(true);
        ASSERT_NO_FATAL_FAILURE(expect_deep_clone(*deep, *term));
        EXPECT_TRUE(*deep == *term);
        EXPECT_EQ(deep->hash_code(), term->hash_code());

        ProcessPointer const shallow = term->clone(false);
        EXPECT_NE(shallow, term);
        EXPECT_EQ(shallow->kind(), term->kind());
        ASSERT_EQ(shallow->argument_count(), construct.operands);
        for (unsigned i = 0; i < construct.operands; ++i) {
            EXPECT_EQ(shallow->argument(i), nullptr);
        }
        EXPECT_EQ(shallow->hash_code(), term->clone(false)->hash_code());
    }
}

TEST(Clones, take_arguments_and_let_go_of_those_before) {
    for (Construct const& construct : constructs) {
        SCOPED_TRACE(construct.name);
        ProcessPointer const first = prefix(a, P);
        ProcessPointer const second = prefix(b, P);
        ProcessPointer const term = construct.of(P, Q)->clone(false);
        term->set_arguments(Terms{first, second});
        EXPECT_EQ(first->reference_count(), construct.operands > 0 ? 2U : 1U);
        EXPECT_EQ(second->reference_count(), construct.operands > 1 ? 2U : 1U);
        term->set_arguments(Terms{Q, P});
        EXPECT_EQ(first->reference_count(), 1U);
        EXPECT_EQ(second->reference_count(), 1U);
        EXPECT_TRUE(*term == *construct.of(Q, P));
        if (construct.operands > 0) {
            EXPECT_FALSE(*term == *construct.of(first, second));
        }
        term->set_arguments(Terms{Q, P}); // the same once more
        EXPECT_TRUE(*term == *construct.of(Q, P));
    }
}

TEST(Arguments, of_any_number_are_kept_for_ever_and_others_released) {
    for (Construct const& construct : constructs) {
        ProcessPointer const kept = prefix(a, P);
        std::string const name = construct.name;
        construct.of(kept, kept).reset();
        bool const is_nary =
            name == "external choice" || name == "internal choice" || name == "interleave";
        EXPECT_EQ(kept->reference_count(), is_nary ? 3U : 1U) << name;
    }
}

TEST(Arguments, are_given_for_any_index) {
    for (auto* const make : {sliding, sequence, interrupt}) {
        EXPECT_EQ(make(P, Q)->argument(0), P);
        EXPECT_EQ(make(P, Q)->argument(1), Q);
        EXPECT_EQ(make(P, Q)->argument(7), Q) << "any index but 0 is the second";
    }
    EXPECT_EQ(prefix(a, P)->argument(5), P);
    EXPECT_EQ(set_prefix({a}, P)->argument(5), P);
    Terms const both{P, Q};
    EXPECT_TRUE(*ProcessPointer(new ExternalChoiceProcess(both, 1, P)) == *external({P, P}));
    EXPECT_TRUE(*ProcessPointer(new InterleaveProcess(both, 0, Q)) == *interleave({Q, Q}));
}

TEST(SameOperator, is_the_same_construct_and_of_some_the_same_parameters) {
    for (Construct const& one : constructs) {
        for (Construct const& other : constructs) {
            EXPECT_EQ(one.of(P, Q)->pretty_print_is_same_operator(*other.of(Q, P)), &one == &other)
                << one.name << ", " << other.name;
        }
    }
    struct {
        ProcessPointer one;
        ProcessPointer other;
        bool same;
    } const rows[] = {
        {prefix(a, P), prefix(b, P), true},
        {set_prefix({a}, P), set_prefix({b}, P), true},
        {external({P, Q}), STOP, true},
        {run({a}), run({b}), true},
        {chaos({a}), chaos({b}), true},
        {alphabetised({{a}, {b}}, {P, Q}), alphabetised({}, {}), true},
        {linked({{a, b}}, P, Q), linked({}, P, Q), true},
        {exception({a}, P, Q), exception({b}, P, Q), true},
        {hide(P, {a}), hide(P, {b}), true},
        {project(P, {a}), project(P, {b}), true},
        {rename(P, {{a, b}}), rename(P, {}), true},
        {parallel({a}, {P, Q}), parallel({b}, {P, Q}), false},
        {sync_choice({a}, {P, Q}), sync_choice({b}, {P, Q}), false},
        {sync_interrupt({a}, P, Q), sync_interrupt({b}, P, Q), false},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.one->pretty_print_is_same_operator(*row.other), row.same) << text(*row.one);
        EXPECT_EQ(row.other->pretty_print_is_same_operator(*row.one), row.same) << text(*row.one);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
