#include "process_compiler/argument_array.h"
#include "process_compiler/named_process_source.h"
#include "process_compiler/recursion_watch.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakeProcess;

constexpr std::uint64_t interval = RecursionWatch::steps_between_looks;
constexpr std::uintptr_t no_frame = 0;
constexpr std::uintptr_t above_every_frame = std::numeric_limits<std::uintptr_t>::max();

struct Enough {};

void watch_steps(std::uint64_t count) {
    for (std::uint64_t step = 0; step < count; ++step) {
        watch_recursion();
    }
}

TEST(RecursionWatch, looks_after_so_many_steps_and_passes_on_what_the_look_throws) {
    struct {
        std::uint64_t steps;
        unsigned looks;
    } const rows[] = {{0, 0}, {interval - 1, 0}, {interval, 1}, {3 * interval + 1, 3}};
    for (auto const& row : rows) {
        unsigned looks = 0;
        RecursionWatch const watch(no_frame, [&] { ++looks; });
        watch_steps(row.steps);
        EXPECT_EQ(looks, row.looks) << row.steps;
    }
    RecursionWatch const watch(no_frame, [] { throw Enough(); });
    EXPECT_THROW(watch_steps(interval), Enough);
    EXPECT_THROW(watch_steps(interval), Enough) << "and watches on";
}

TEST(RecursionWatch, the_one_made_last_watches_until_it_goes) {
    watch_steps(2 * interval);
    {
        unsigned outer_looks = 0;
        RecursionWatch const outer(no_frame, [&] { ++outer_looks; });
        watch_steps(interval - 1);
        {
            RecursionWatch const inner(above_every_frame);
            EXPECT_THROW(watch_recursion(), NestedTooDeeply);
        }
        watch_recursion();
        EXPECT_EQ(outer_looks, 1U);
    }
    watch_recursion();
}

/// The terms of the host and what it does for all constructs: each is one level.
TEST(RecursionWatch, every_recursion_of_the_host_is_watched) {
    NamedProcessSource source;
    ProcessPointer const name = source.reference("P");
    ProcessPointer const fake(new FakeProcess("fake"));
    source.define("P", fake);
    OwningArray<ProcessPointer> const one{fake};
    OwningArray<ProcessPointer> const other{ProcessPointer(new FakeProcess("fake"))};
    struct {
        char const* recursion;
        std::function<void()> go;
    } const rows[] = {
        {"visit", [&] { name->visit_transitions(source, [](auto, auto const&) { return true; }); }},
        {"hash", [&] { (void)hash_arguments(one); }},
        {"equality", [&] { (void)arguments_equal(one, other); }},
        {"difference", [&] { (void)arguments_differ(one, other); }},
    };
    for (auto const& row : rows) {
        EXPECT_NO_THROW(row.go()) << row.recursion;
        RecursionWatch const watch(above_every_frame);
        EXPECT_THROW(row.go(), NestedTooDeeply) << row.recursion;
    }
}

} // namespace
} // namespace Calder::ProcessCompiler
