#include "csp/alphabetised_parallel_operator.h"
#include "csp/chaos_process.h"
#include "csp/event_set_prefix_process.h"
#include "csp/exception_operator.h"
#include "csp/generalised_parallel_operator.h"
#include "csp/hide_operator.h"
#include "csp/interleave_process.h"
#include "csp/internal_choice_process.h"
#include "csp/interrupt_process.h"
#include "csp/linked_parallel_operator.h"
#include "csp/project_operator.h"
#include "csp/rename_operator.h"
#include "csp/run_process.h"
#include "csp/sequential_composition_process.h"
#include "csp/sliding_choice_process.h"
#include "csp/synchronising_external_choice_operator.h"
#include "csp/synchronising_interrupt_operator.h"
#include "tests/csp/construct_test.h"

#include <algorithm>
#include <functional>
#include <optional>

namespace Calder::ProcessCompiler::CSP {
namespace {

/// An answer by argument index, or that the question ends the program.
template <typename Answer> using ByIndex = std::optional<std::function<Answer(unsigned)>>;

constexpr std::nullopt_t aborts = std::nullopt;

template <typename Answer> std::function<Answer(unsigned)> always(Answer answer) {
    return [answer](unsigned) { return answer; };
}

/// The constant answers of one class, in the order of the contract.
struct Shape {
    char const* name;
    ProcessPointer term;
    unsigned kind;
    unsigned recursion_type;
    ByIndex<bool> allows_recursion;
    ByIndex<unsigned> process_state;
    ByIndex<bool> discarded_by;
    ByIndex<unsigned> turned_on_by;
    std::function<unsigned(bool)> preferred_level;
    std::optional<bool> is_commutative;
    unsigned argument_count;
    std::pair<unsigned, unsigned> print_information;
};

class ShapeTest : public ConstructTest {
  protected:
    static unsigned as_wished(bool wish) { return wish ? 1 : 0; }
    static unsigned low(bool) { return 0; }
    static unsigned high(bool) { return 1; }
    static constexpr auto first = [](unsigned index) { return index == 0 ? 1U : 0U; };
    static constexpr auto second = [](unsigned index) { return index == 1; };
    static constexpr auto all_but_first = [](unsigned index) { return index != 0; };

    // clang-format off
    std::vector<Shape> shapes() const {
        BitSet const set{a};
        OwningArray<ProcessPointer> const two{stop, stop};
        auto const yes = always(true), no = always(false);
        auto const zero = always(0U), one = always(1U), silent = always(2U);
        return {
            {"prefix", prefix(a, stop), 14, 2, yes, zero, aborts, one, low, false, 1, {2, 1}},
            {"event-set prefix", new EventSetPrefixProcess(set, stop),
                19, 2, yes, zero, aborts, one, low, aborts, 1, {2, 1}},
            {"external choice", choice({stop, stop}),
                10, 1, yes, one, yes, aborts, as_wished, true, 2, {6, 0}},
            {"internal choice", new InternalChoiceProcess(two),
                11, 2, yes, zero, aborts, silent, as_wished, true, 2, {7, 0}},
            {"interrupt", new InterruptProcess(stop, stop),
                12, 1, second, one, all_but_first, aborts, high, false, 2, {5, 0}},
            {"interleave", new InterleaveProcess(two),
                13, 3, no, one, no, aborts, high, true, 2, {9, 0}},
            {"sequential composition", new SequentialCompositionProcess(stop, stop),
                15, 3, second, first, no, silent, as_wished, false, 2, {3, 1}},
            {"sliding choice", new SlidingChoiceProcess(stop, stop),
                16, 1, yes, first, yes, silent, as_wished, false, 2, {4, 0}},
            {"chaos", new ChaosProcess(set),
                17, 2, aborts, aborts, aborts, aborts, low, aborts, 0, {0, 2}},
            {"run", new RunProcess(set),
                18, 2, aborts, aborts, aborts, aborts, low, false, 0, {0, 2}},
        };
    }
    // clang-format on
};

template <typename Expected, typename Ask>
void expect_by_index(Expected const& expected, Ask const& ask) {
    for (unsigned index = 0; index < 3; ++index) {
        if (expected) {
            EXPECT_EQ(static_cast<unsigned>(ask(index)), static_cast<unsigned>((*expected)(index)))
                << "index " << index;
        } else {
            EXPECT_EXIT(ask(index), testing::KilledBySignal(SIGABRT), "");
        }
    }
}

TEST_F(ShapeTest, constant_answers) {
    for (Shape const& shape : shapes()) {
        SCOPED_TRACE(shape.name);
        Process const& term = *shape.term;
        EXPECT_EQ(term.kind(), shape.kind);
        EXPECT_EQ(static_cast<unsigned>(term.recursion_type()), shape.recursion_type);
        for (bool const wish : {false, true}) {
            EXPECT_EQ(static_cast<unsigned>(term.preferred_compilation_level(wish)),
                      shape.preferred_level(wish));
        }
        if (shape.is_commutative) {
            EXPECT_EQ(term.is_commutative(), *shape.is_commutative);
        } else {
            EXPECT_EXIT(term.is_commutative(), testing::KilledBySignal(SIGABRT), "");
        }
        EXPECT_EQ(term.argument_count(), shape.argument_count);
        EXPECT_EQ(term.pretty_print_information(), shape.print_information);
        for (Shape const& other : shapes()) {
            EXPECT_EQ(term.pretty_print_is_same_operator(*other.term), other.kind == shape.kind);
        }
    }
}

TEST_F(ShapeTest, answers_by_argument_and_questions_that_end_the_program) {
    GTEST_FLAG_SET(death_test_style, "fast");
    for (Shape const& shape : shapes()) {
        SCOPED_TRACE(shape.name);
        Process const& term = *shape.term;
        expect_by_index(shape.allows_recursion,
                        [&](unsigned index) { return term.allows_recursion(index); });
        expect_by_index(shape.process_state,
                        [&](unsigned index) { return term.process_state(index); });
        expect_by_index(shape.discarded_by,
                        [&](unsigned index) { return term.discarded_by(index); });
        expect_by_index(shape.turned_on_by,
                        [&](unsigned index) { return term.turned_on_by(index); });
    }
}

/// The same of an operator; the numbers of operators are apart from those of processes.
struct OperatorShape {
    char const* name;
    OperatorPointer op;
    unsigned kind;
    unsigned recursion_type;
    ByIndex<bool> allows_recursion;
    ByIndex<unsigned> process_state;
    ByIndex<bool> discarded_by;
    ByIndex<unsigned> turned_on_by;
    std::function<unsigned(bool)> preferred_level;
    bool is_commutative;
    std::pair<unsigned, unsigned> print_information;
};

class OperatorShapeTest : public ShapeTest {
  protected:
    // clang-format off
    std::vector<OperatorShape> operator_shapes() const {
        BitSet const set{a};
        FixedArray<std::pair<unsigned, unsigned>> const pairs{{a, b}};
        auto const yes = always(true), no = always(false);
        auto const one = always(1U);
        return {
            {"alphabetised parallel", new AlphabetisedParallelOperator({set, set}),
                0, 3, no, one, no, aborts, high, true, {8, 2}},
            {"exception", new ExceptionOperator(set),
                1, 3, second, first, no, one, as_wished, false, {8, 2}},
            {"generalised parallel", new GeneralisedParallelOperator(set),
                2, 3, no, one, no, aborts, high, true, {8, 2}},
            {"linked parallel", new LinkedParallelOperator(pairs),
                3, 3, no, one, no, aborts, high, false, {8, 2}},
            {"hide", new HideOperator(set), 4, 3, no, one, no, aborts, high, false, {10, 0}},
            {"rename", new RenameOperator(pairs), 5, 3, no, one, no, aborts, high, false, {1, 0}},
            {"synchronising external choice", new SynchronisingExternalChoiceOperator(set),
                6, 1, yes, one, no, aborts, as_wished, false, {6, 0}},
            {"synchronising interrupt", new SynchronisingInterruptOperator(set),
                7, 1, second, one, all_but_first, aborts, high, false, {5, 0}},
            {"project", new ProjectOperator(set),
                8, 3, no, one, no, aborts, high, false, {10, 0}},
        };
    }
    // clang-format on
};

TEST_F(OperatorShapeTest, constant_answers) {
    for (OperatorShape const& shape : operator_shapes()) {
        SCOPED_TRACE(shape.name);
        Operator const& op = *shape.op;
        EXPECT_EQ(op.operator_kind(), shape.kind);
        EXPECT_EQ(static_cast<unsigned>(op.recursion_type()), shape.recursion_type);
        for (bool const wish : {false, true}) {
            EXPECT_EQ(static_cast<unsigned>(op.preferred_compilation_level(wish)),
                      shape.preferred_level(wish));
        }
        EXPECT_EQ(op.is_commutative(), shape.is_commutative);
        EXPECT_EQ(op.pretty_print_information(), shape.print_information);
        for (OperatorShape const& other : operator_shapes()) {
            EXPECT_EQ(op.pretty_print_is_same_operator(*other.op), other.kind == shape.kind);
            EXPECT_EQ(op == *other.op, other.kind == shape.kind);
        }
    }
}

TEST_F(OperatorShapeTest, answers_by_argument_and_questions_that_end_the_program) {
    for (OperatorShape const& shape : operator_shapes()) {
        SCOPED_TRACE(shape.name);
        Operator const& op = *shape.op;
        expect_by_index(shape.allows_recursion,
                        [&](unsigned index) { return op.allows_recursion(index); });
        expect_by_index(shape.process_state,
                        [&](unsigned index) { return op.process_state(index); });
        expect_by_index(shape.discarded_by, [&](unsigned index) { return op.discarded_by(index); });
        expect_by_index(shape.turned_on_by, [&](unsigned index) { return op.turned_on_by(index); });
    }
}

/// Whether argument `index` runs in the format.
bool runs_in(HighLevelMachine::UnCompiledFormat const& format, unsigned index) {
    auto const& active = format.active_components;
    return std::find(active.begin(), active.end(), index) != active.end();
}

/// A host learns from the answers and from the formats how the arguments run: both must say the
/// same. `construct` is a process or an operator of `count` arguments.
template <typename Construct> void expect_one_account(Construct const& construct, unsigned count) {
    std::vector<BitSet> const alphabets(count, BitSet{tau, tick, 3, 4});
    auto const formats = construct.high_level_formats(alphabets);
    bool any_runs = false;
    for (unsigned index = 0; index < count; ++index) {
        SCOPED_TRACE(index);
        bool const runs = runs_in(formats->front(), index);
        any_runs = any_runs || runs;
        EXPECT_EQ(construct.process_state(index) == ArgumentState::on, runs);
        bool is_turned_on = false;
        for (auto const& rule : formats->front().rules) {
            if (!runs && runs_in(formats->at(rule.target_format), index)) {
                is_turned_on = true;
                EXPECT_EQ(construct.turned_on_by(index) == TurnedOnBy::silent_step,
                          rule.event == tau);
            }
        }
        EXPECT_NE(is_turned_on, runs);
    }
    EXPECT_EQ(construct.recursion_type() == RecursionType::starts_none, !any_runs);
}

TEST_F(OperatorShapeTest, answers_and_formats_agree_on_which_arguments_run_and_when) {
    for (Shape const& shape : shapes()) {
        SCOPED_TRACE(shape.name);
        if (shape.argument_count > 0) {
            expect_one_account(*shape.term, shape.argument_count);
        }
    }
    for (OperatorShape const& shape : operator_shapes()) {
        SCOPED_TRACE(shape.name);
        auto const [precedence, associativity] = shape.print_information;
        bool const is_postfix = precedence == 10 || precedence == 1; // hide, project; rename
        expect_one_account(*shape.op, is_postfix ? 1 : 2);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
