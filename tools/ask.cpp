#include "tools/ask.h"

#include "tools/by_terms_note.h"

#include <fmt/core.h>

namespace Calder::Tools {

using Refinement::Answer;
using Refinement::Model;
using Refinement::QuestionOptions;
using Script::Question;

namespace {

Answer ask_once(Script::Assertion const& assertion, Script::Script const& script,
                QuestionOptions const& options) {
    auto const& source = script.processes();
    auto const refines = [&](Model model) {
        return Refinement::refinement(assertion.abstract, assertion.concrete, model, source,
                                      options);
    };
    switch (assertion.question) {
    case Question::trace_refinement: return refines(Model::traces);
    case Question::failures_refinement: return refines(Model::failures);
    case Question::failures_divergences_refinement: return refines(Model::failures_divergences);
    case Question::deadlock_free:
        return Refinement::deadlock_free(assertion.concrete, source, options);
    case Question::divergence_free:
        return Refinement::divergence_free(assertion.concrete, source, options);
    case Question::deterministic:
        return Refinement::deterministic(assertion.concrete, source, options);
    case Question::has_trace:
        return Refinement::has_trace(assertion.concrete, assertion.trace, source, options);
    case Question::never:
        return Refinement::never(assertion.concrete, assertion.events, source, options);
    }
    return {};
}

void take_notes(Answer const& answer, Script::Assertion const& assertion,
                Script::Script const& script, TakeNote const& take_note) {
    auto const take = [&](std::string const& name, Refinement::NoMachine const& no_machine) {
        if (!no_machine.reason.empty()) {
            take_note(by_terms_note(name + " is", no_machine.reason, no_machine.refused, script));
        }
    };
    take(assertion.abstract_name, answer.abstract_without_machine);
    take(assertion.concrete_name, answer.concrete_without_machine);
}

} // namespace

Answer ask(Script::Assertion const& assertion, Script::Script const& script,
           QuestionOptions const& options, TakeNote const& take_note) {
    try {
        Answer answer = ask_once(assertion, script, options);
        take_notes(answer, assertion, script, take_note);
        return answer;
    } catch (Script::ScriptError const& error) {
        if (!options.by_machine) {
            throw;
        }
        take_note(by_terms_note(
            assertion.abstract_name.empty()
                ? assertion.concrete_name + " is"
                : fmt::format("{} and {} are", assertion.abstract_name, assertion.concrete_name),
            error));
    }
    QuestionOptions by_terms = options;
    by_terms.by_machine = false;
    return ask_once(assertion, script, by_terms);
}

} // namespace Calder::Tools
