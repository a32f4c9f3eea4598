#include "script/script.h"
#include "tests/oracle/library_term.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

namespace Calder::Oracle {
namespace {

using namespace ProcessCompiler;

std::string script_with(std::string const& term) {
    return "channel a, b, c\nP = " + term + "\n";
}

TEST(RoundTrip, what_a_random_term_prints_reads_back_to_the_same_text) {
    Session session;
    for (char const* const name : {"a", "b", "c"}) {
        session.declare_event(name);
    }
    constexpr std::uint64_t terms = 5'000;
    for (std::uint64_t seed = 1; seed <= terms; ++seed) {
        std::mt19937_64 random(seed);
        NamedProcessSource source;
        TermPointer const term =
            random_term(random, 1 + static_cast<unsigned>(seed % 25), {0, true, true});
        std::string const printed = Testing::text_of(session, *library_term(*term, source));
        Script::ReadResult const read = Script::read_script(script_with(printed));
        ASSERT_TRUE(read.script) << "seed " << seed << "\n"
                                 << printed << "\n"
                                 << read.diagnostics[0].message;
        ASSERT_EQ(Testing::text_of(read.script->session(), *read.script->definitions().back().body),
                  printed)
            << "seed " << seed << ": " << text_of(*term);
    }
}

} // namespace
} // namespace Calder::Oracle
