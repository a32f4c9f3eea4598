#pragma once

#include "csp/external_choice_process.h"
#include "csp/prefix_process.h"
#include "process_compiler/named_process_source.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Calder::ProcessCompiler::CSP {

using Step = std::pair<unsigned, ProcessPointer>;
using Steps = std::vector<Step>;

/// What the tests of all constructs share: three events, small terms, and ways to ask a term.
class ConstructTest : public testing::Test {
  protected:
    Session session;
    NamedProcessSource source;
    unsigned const a = session.declare_event("a");
    unsigned const b = session.declare_event("b");
    unsigned const c = session.declare_event("c");
    ProcessPointer const stop{new ExternalChoiceProcess(0U)};

    static ProcessPointer prefix(unsigned event, ProcessPointer const& next) {
        return new PrefixProcess(event, next);
    }
    static ProcessPointer choice(std::initializer_list<ProcessPointer> of) {
        return new ExternalChoiceProcess(OwningArray<ProcessPointer>(of));
    }

    /// All transitions of `term`, or those up to and including number `refused`, which the visitor
    /// answers with false. Checks what the visit itself answers.
    Steps steps(Process const& term, std::size_t refused = SIZE_MAX) const {
        Steps seen;
        bool const answer =
            term.visit_transitions(source, [&](unsigned event, ProcessPointer const& successor) {
                seen.emplace_back(event, successor);
                return seen.size() <= refused;
            });
        EXPECT_EQ(answer, seen.size() <= refused);
        return seen;
    }

    /// The steps as text: `a to b -> (STOP)`, a line each.
    std::string steps_text(Process const& term) const {
        std::string text;
        for (auto const& [event, successor] : steps(term)) {
            text += session.event_object(event)->name() + " to " +
                    Testing::text_of(session, *successor) + "\n";
        }
        return text;
    }

    /// The high-level transitions as text: `[a] a to a -> (STOP), moved`, a line each.
    std::string high_level_text(Process const& term, std::vector<BitSet> const& alphabets) const {
        std::string text;
        term.visit_high_level_transitions(
            alphabets, [&](std::vector<unsigned> const& taking_part, unsigned event,
                           ProcessPointer const& successor, bool replaces) {
                text += "[";
                for (unsigned const participant : taking_part) {
                    text += session.event_object(participant)->name();
                }
                text += "] " + session.event_object(event)->name() + " to " +
                        Testing::text_of(session, *successor) + (replaces ? "\n" : ", moved\n");
            });
        return text;
    }

    /// The formats as text, a line each: `0 runs 0 1: a(0:a)>1 tau(0:tau)>0`. An event number 0
    /// stands as `-`.
    std::string formats_text(Process const& term, std::vector<BitSet> const& alphabets) const {
        std::string text;
        auto const name = [&](unsigned event) {
            return event == no_event ? "-" : session.event_object(event)->name();
        };
        auto const formats = term.high_level_formats(alphabets);
        for (std::size_t index = 0; index < formats->size(); ++index) {
            text += std::to_string(index) + " runs";
            for (unsigned const component : (*formats)[index].active_components) {
                text += " " + std::to_string(component);
            }
            text += ":";
            for (HighLevelMachine::UnCompiledRule const& rule : (*formats)[index].rules) {
                text += " " + name(rule.event) + "(";
                char const* separator = "";
                for (HighLevelMachine::ComponentEvent const& part : rule.component_events) {
                    text += separator + std::to_string(part.component) + ":" + name(part.event);
                    separator = " ";
                }
                text += ")>" + std::to_string(rule.target_format);
                EXPECT_TRUE(rule.extra_components.empty());
            }
            text += "\n";
        }
        return text;
    }

    std::string text(Process const& term, bool abbreviate = false) const {
        return Testing::text_of(session, term, abbreviate);
    }
    std::string description(Process const& term) const {
        return Testing::description_of(session, term);
    }
    std::string operator_text(Process const& term) const {
        return Testing::printed_by(session, [&](Printer& p) { term.pretty_print_operator(p); });
    }

    /// Both comparisons, both ways round, and the hash codes of equals.
    static void expect_equality(Process const& left, Process const& right, bool equal) {
        EXPECT_EQ(left == right, equal);
        EXPECT_EQ(right == left, equal);
        EXPECT_EQ(left != right, !equal);
        EXPECT_EQ(right != left, !equal);
        if (equal) {
            EXPECT_EQ(left.hash_code(), right.hash_code());
        }
    }

    /// Deep clones are new objects all the way down; shallow ones wait for their arguments.
    static void expect_clones(Process const& term) {
        ProcessPointer const deep = term.clone(true);
        expect_equality(term, *deep, true);
        EXPECT_NE(deep.get(), &term);
        ProcessPointer const shallow = term.clone(false);
        EXPECT_EQ(shallow->kind(), term.kind());
        ASSERT_EQ(shallow->argument_count(), term.argument_count());
        OwningArray<ProcessPointer> arguments(term.argument_count());
        for (unsigned i = 0; i < term.argument_count(); ++i) {
            EXPECT_NE(deep->argument(i), term.argument(i));
            EXPECT_EQ(shallow->argument(i), nullptr);
            arguments[i] = term.argument(i);
        }
        EXPECT_EQ(shallow->hash_code(), term.clone(false)->hash_code());
        ProcessPointer const filled = term.clone(false);
        filled->set_arguments(arguments);
        expect_equality(term, *filled, true);
    }
};

} // namespace Calder::ProcessCompiler::CSP
