#include "tools/evidence_json.h"
#include "tools/evidence_text.h"

#include <gtest/gtest.h>

namespace Calder::Tools {
namespace {

using Refinement::Verdict;
using StateSpace::Outcome;

/// What a limit, or whoever watches, ends cannot be timed from outside: whether an answer was found
/// before, with its evidence or without, is made up here.
TEST(LostEvidence, IsToldBesideTheVerdict) {
    auto const read = Script::read_script("channel a\nassert STOP :[never]: {a}\n"
                                          "assert not STOP :[never]: {a}");
    ASSERT_TRUE(read.script);
    struct {
        Verdict verdict;
        Outcome outcome;
        Verdict negated;
        char const* text;
        char const* json;
    } const rows[] = {
        {Verdict::fails, Outcome::interrupted, Verdict::holds,
         "evidence     none: it was interrupted before it was put together\n", "\"interrupted\""},
        {Verdict::fails, Outcome::memory_limit, Verdict::holds,
         "evidence     none: the limit on memory was reached before it was put together\n",
         "\"memory limit\""},
        {Verdict::undecided, Outcome::state_limit, Verdict::undecided,
         "reason       the limit on states was reached\n", "\"state limit\""},
        {Verdict::undecided, Outcome::nesting_limit, Verdict::undecided,
         "reason       the process nests too deeply for the stack\n", "\"nesting limit\""},
    };
    for (auto const& row : rows) {
        for (std::size_t number : {0U, 1U}) {
            Script::Assertion const assertion = read.script->assertion(number);
            Refinement::Answer answer;
            answer.verdict = row.verdict;
            answer.outcome = row.outcome;
            Answered const answered{*read.script, assertion, answer, 0};
            EXPECT_EQ(answered.verdict(), number == 0 ? row.verdict : row.negated) << row.text;
            EXPECT_EQ(evidence_text(answered), row.text);
            std::string json;
            std::function<void(std::string_view)> const write = [&json](std::string_view text) {
                json += text;
            };
            JsonWriter writer(write);
            writer.begin_object();
            write_evidence_json(answered, writer);
            writer.end_object();
            writer.finish();
            EXPECT_EQ(json,
                      std::string("{\n  \"reason\": ") + row.json + ",\n  \"steps\": []\n}\n");
        }
    }
}

} // namespace
} // namespace Calder::Tools
