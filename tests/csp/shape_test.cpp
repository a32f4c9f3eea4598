#include "tests/csp/construct_test.h"

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
    static unsigned as_is(bool wish) { return wish ? 1 : 0; }
    static unsigned explicit_always(bool) { return 0; }

    std::vector<Shape> shapes() const {
        return {
            {"prefix",
             prefix(a, stop),
             14,
             2,
             always(true),
             always(0U),
             aborts,
             always(1U),
             explicit_always,
             false,
             1,
             {2, 1}},
            {"external choice",
             choice({stop, stop}),
             10,
             1,
             always(true),
             always(1U),
             always(true),
             aborts,
             as_is,
             true,
             2,
             {6, 0}},
        };
    }
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

} // namespace
} // namespace Calder::ProcessCompiler::CSP
