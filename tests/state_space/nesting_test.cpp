#include "state_space/exploration.h"
#include "state_space/stack_guard.h"
#include "tests/state_space/stack_of_size.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::Process;
using ProcessCompiler::ProcessPointer;
using ProcessCompiler::TransitionVisitor;
using ProcessCompiler::Testing::FakeProcess;
using Testing::run_with_stack;

/// A term around another, which alone runs: nests as a sequence does on its left. Recurses to
/// visit, to hash and to compare, as the real constructs do.
class Wrapped : public FakeProcess {
  public:
    explicit Wrapped(ProcessPointer inner) : FakeProcess("wrapped", 1) {
        arguments[0] = std::move(inner);
    }

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override {
        return arguments[0]->visit_transitions(
            source, [&visitor](unsigned event, ProcessPointer const& inner) {
                return visitor(event, new Wrapped(inner));
            });
    }
    std::uint64_t hash_code() const override {
        return m_hash.get([this] { return hash_combine(9, arguments[0]->hash_code()); });
    }
    bool operator==(Process const& other) const override {
        return FakeProcess::operator==(other) && *arguments[0] == *other.argument(0);
    }
};

/// Becomes itself inside `step` more terms, twice, so that every state is also compared.
class Nesting : public FakeProcess {
  public:
    explicit Nesting(unsigned step) : FakeProcess("nesting"), m_step(step) {}

    bool visit_transitions(NamedProcessSource const&,
                           TransitionVisitor const& visitor) const override {
        return visitor(3, nested()) && visitor(3, nested());
    }

  private:
    ProcessPointer nested() const {
        ProcessPointer term = self();
        for (unsigned i = 0; i < m_step; ++i) {
            term = new Wrapped(term);
        }
        return term;
    }

    unsigned m_step;
};

constexpr std::size_t mib = std::size_t{1} << 20;

TEST(Nesting, ends_at_a_limit_that_grows_with_the_stack) {
    struct {
        std::size_t stack;
        unsigned step;
    } const rows[] = {{1 * mib, 25}, {1 * mib, 100}, {4 * mib, 400}};
    std::vector<StateNumber> depths;
    for (auto const& row : rows) {
        run_with_stack(row.stack, [&] {
            NamedProcessSource const source;
            Exploration const found = explore(new Nesting(row.step), source);
            EXPECT_EQ(found.outcome, Outcome::nesting_limit);
            // A state leads to the next; the deepest one's row is dropped.
            EXPECT_EQ(found.lts.explored_count() + 1, found.lts.state_count());
            EXPECT_EQ(found.lts.transition_count(), found.lts.explored_count());
            depths.push_back(found.lts.explored_count() * row.step);
        });
    }
    ASSERT_EQ(depths.size(), std::size(rows));
    EXPECT_GT(depths[0], 300U) << "a level must not cost a kilobyte of the stack";
    EXPECT_GT(depths[2], depths[1] * 3);
}

constexpr std::size_t frame_bytes = 16 << 10;

/// Goes down frame by frame until the guard warns.
[[gnu::noinline]] bool report_from_below(StackGuard const& guard,
                                         TransitionVisitor const& visitor) {
    char volatile frame[frame_bytes];
    frame[0] = 1;
    bool const goes_on =
        guard.is_low() ? visitor(3, new FakeProcess("deep")) : report_from_below(guard, visitor);
    return goes_on && frame[0] == 1; // keeps the frame in use across the call
}

/// Reports a step at once and one from far below, and another one however that was answered.
class DeepAtLast : public FakeProcess {
  public:
    DeepAtLast() : FakeProcess("deep at last") {}

    bool visit_transitions(NamedProcessSource const&,
                           TransitionVisitor const& visitor) const override {
        visitor(3, new FakeProcess("near"));
        report_from_below(StackGuard(), visitor);
        return visitor(3, new FakeProcess("too late"));
    }
};

TEST(Nesting, what_was_reported_before_the_limit_counts) {
    run_with_stack(mib, [] {
        Exploration const found = explore(new DeepAtLast(), NamedProcessSource());
        EXPECT_EQ(found.outcome, Outcome::nesting_limit);
        EXPECT_EQ(found.lts.state_count(), 2U);
    });
}

/// Goes down frame by frame until the guard warns; tells how far that was.
[[gnu::noinline]] std::size_t bytes_until_low(StackGuard const& guard, std::uintptr_t top) {
    char volatile frame[frame_bytes];
    frame[0] = 1;
    std::size_t const used = top - reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    std::size_t const deeper = guard.is_low() ? used : bytes_until_low(guard, top);
    return frame[0] == 1 ? deeper : 0; // keeps the frame in use across the call
}

std::size_t bytes_until_low() {
    return bytes_until_low(StackGuard(),
                           reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)));
}

/// By how much the guard may find out late: some frames, should the compiler join them.
constexpr std::size_t slack = 16 * frame_bytes;

TEST(StackGuard, warns_at_half_of_the_stack_of_its_thread) {
    struct {
        std::size_t stack, half;
    } const rows[] = {{mib, mib / 2}, {8 * mib, 4 * mib}, {64 * mib, 32 * mib}};
    for (auto const& row : rows) {
        run_with_stack(row.stack, [&] {
            std::size_t const used = bytes_until_low();
            EXPECT_GE(used + slack, row.half) << row.stack;
            EXPECT_LE(used, row.half + slack) << row.stack;
        });
    }
}

TEST(StackGuard, keeps_all_of_a_small_stack) {
    run_with_stack(mib / 4, [] { EXPECT_TRUE(StackGuard().is_low()); });
    run_with_stack(mib, [] { EXPECT_FALSE(StackGuard().is_low()); });
}

TEST(StackGuardDeathTest, works_where_the_stack_has_no_limit) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &limit), 0);
    if (limit.rlim_max != RLIM_INFINITY) {
        GTEST_SKIP() << "the limit cannot be lifted here";
    }
    auto const go_down = [&] {
        limit.rlim_cur = RLIM_INFINITY;
        setrlimit(RLIMIT_STACK, &limit);
        std::size_t const used = bytes_until_low();
        std::_Exit(used > 8 * mib && used <= 512 * mib + slack ? 0 : 1);
    };
    EXPECT_EXIT(go_down(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace Calder::StateSpace
