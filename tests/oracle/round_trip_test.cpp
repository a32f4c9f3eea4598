#include "script/constructs.h"
#include "script/script.h"
#include "tests/oracle/library_term.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

namespace Calder::Oracle {
namespace {

using namespace ProcessCompiler;
using Script::Construct;

/// The kinds of what a script says, of a condition none: it has decided before there is a term. A
/// construct that was forgotten here does not compile.
std::vector<Kind> kinds_of(Construct construct) {
    switch (construct) {
    case Construct::stop:
    case Construct::external_choice: return {Kind::external_choice};
    case Construct::skip:
    case Construct::interleaving: return {Kind::interleave};
    case Construct::run: return {Kind::run};
    case Construct::chaos: return {Kind::chaos};
    case Construct::paired_parallel:
    case Construct::alphabetised_parallel: return {Kind::alphabetised_parallel};
    case Construct::renaming: return {Kind::renaming};
    case Construct::prefix: return {Kind::prefix, Kind::event_set_prefix};
    case Construct::guard: return {};
    case Construct::sequential_composition: return {Kind::sequential_composition};
    case Construct::sliding_choice: return {Kind::sliding_choice};
    case Construct::interrupt: return {Kind::interrupt};
    case Construct::synchronising_interrupt: return {Kind::synchronising_interrupt};
    case Construct::synchronising_external_choice: return {Kind::synchronising_choice};
    case Construct::internal_choice: return {Kind::internal_choice};
    case Construct::generalised_parallel: return {Kind::generalised_parallel};
    case Construct::linked_parallel: return {Kind::linked_parallel};
    case Construct::exception: return {Kind::exception};
    case Construct::hiding: return {Kind::hiding};
    case Construct::projection: return {Kind::projection};
    }
    return {Kind::named};
}

void add_kinds(Term const& term, std::set<Kind>& drawn) {
    drawn.insert(term.kind);
    for (TermPointer const& argument : term.arguments) {
        add_kinds(*argument, drawn);
    }
}

TEST(RoundTrip, what_a_random_term_prints_reads_back_to_the_same_text) {
    Session session;
    for (char const* const name : {"a", "b", "c"}) {
        session.declare_event(name);
    }
    std::set<Kind> drawn;
    constexpr std::uint64_t terms = 5'000;
    for (std::uint64_t seed = 1; seed <= terms; ++seed) {
        std::mt19937_64 random(seed);
        NamedProcessSource source;
        TermPointer const term =
            random_term(random, 1 + static_cast<unsigned>(seed % 25), {2, true, true});
        add_kinds(*term, drawn);
        std::string const printed = Testing::text_of(session, *library_term(*term, source));
        Script::ReadResult const read = Script::read_script(
            "channel a, b, c\nN0 = a -> N1\nN1 = b -> N0\nP = " + printed + "\n");
        ASSERT_TRUE(read.script) << "seed " << seed << "\n"
                                 << printed << "\n"
                                 << read.diagnostics[0].message;
        ASSERT_EQ(Testing::text_of(read.script->session(), *read.script->definitions().back().body),
                  printed)
            << "seed " << seed << ": " << text_of(*term);
    }
    for (int i = 0; i <= static_cast<int>(Construct::projection); ++i) {
        for (Kind const kind : kinds_of(Construct(i))) {
            EXPECT_TRUE(drawn.count(kind)) << Script::entry_of(Construct(i)).name;
        }
    }
}

} // namespace
} // namespace Calder::Oracle
