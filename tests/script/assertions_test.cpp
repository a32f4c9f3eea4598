#include "tests/script/reading.h"

#include <gtest/gtest.h>

#include <map>

namespace Calder::Script {
namespace {

using namespace Testing;

constexpr char const* model = "channel a, b : {0..2}\n"
                              "channel up\n"
                              "P = a.0 -> Q\n"
                              "Q = b?x -> P\n"
                              "COUNT(n) = a!n -> COUNT(n + 1)\n"
                              "WORD(s) = if null(s) then SKIP else up -> WORD(tail(s))\n"
                              "three = <a.0, a.1, a.2>\n";

std::unique_ptr<Script> asked(std::string const& assertion) {
    return script_of(model + ("assert " + assertion));
}

std::string place_of(Location const& place) {
    return std::to_string(place.source) + ":" + std::to_string(place.line) + ":" +
           std::to_string(place.column) + "+" + std::to_string(place.length);
}

/// `SOURCE:LINE:COLUMN+LENGTH text` of each assertion.
std::string heads_of(Script const& script) {
    std::string text;
    for (AssertionHead const& head : script.assertions()) {
        text += place_of(head.location) + " " + head.text + "\n";
    }
    return text;
}

TEST(Assertions, say_what_they_ask) {
    struct {
        char const* assertion;
        Question question;
        bool is_negated;
        char const* text;
        char const* abstract;
        char const* concrete;
    } const rows[] = {
        {"P [T= Q", Question::trace_refinement, false, "P [T= Q", "P", "Q"},
        {"P[F=Q", Question::failures_refinement, false, "P[F=Q", "P", "Q"},
        {"P [FD= Q", Question::failures_divergences_refinement, false, "P [FD= Q", "P", "Q"},
        {"P :[deadlock free]", Question::deadlock_free, false, "P :[deadlock free]", "", "P"},
        {"P:[divergence free]", Question::divergence_free, false, "P:[divergence free]", "", "P"},
        {"P :[ deterministic\t]", Question::deterministic, false, "P :[ deterministic ]", "", "P"},
        {"P :[has\ntrace]: <>", Question::has_trace, false, "P :[has trace]: <>", "", "P"},
        {"P :[never] : {up}", Question::never, false, "P :[never] : {up}", "", "P"},
        // What `not` belongs to, and how much of the rest.
        {"not P [T= Q", Question::trace_refinement, true, "not P [T= Q", "P", "Q"},
        {"not not P [T= Q", Question::trace_refinement, false, "not not P [T= Q", "P", "Q"},
        {"not not not P [F= Q", Question::failures_refinement, true, "not not not P [F= Q", "P",
         "Q"},
        {"not (P [T= Q)", Question::trace_refinement, true, "not (P [T= Q)", "P", "Q"},
        {"not ((P) [T= (Q))", Question::trace_refinement, true, "not ((P) [T= (Q))", "(P)", "(Q)"},
        {"((P :[deadlock free]))", Question::deadlock_free, false, "((P :[deadlock free]))", "",
         "P"},
        {"(not true & P) [T= Q", Question::trace_refinement, false, "(not true & P) [T= Q",
         "(not true & P)", "Q"},
        // Whatever is a term is a side: nothing binds looser.
        {"P \\ {up} [T= Q ||| P \\ {| a |}", Question::trace_refinement, false,
         "P \\ {up} [T= Q ||| P \\ {| a |}", "P \\ {up}", "Q ||| P \\ {| a |}"},
        {"if 1 < 2 then P else Q [F= let X = P within X ; Q", Question::failures_refinement, false,
         "if 1 < 2 then P else Q [F= let X = P within X ; Q", "if 1 < 2 then P else Q",
         "let X = P within X ; Q"},
        {"||| i : {0..2} @ COUNT(i) :[never]: {a.x | x <- {1, 2}}", Question::never, false,
         "||| i : {0..2} @ COUNT(i) :[never]: {a.x | x <- {1, 2}}", "",
         "||| i : {0..2} @ COUNT(i)"},
        // Blanks, comments and the end of what is asked.
        {"P -- the plan\n   [T=  {- {- -} -} Q -- Q\n\nR = P", Question::trace_refinement, false,
         "P [T= Q", "P", "Q"},
        {"P[T={-b-}Q channel c", Question::trace_refinement, false, "P[T= Q", "P", "Q"},
        {"P [T= Q assert Q :[deadlock free]", Question::trace_refinement, false, "P [T= Q", "P",
         "Q"},
    };
    for (auto const& row : rows) {
        auto const script = asked(row.assertion);
        ASSERT_TRUE(script) << row.assertion;
        ASSERT_GE(script->assertion_count(), 1U);
        AssertionHead const& head = script->assertions()[0];
        EXPECT_EQ(head.question, row.question) << row.assertion;
        EXPECT_EQ(head.is_negated, row.is_negated) << row.assertion;
        EXPECT_EQ(head.text, row.text);
        EXPECT_EQ(head.abstract_name, row.abstract);
        EXPECT_EQ(head.concrete_name, row.concrete);
        EXPECT_EQ(place_of(head.location), "0:8:1+6");
    }
}

/// Words of questions are names wherever no question stands.
TEST(Assertions, reserve_one_word) {
    auto const script = script_of("channel deadlock, free, has, trace : {0, 1}\n"
                                  "never(deterministic) = deadlock!deterministic -> SKIP\n"
                                  "assert never(0) :[never]: {| deadlock, free |}\n");
    ASSERT_TRUE(script);
    EXPECT_EQ(script->assertions()[0].concrete_name, "never(0)");
}

TEST(Assertions, have_the_terms_that_are_asked_for_in_the_same_words) {
    char const* const terms[] = {
        "P",
        "COUNT(1)",
        "a.0 -> P",
        "P [| {| a |} |] Q \\ {up}",
        "let X = up -> X within X",
        "let X(n) = a!n -> Y(n) Y(n) = b!n -> X(n) within X(0) ||| X(1)",
        "|~| i : {0..2} @ COUNT(i)",
        "WORD(<1, 2>)[[up <- a.0]]",
        "if 2 > 1 then P else Q",
        "true & STOP",
    };
    for (std::string const term : terms) {
        ReadOptions options;
        options.process = term;
        options.assertions = {"(" + term + ") [T= " + term, term + " :[deadlock free]"};
        ReadResult const result = read_script({"model.csp", model}, options);
        ASSERT_TRUE(result.script) << term << "\n" << lines_of(result.diagnostics);
        Script const& script = *result.script;
        Assertion const refinement = script.assertion(0);
        Assertion const question = script.assertion(1);
        auto const text = [&](ProcessCompiler::ProcessPointer const& made) {
            std::string printed = ProcessCompiler::Testing::text_of(script.session(), *made);
            // A local definition is told behind what it stands in.
            for (std::string const outer : {"_process.", "assert.2.", "assert.3.", "assert."}) {
                while (printed.find(outer) != std::string::npos) {
                    printed.erase(printed.find(outer), outer.size());
                }
            }
            return printed;
        };
        EXPECT_EQ(text(refinement.abstract), text(script.asked()->term));
        EXPECT_EQ(text(refinement.concrete), text(script.asked()->term));
        EXPECT_EQ(text(question.concrete), text(script.asked()->term));
        EXPECT_EQ(question.abstract, nullptr);
        EXPECT_EQ(refinement.text, options.assertions[0]);
        // Asked again, the same.
        EXPECT_EQ(script.assertion(0).abstract, refinement.abstract);
        EXPECT_EQ(script.assertion(1).concrete, question.concrete);
    }
}

TEST(Assertions, share_the_terms_of_the_script) {
    auto const script = script_of("channel a\nLEAF = a -> STOP\nLOOP = a -> LOOP\n"
                                  "assert LEAF [T= LOOP\nassert LOOP :[deterministic]\n");
    ASSERT_TRUE(script);
    EXPECT_EQ(script->assertion(0).abstract, script->find("LEAF")->body);
    EXPECT_EQ(script->assertion(0).concrete, script->find("LOOP")->term);
    EXPECT_EQ(script->assertion(1).concrete, script->find("LOOP")->term);
}

TEST(Assertions, have_the_events_that_they_name) {
    struct {
        char const* question;
        char const* events; // in their order, by name
    } const rows[] = {
        {"has trace]: <>", ""},
        {"has trace]: <a.0, b.2, up>", "a.0 b.2 up "},
        {"has trace]: <up, tick>", "up tick "},
        {"has trace]: <tick>", "tick "},
        {"has trace]: three ^ <tick>", "a.0 a.1 a.2 tick "},
        {"has trace]: <a.(1 - x) | x <- <0..1>>", "a.1 a.0 "},
        {"has trace]: let f(n) = if n == 0 then <up> else <a.n> ^ f(n - 1) within f(2)",
         "a.2 a.1 up "},
        {"never]: {}", ""},
        {"never]: {up, a.1}", "a.1 up "},
        {"never]: {tick, up}", "tick up "},
        {"never]: {| a |}", "a.0 a.1 a.2 "},
        {"never]: {{up}}", "up "},
        {"never]: diff(Events, {| a, b |})", "up "},
        {"never]: set(three)", "a.0 a.1 a.2 "},
    };
    for (auto const& row : rows) {
        auto const script = asked(std::string("P :[") + row.question);
        ASSERT_TRUE(script) << row.question;
        Assertion const assertion = script->assertion(0);
        std::string events;
        auto const add = [&](unsigned event) {
            events += script->session().event_object(event)->name() + std::string(" ");
        };
        for (unsigned const event : assertion.trace) {
            add(event);
        }
        for (unsigned const event : assertion.events) {
            add(event);
        }
        EXPECT_EQ(events, row.events) << row.question;
    }
}

TEST(Assertions, of_included_files_stand_in_their_places) {
    std::map<std::string, std::string, std::less<>> const files{
        {"one.csp", "assert STOP [T= STOP -- 1\ninclude \"two.csp\"\nassert STOP [F= STOP"},
        {"two.csp", "\n  assert\nSTOP :[deadlock free]"}};
    ReadOptions options;
    options.include = [&](std::string_view path, std::string_view) {
        return Inclusion{{std::string(path), files.find(path)->second}};
    };
    options.definitions = {{"N", "1"}};
    options.assertions = {"P [T=\n P", "  not STOP :[never]: {}"};
    ReadResult const result = read_script({"model.csp", "assert P [FD= P include \"one.csp\"\n"
                                                        "P = N == 1 & STOP assert P [F= P"},
                                          options);
    ASSERT_TRUE(result.script) << lines_of(result.diagnostics);
    EXPECT_EQ(heads_of(*result.script), "0:1:1+6 P [FD= P\n"
                                        "4:1:1+6 STOP [T= STOP\n"
                                        "5:2:3+6 STOP :[deadlock free]\n"
                                        "4:3:1+6 STOP [F= STOP\n"
                                        "0:2:19+6 P [F= P\n"
                                        "2:1:1+1 P [T= P\n"
                                        "3:1:3+3 not STOP :[never]: {}\n");
    EXPECT_TRUE(result.script->assertions()[6].is_negated);
}

TEST(Assertions, beside_the_script_are_told_where_they_stand) {
    struct {
        char const* assertion;
        char const* errors; // of source 1
    } const rows[] = {
        {"P [T= PQ", "1:7+2 the process 'PQ' is not defined; did you mean 'P'?\n"},
        {"P", "1:1+1 this asks nothing: write, for example, 'assert P [T= Q' or 'assert P "
              ":[deadlock free]'\n"},
        {"", "1:1+1 unexpected end of '--assert', expected a process\n"},
        {"P [T=", "1:6+1 unexpected end of '--assert', expected a process\n"},
        {"P\n[T= )", "2:5+1 unexpected ')', expected a process\n"},
        {"P [T= Q R = STOP", "1:9+1 one question stands here, and nothing else\n"},
        {"P [T= Q assert P [T= Q", "1:9+6 one question stands here, and nothing else\n"},
        {"assert P [T= Q", "1:1+6 write only what stands behind 'assert'\n"},
        {"P [T= Q channel c", "1:9+7 one question stands here, and nothing else\n"},
    };
    for (auto const& row : rows) {
        ReadOptions options;
        options.assertions = {row.assertion};
        ReadResult const result = read_script({"model.csp", model}, options);
        EXPECT_EQ(lines_of(result.diagnostics), row.errors) << row.assertion;
        for (Diagnostic const& diagnostic : result.diagnostics) {
            EXPECT_EQ(diagnostic.location.source, 1U);
        }
    }
}

/// What only values show, when the assertion is asked for and not before.
TEST(Assertions, go_wrong_when_they_are_asked_for) {
    struct {
        char const* assertion;
        char const* error;
    } const rows[] = {
        {"P [T= a!3 -> P",
         "8:14+3 the event 'a.3' is not declared: 3 is no value of field 1 of 'a'\n"},
        {"COUNT(3) [T= P",
         "5:12+3 the event 'a.3' is not declared: 3 is no value of field 1 of 'a'\n"
         "in COUNT(3), called at 8:8\n"},
        {"P [T= WORD(three ^ head(three))", "8:19+19 '^' wants sequences, and a.0 is an event\n"},
        {"P :[has trace]: a.0",
         "8:24+3 a sequence of events is wanted here, and a.0 is an event\n"},
        {"P :[has trace]: {up}", "8:24+4 a sequence of events is wanted here, and {up} is a set\n"},
        {"P :[has trace]: <a.(5 - 2)>",
         "8:25+9 the event 'a.3' is not declared: 3 is no value of field 1 of 'a'\n"},
        {"P :[has trace]: <x | x <- <1, 2>>",
         "8:24+17 an event is wanted here, and 1 is an integer\n"},
        {"P :[has trace]: <x | x <- <tick, up>>",
         "8:24+21 'tick' ends a trace: nothing stands behind it\n"},
        {"P :[has trace]: <x | x <- <up, a>>",
         "8:24+18 the event 'a' is incomplete: fields are missing, as in 'a.0'\n"},
        {"P :[never]: three",
         "8:20+5 a set of events is wanted here, and <a.0, a.1, a.2> is a sequence\n"},
        {"P :[never]: {1}",
         "8:20+3 a set of events is wanted here, and {1} is a set of other values\n"},
        {"P :[never]: {x | x <- <a>}",
         "8:20+14 the event 'a' is incomplete: fields are missing, as in 'a.0'\n"},
        {"let X(n) = X(n) within X(1) [T= P",
         "8:12+1 recursion without a guard: assert.X(1) runs assert.X(1) from the start\n"},
        {"let f(n) = if n == 0 then head(<>) else 1 + f(n - 1) within a.f(2) -> P [T= P",
         "8:34+8 'head' of an empty sequence\n"
         "in assert.f(0), called at 8:52\n"
         "in assert.f(1), called at 8:52\n"
         "in assert.f(2), called at 8:70\n"},
    };
    for (auto const& row : rows) {
        auto const script = asked(row.assertion);
        ASSERT_TRUE(script) << row.assertion;
        std::string told;
        try {
            (void)script->assertion(0);
        } catch (ScriptError const& error) {
            told = lines_of({error.diagnostic()});
            for (Note const& note : error.diagnostic().notes) {
                told += note.text + "\n";
            }
        }
        EXPECT_EQ(told, row.error) << row.assertion;
    }
}

/// Neither terms nor names come from asking nothing.
TEST(Assertions, cost_nothing_before_they_are_asked_for) {
    std::string const asking = model + repeated("assert COUNT(head(<>)) :[never]: {a.(1 / 0)}\n"
                                                "assert (let X = COUNT(1) within X) [T= P\n",
                                                1000);
    auto const plain = script_of(model);
    auto const script = script_of(asking);
    ASSERT_TRUE(script);
    EXPECT_EQ(script->assertion_count(), 2000U);
    EXPECT_EQ(script->definitions().size(), plain->definitions().size());
    EXPECT_EQ(script->processes().references().size(), plain->processes().references().size());
    for (Script::Definition const& definition : plain->definitions()) {
        EXPECT_EQ(printed_body(*script, definition.name), printed_body(*plain, definition.name));
    }
    (void)script->assertion(1999);
    // COUNT(1), and the COUNT(2) in it.
    EXPECT_EQ(script->processes().references().size(), plain->processes().references().size() + 2);
    EXPECT_THROW((void)script->assertion(0), ScriptError);
}

} // namespace
} // namespace Calder::Script
