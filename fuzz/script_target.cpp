// Reads each input as a script and does with it what the command would: tells what is wrong with it, or
// prints its last process, explores that by both engines and answers what is asserted.

#include "fuzz/bounds.h"
#include "fuzz/demand.h"
#include "process_compiler/printing.h"
#include "state_space/bisimulation.h"
#include "state_space/deadlock.h"
#include "tools/ask.h"
#include "tools/by_terms_note.h"
#include "tools/evidence_json.h"
#include "tools/evidence_text.h"
#include "tools/machine_json.h"
#include "tools/machine_text.h"
#include "tools/term_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

using namespace Calder;
using Fuzz::Bounds;
using Fuzz::demand;
using ProcessCompiler::NestedTooDeeply;
using Script::ScriptError;
using StateSpace::Outcome;

namespace {

/// Whether a number has 5 to 7 digits. Nothing else in a small input takes seconds that no bound ends: it
/// declares up to a million events. Larger numbers are refused where they are too large.
bool is_laborious(std::string_view text) {
    std::size_t digits = 0;
    for (std::size_t at = 0; at <= text.size(); ++at) {
        if (at < text.size() && text[at] >= '0' && text[at] <= '9') {
            ++digits;
            continue;
        }
        if (digits >= 5 && digits <= 7) {
            return true;
        }
        digits = 0;
    }
    return false;
}

Script::ReadResult read(std::string_view text, std::string const& process) {
    Script::ReadOptions options;
    options.process = process;
    Script::ReadResult result = Script::read_script({"input", std::string(text)}, options);
    demand((result.script == nullptr) == !result.diagnostics.empty(),
           "a script is either read or has diagnostics");
    return result;
}

void tell_errors(Script::ReadResult const& result) {
    std::string const all = Script::render_all(result.diagnostics, result.sources);
    demand(all.ends_with('\n'), "diagnostics are lines");
    std::string const first = Script::render(result.diagnostics.front(), result.sources);
    demand(all.starts_with(first), "the first diagnostic is told first");
}

/// One script and the process that the command would take.
class Subject {
  public:
    Subject(std::string_view text, Script::Script const& script, Bounds const& bounds)
        : m_text(text), m_script(script), m_bounds(bounds),
          m_engines_agree(text.find("tick") == text.npos) {}

    void print(Script::Script::Definition const& definition) const {
        auto const text_of = [](Script::Script const& script, ProcessCompiler::Process const& term,
                                std::uint32_t width, bool abbreviate) {
            return Tools::printed_text(script.session(), [&](ProcessCompiler::Printer& printer) {
                ProcessCompiler::cut_text(printer, Bounds::most_characters);
                printer.line_width = width;
                printer.abbreviate = abbreviate;
                term.pretty_print(printer);
            });
        };
        std::string const text = text_of(m_script, *definition.body, 80, false);
        text_of(m_script, *definition.body, 20, true);
        Tools::printed_text(m_script.session(), [&](ProcessCompiler::Printer& printer) {
            ProcessCompiler::cut_text(printer, Bounds::most_characters);
            definition.body->pretty_print_operator_description(printer);
        });
        if (text.size() >= Bounds::most_characters) {
            return; // it may have been cut
        }
        Script::ReadResult const again = read(m_text, text);
        demand(again.script != nullptr, "what is printed is read again");
        // Of a name on a cycle the body would be what it stands for.
        demand(again.script->asked() != nullptr &&
                   text_of(*again.script, *again.script->asked()->term, 80, false) == text,
               "what is read again prints the same");
    }

    void explore(Script::Script::Definition const& definition) const {
        auto const by_machine = explored_by_machine(definition);
        auto const by_terms = explored_by_terms(definition);
        if (!by_machine || by_machine->run.outcome != Outcome::complete || !m_engines_agree) {
            return;
        }
        demand(by_terms.has_value(), "terms come to no error where the machine comes to none");
        if (by_terms->outcome != Outcome::complete) {
            return;
        }
        demand(StateSpace::are_bisimilar(by_machine->run.lts, by_terms->lts),
               "the machine is bisimilar to the terms");
        auto const deadlock = StateSpace::find_deadlock(by_terms->lts);
        auto const other = StateSpace::find_deadlock(by_machine->run.lts);
        demand(deadlock.has_value() == other.has_value(), "both engines find a deadlock or none");
        demand(!deadlock || deadlock->trace.size() == other->trace.size(),
               "both engines find a shortest way to a deadlock");
    }

    void answer(std::size_t number) const {
        Script::Assertion const assertion = m_script.assertion(number);
        auto const by_machine = answered(assertion, true);
        auto const by_terms = answered(assertion, false);
        using Refinement::Verdict;
        if (m_engines_agree && by_machine.verdict != Verdict::undecided &&
            by_terms.verdict != Verdict::undecided) {
            demand(by_machine.verdict == by_terms.verdict, "both engines give the same answer");
        }
    }

  private:
    std::optional<StateSpace::Exploration>
    explored_by_terms(Script::Script::Definition const& definition) const {
        try {
            return StateSpace::explore(definition.term, m_script.processes(),
                                       m_bounds.options<StateSpace::ExplorationOptions>());
        } catch (ScriptError const& error) {
            demand(*error.what() != '\0', "an error is told");
            return std::nullopt;
        }
    }

    /// None where there is no machine, and where a component by itself comes to an error of values.
    std::optional<StateSpace::MachineExploration>
    explored_by_machine(Script::Script::Definition const& definition) const {
        try {
            StateSpace::MachineExploration found = StateSpace::explore_by_machine(
                definition.term, m_script.processes(), m_bounds.options<StateSpace::RunOptions>());
            if (!found.run.refusal.empty()) {
                Tools::by_terms_note("P is", found.run.refusal, found.refused, m_script);
                return std::nullopt;
            }
            if (found.machine) {
                show(found);
            }
            return found;
        } catch (ScriptError const& error) {
            Tools::by_terms_note("P is", error);
            return std::nullopt;
        }
    }

    /// As `calder machine` does, and `calder explore --deadlock`.
    void show(StateSpace::MachineExploration const& found) const {
        Tools::LeafNames const names(m_script, *found.machine);
        Tools::ShownMachine const shown{"P", *found.machine, m_script, names};
        demand(!Tools::machine_text(shown).empty(), "a machine has a text");
        Tools::write_machine_json(shown, [](std::string_view) {});
        auto const deadlock = StateSpace::find_deadlock(found.run.lts);
        for (std::size_t step = 0; deadlock && step < deadlock->trace.size(); ++step) {
            bool const is_last = step + 1 == deadlock->trace.size();
            Tools::names_taking_part(names, found, deadlock->sources[step], deadlock->trace[step],
                                     is_last ? deadlock->state : deadlock->sources[step + 1]);
        }
    }

    Refinement::Answer answered(Script::Assertion const& assertion, bool by_machine) const {
        auto options = m_bounds.options<Refinement::QuestionOptions>();
        options.by_machine = by_machine;
        Refinement::Answer answer =
            Tools::ask(assertion, m_script, options, [](Tools::Message const& note) {
                demand(note.shown().ends_with('\n'), "a note is lines");
            });
        Tools::Answered const answered{m_script, assertion, answer, 0};
        Tools::evidence_text(answered);
        std::function<void(std::string_view)> const ignore = [](std::string_view) {};
        Tools::JsonWriter json(ignore);
        json.begin_object();
        Tools::write_evidence_json(answered, json);
        json.end_object();
        json.finish();
        return answer;
    }

    std::string_view m_text;
    Script::Script const& m_script;
    Bounds const& m_bounds;
    /// The places in which they are meant to differ all have to do with tick, which only that word
    /// brings into a set.
    bool m_engines_agree;
};

/// What may end work on a part of an input without that being a fault.
template <typename Work> void within_bounds(Bounds const& bounds, Work const& work) {
    if (bounds.are_met()) {
        return;
    }
    try {
        work();
    } catch (ScriptError const& error) {
        demand(*error.what() != '\0', "an error is told");
    } catch (NestedTooDeeply const&) { // told by the command
    } catch (Fuzz::TooMuchWork const&) {
    }
}

void use(std::string_view text, Script::Script const& script, Bounds const& bounds) {
    Subject const subject(text, script, bounds);
    if (!script.definitions().empty()) {
        auto const& last = script.definitions().back();
        within_bounds(bounds, [&] { subject.print(last); });
        within_bounds(bounds, [&] { subject.explore(last); });
    }
    std::size_t const count = std::min(script.assertion_count(), Bounds::most_assertions);
    for (std::size_t number = 0; number < count; ++number) {
        within_bounds(bounds, [&] { subject.answer(number); });
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const text(reinterpret_cast<char const*>(data), size);
    if (is_laborious(text)) {
        return 0;
    }
    Bounds const bounds;
    within_bounds(bounds, [&] {
        Script::ReadResult const result = read(text, "");
        if (result.script) {
            use(text, *result.script, bounds);
        } else {
            tell_errors(result);
        }
    });
    return 0;
}
