#include "process_compiler/kinds.h"
#include "process_compiler/named_process_source.h"
#include "tests/support/fake_process.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakeProcess;

TEST(NamedProcess, is_its_name) {
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
}

TEST(NamedProcessDeathTest, has_no_arguments_to_be_asked_about) {
    NamedProcessSource source;
    NamedProcessPointer const undefined = source.reference("GHOST");
    EXPECT_FALSE(source.is_defined(*undefined));
    auto const visit = [&] {
        undefined->visit_transitions(source, [](unsigned, ProcessPointer const&) { return true; });
    };
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
