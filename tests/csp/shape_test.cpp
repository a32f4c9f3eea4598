#include "process_compiler/kinds.h"
#include "tests/csp/terms.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace Calder::ProcessCompiler::CSP {
namespace {

/// An answer by argument index, or that the question ends the program.
using ByIndex = std::optional<std::function<unsigned(unsigned)>>;

constexpr std::nullopt_t aborts = std::nullopt;
constexpr auto zero = [](unsigned) { return 0U; };
constexpr auto one = [](unsigned) { return 1U; };
constexpr auto two = [](unsigned) { return 2U; };
constexpr auto first = [](unsigned index) { return index == 0 ? 1U : 0U; };
constexpr auto second = [](unsigned index) { return index == 1 ? 1U : 0U; };
constexpr auto later = [](unsigned index) { return index != 0 ? 1U : 0U; };

enum class Level { low, high, as_wished };

/// The constant answers of a construct, in the order of the contract.
struct Answers {
    char const* name;
    unsigned kind; // operators have numbers of their own
    unsigned recursion_type;
    ByIndex allows_recursion;
    ByIndex process_state;
    ByIndex discarded_by;
    ByIndex turned_on_by;
    Level level;
    std::optional<bool> is_commutative;
    std::pair<unsigned, unsigned> print_information;
};

// clang-format off
Answers const answers[] = {
    {"prefix", 14, 2, one, zero, aborts, one, Level::low, false, {2, 1}},
    {"event-set prefix", 19, 2, one, zero, aborts, one, Level::low, aborts, {2, 1}},
    {"external choice", 10, 1, one, one, one, aborts, Level::as_wished, true, {6, 0}},
    {"internal choice", 11, 2, one, zero, aborts, two, Level::as_wished, true, {7, 0}},
    {"interrupt", 12, 1, second, one, later, aborts, Level::high, false, {5, 0}},
    {"interleave", 13, 3, zero, one, zero, aborts, Level::high, true, {9, 0}},
    {"sequential composition", 15, 3, second, first, zero, two, Level::as_wished, false, {3, 1}},
    {"sliding choice", 16, 1, one, first, one, two, Level::as_wished, false, {4, 0}},
    {"chaos", 17, 2, aborts, aborts, aborts, aborts, Level::low, aborts, {0, 2}},
    {"run", 18, 2, aborts, aborts, aborts, aborts, Level::low, false, {0, 2}},
    {"alphabetised parallel", 0, 3, zero, one, zero, aborts, Level::high, true, {8, 2}},
    {"exception", 1, 3, second, first, zero, one, Level::as_wished, false, {8, 2}},
    {"generalised parallel", 2, 3, zero, one, zero, aborts, Level::high, true, {8, 2}},
    {"linked parallel", 3, 3, zero, one, zero, aborts, Level::high, false, {8, 2}},
    {"hide", 4, 3, zero, one, zero, aborts, Level::high, false, {10, 0}},
    {"rename", 5, 3, zero, one, zero, aborts, Level::high, false, {1, 0}},
    {"synchronising external choice", 6, 1, one, one, zero, aborts, Level::as_wished, false, {6, 0}},
    {"synchronising interrupt", 7, 1, second, one, later, aborts, Level::high, false, {5, 0}},
    {"project", 8, 3, zero, one, zero, aborts, Level::high, false, {10, 0}},
};
// clang-format on
static_assert(std::size(answers) == std::size(constructs));

/// Calls `check(shape, its construct, a term of it)` for every construct.
template <typename Check> void for_all(Check const& check) {
    for (std::size_t i = 0; i < std::size(answers); ++i) {
        SCOPED_TRACE(answers[i].name);
        ASSERT_STREQ(answers[i].name, constructs[i].name);
        check(answers[i], constructs[i], *constructs[i].of(P, Q));
    }
}

unsigned kind_of(Process const& term) {
    auto const* const application = dynamic_cast<OperatorProcess const*>(&term);
    return application == nullptr ? term.kind() : application->applied_operator().operator_kind();
}

TEST(Shape, constant_answers) {
    for_all([](Answers const& shape, Construct const& construct, Process const& term) {
        EXPECT_EQ(kind_of(term), shape.kind);
        EXPECT_EQ(static_cast<unsigned>(term.recursion_type()), shape.recursion_type);
        EXPECT_EQ(term.preferred_compilation_level(false) == CompilationLevel::high,
                  shape.level == Level::high);
        EXPECT_EQ(term.preferred_compilation_level(true) == CompilationLevel::low,
                  shape.level == Level::low);
        EXPECT_EQ(term.argument_count(), construct.operands);
        EXPECT_EQ(term.pretty_print_information(), shape.print_information);
        // Nothing is saved by remembering what prefixes and internal choices do.
        EXPECT_EQ(term.needs_memoisation(),
                  shape.kind != 14 && shape.kind != 19 && shape.kind != 11);
    });
}

template <typename Ask> void expect_abort(Ask const& ask, char const* message = "^$") {
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(ask(), testing::KilledBySignal(SIGABRT), message);
}

template <typename Ask> void expect_by_index(ByIndex const& expected, Ask const& ask) {
    for (unsigned index = 0; index < 3; ++index) {
        if (expected) {
            EXPECT_EQ(static_cast<unsigned>(ask(index)), (*expected)(index)) << "index " << index;
        } else {
            expect_abort([&] { ask(index); });
        }
    }
}

TEST(Shape, answers_by_argument_and_questions_that_end_the_program) {
    for_all([](Answers const& shape, Construct const& construct, Process const& term) {
        expect_by_index(shape.allows_recursion,
                        [&](unsigned i) { return term.allows_recursion(i); });
        expect_by_index(shape.process_state, [&](unsigned i) { return term.process_state(i); });
        expect_by_index(shape.discarded_by, [&](unsigned i) { return term.discarded_by(i); });
        expect_by_index(shape.turned_on_by, [&](unsigned i) { return term.turned_on_by(i); });
        if (shape.is_commutative) {
            EXPECT_EQ(term.is_commutative(), *shape.is_commutative);
        } else {
            bool const is_chaos = construct.operands == 0;
            expect_abort([&] { term.is_commutative(); },
                         is_chaos ? "^Unary operator cannot be commutative\n$" : "^$");
        }
        if (construct.operands == 0) {
            expect_abort([&] { term.argument(0); });
            expect_abort([&] { term.high_level_formats({}); });
        }
    });
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
