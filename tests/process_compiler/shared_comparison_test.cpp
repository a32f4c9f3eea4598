#include "process_compiler/argument_array.h"
#include "process_compiler/shared_comparison.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakeProcess;

/// Compares its two arguments, and counts how often it is asked.
class Pair : public FakeProcess {
  public:
    Pair(ProcessPointer const& both, unsigned& asked) : FakeProcess("pair", 2), m_asked(asked) {
        arguments[0] = both;
        arguments[1] = both;
    }

    bool operator==(Process const& other) const override {
        ++m_asked;
        return arguments_equal(arguments, static_cast<Pair const&>(other).arguments);
    }
    bool operator!=(Process const& other) const override {
        ++m_asked;
        return arguments_differ(arguments, static_cast<Pair const&>(other).arguments);
    }

  private:
    unsigned& m_asked;
};

/// A term of 2^levels places, all but the last of which are shared.
ProcessPointer doubled(char const* name, unsigned levels, unsigned& asked) {
    ProcessPointer term(new FakeProcess(name));
    for (unsigned level = 0; level < levels; ++level) {
        term = new Pair(term, asked);
    }
    return term;
}

TEST(SharedComparison, asks_about_the_same_two_terms_once) {
    unsigned asked = 0;
    constexpr unsigned levels = 60;
    ProcessPointer const left = doubled("end", levels, asked);
    ProcessPointer const right = doubled("end", levels, asked);
    ProcessPointer const other = doubled("other end", levels, asked);
    SharedComparison const shared;
    EXPECT_TRUE(*left == *right);
    EXPECT_FALSE(*left != *right);
    EXPECT_FALSE(*left == *other);
    EXPECT_TRUE(*left != *other);
    EXPECT_LT(asked, 20'000U);
}

TEST(SharedComparison, without_one_every_argument_is_asked) {
    unsigned asked = 0;
    constexpr unsigned levels = 10;
    ProcessPointer const left = doubled("end", levels, asked);
    ProcessPointer const right = doubled("end", levels, asked);
    EXPECT_TRUE(*left == *right);
    EXPECT_EQ(asked, (1U << levels) - 1);
}

} // namespace
} // namespace Calder::ProcessCompiler
