#include "process_compiler/kinds.h"
#include "process_compiler/named_process_source.h"
#include "tests/support/fake_maker.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakeMaker;
using Testing::FakeProcess;

TEST(NamedProcess, is_its_number_and_its_source) {
    NamedProcessSource source;
    ProcessPointer const first = source.reference("P");
    ProcessPointer const second = source.reference("Q");
    EXPECT_EQ(source.reference("P"), first) << "the same object every time";
    EXPECT_TRUE(*first == *first->clone(true));
    EXPECT_FALSE(*first != *first->clone(false));
    EXPECT_EQ(first->hash_code(), first->clone(true)->hash_code());
    EXPECT_TRUE(*first != *second);
    EXPECT_FALSE(*first == *second);
    EXPECT_FALSE(*first == FakeProcess("P"));
    EXPECT_TRUE(*first != FakeProcess("P"));

    Session const session;
    EXPECT_EQ(Testing::text_of(session, *first), "P");
    EXPECT_EQ(Testing::description_of(session, *first), "Process P");
    EXPECT_EQ(first->kind(), named_process_kind);
    EXPECT_EQ(first->argument_count(), 0U);

    NamedProcessSource other_source;
    ProcessPointer const stranger = other_source.reference("P");
    EXPECT_FALSE(*first == *stranger);
    EXPECT_TRUE(*first != *stranger);
}

TEST(NamedProcess, an_instance_has_its_name_from_the_maker) {
    NamedProcessSource source;
    FakeMaker maker([](unsigned) { return nullptr; });
    NamedProcessPointer const before = source.reference("P");
    NamedProcessPointer const instance = source.add_reference();
    NamedProcessPointer const after = source.reference("Q");
    EXPECT_EQ(instance->name(), "#1") << "nobody knows it";
    source.set_maker(&maker);
    Session const session;
    struct {
        NamedProcessPointer reference;
        char const* name;
        bool is_instance;
    } const rows[] = {{before, "P", false}, {instance, "P(1)", true}, {after, "Q", false}};
    for (auto const& row : rows) {
        EXPECT_EQ(row.reference->name(), row.name);
        EXPECT_EQ(Testing::text_of(session, *row.reference), row.name);
        EXPECT_EQ(source.is_instance(*row.reference), row.is_instance) << row.name;
        EXPECT_EQ(source.references()[row.reference->number()], row.reference);
        EXPECT_TRUE(*row.reference == *row.reference->clone(true));
    }
    ProcessPointer const term = instance;
    ProcessPointer const next = source.add_reference();
    EXPECT_TRUE(*term != *before);
    EXPECT_TRUE(*term != *next);
}

TEST(NamedProcess, what_it_stands_for_is_made_once_when_it_is_first_asked_for) {
    NamedProcessSource source;
    // Each makes references to more.
    FakeMaker maker([&](unsigned) -> ProcessPointer {
        return new FakeProcess("term", OwningArray<ProcessPointer>{source.add_reference()});
    });
    source.set_maker(&maker);
    NamedProcessPointer const& first = source.add_reference();
    NamedProcessPointer const& defined = source.add_reference();
    ProcessPointer const given(new FakeProcess("given"));
    source.define(*defined, given);
    EXPECT_FALSE(source.is_defined(*first));
    ProcessPointer const& term = source.process(*first);
    ProcessPointer const kept = term;
    EXPECT_TRUE(source.is_defined(*first));
    for (int times = 0; times < 1'000; ++times) {
        source.process(*source.references().back());
        source.process(*first);
    }
    EXPECT_EQ(term, kept) << "stays where it was";
    EXPECT_EQ(first, source.references().front());
    EXPECT_EQ(source.process(*defined), given);
    EXPECT_EQ(maker.made.size(), 1'001U);
    EXPECT_EQ(std::count(maker.made.begin(), maker.made.end(), 0U), 1);
}

TEST(NamedProcess, what_a_maker_throws_passes_through_and_leaves_nothing) {
    NamedProcessSource source;
    bool fails = true;
    FakeMaker maker([&](unsigned) -> ProcessPointer {
        if (fails) {
            throw std::range_error("no such value");
        }
        return new FakeProcess("term");
    });
    source.set_maker(&maker);
    NamedProcessPointer const reference = source.add_reference();
    auto const visit = [&] {
        reference->visit_transitions(source, [](auto, auto const&) { return true; });
    };
    EXPECT_THROW(visit(), std::range_error);
    EXPECT_THROW(visit(), std::range_error);
    EXPECT_FALSE(source.is_defined(*reference));
    fails = false;
    EXPECT_NO_THROW(visit());
    EXPECT_TRUE(source.is_defined(*reference));
}

TEST(NamedProcess, is_sequential_where_that_was_declared) {
    NamedProcessSource source;
    for (char const* const name : {"P", "Q", "R"}) {
        EXPECT_FALSE(source.is_sequential(*source.reference(name)));
    }
    source.declare_sequential(*source.reference("Q"));
    EXPECT_FALSE(source.is_sequential(*source.reference("P")));
    EXPECT_TRUE(source.is_sequential(*source.reference("Q")));
    EXPECT_FALSE(source.is_sequential(*source.reference("R")));
}

TEST(NamedProcess, may_be_released_after_its_source) {
    ProcessPointer kept;
    {
        NamedProcessSource source;
        kept = source.add_reference();
    }
    EXPECT_EQ(kept->reference_count(), 1U);
}

TEST(NamedProcessDeathTest, has_no_arguments_to_be_asked_about) {
    NamedProcessSource source;
    NamedProcessPointer const undefined = source.reference("GHOST");
    EXPECT_FALSE(source.is_defined(*undefined));
    auto const visit = [&] {
        undefined->visit_transitions(source, [](unsigned, ProcessPointer const&) { return true; });
    };
    EXPECT_EXIT(visit(), testing::KilledBySignal(SIGABRT), "The process GHOST is not defined");
    FakeMaker maker([](unsigned) { return nullptr; });
    source.set_maker(&maker);
    EXPECT_EXIT(visit(), testing::KilledBySignal(SIGABRT), "The process GHOST is not defined");
    EXPECT_EXIT(undefined->argument(0), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(undefined->allows_recursion(0), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(undefined->process_state(0), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(undefined->discarded_by(0), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(undefined->turned_on_by(0), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(undefined->high_level_formats({}), testing::KilledBySignal(SIGABRT), "");
}

} // namespace
} // namespace Calder::ProcessCompiler
