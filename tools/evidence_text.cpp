#include "tools/evidence_text.h"

#include "process_compiler/event_numbers.h"
#include "tools/step_lines.h"
#include "tools/summary.h"
#include "tools/waiting_text.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

#include <algorithm>

namespace Calder::Tools {

using ProcessCompiler::tick;
using Refinement::EvidenceStep;
using Refinement::Reason;
using Refinement::Verdict;
using Script::Question;

namespace {

class EvidenceText {
  public:
    explicit EvidenceText(Answered const& answered)
        : m_answered(answered), m_evidence(answered.answer.evidence),
          m_names(answered.script, answered.answer.machine),
          m_abstract(short_name(answered.assertion.abstract_name)),
          m_concrete(short_name(answered.assertion.concrete_name)) {}

    std::string run() {
        StateSpace::Outcome const outcome = m_answered.answer.outcome;
        if (m_answered.answer.verdict == Verdict::undecided) {
            tell("reason", std::string(describe(outcome)));
        } else if (outcome != StateSpace::Outcome::complete) {
            tell("evidence", fmt::format("none: {} before it was put together", describe(outcome)));
        } else {
            tell_evidence();
        }
        return std::move(m_text);
    }

  private:
    void tell(char const* title, std::string const& text) { m_text += titled_line(title, text); }

    void tell_evidence() {
        switch (m_evidence.reason) {
        case Reason::none: tell_holding(); break;
        case Reason::event: tell_event(); break;
        case Reason::refusal: tell_refusal(); break;
        case Reason::divergence: tell_divergence(); break;
        case Reason::deadlock: tell_deadlock(); break;
        case Reason::nondeterminism: tell_nondeterminism(); break;
        }
    }

    void tell_holding() {
        if (m_answered.assertion.question == Question::has_trace) {
            if (!m_evidence.steps.empty()) {
                tell("trace", fmt::format("{} goes through it like this", m_concrete));
                tell_steps("", m_evidence.steps);
            }
        } else if (m_answered.assertion.is_negated) {
            tell("because", holding_text());
        }
    }

    std::string holding_text() const {
        switch (m_answered.assertion.question) {
        case Question::trace_refinement:
            return fmt::format("every trace of {} is one of {}", m_concrete, m_abstract);
        case Question::failures_refinement:
            return fmt::format("every trace and every refusal of {} is one of {}", m_concrete,
                               m_abstract);
        case Question::failures_divergences_refinement:
            return fmt::format("every refusal and every divergence of {} is one of {}", m_concrete,
                               m_abstract);
        case Question::deadlock_free: return fmt::format("{} has no deadlock", m_concrete);
        case Question::divergence_free: return fmt::format("{} does not diverge", m_concrete);
        case Question::deterministic: return fmt::format("{} is deterministic", m_concrete);
        case Question::never: return fmt::format("{} performs none of them", m_concrete);
        case Question::has_trace: break; // its run is told
        }
        return {};
    }

    void tell_event() {
        std::string const event = m_names.event(m_evidence.event);
        std::size_t const steps = m_evidence.steps.size();
        if (m_answered.assertion.question == Question::has_trace) {
            tell("event", steps == 0
                              ? fmt::format("{} cannot begin with {}", m_concrete, event)
                              : fmt::format("{} goes no further than this: it cannot do {} then",
                                            m_concrete, event));
            tell_steps("", m_evidence.steps);
            tell("possible", "then: " + event_list(m_evidence.offered));
            return;
        }
        bool const is_never = m_answered.assertion.question == Question::never;
        std::string const wrong =
            !is_never ? "which " + m_abstract + " does not allow there"
            : m_answered.assertion.is_negated // whoever asks so wants it, or expects it
                ? "one of the events asked about"
                : "which must never happen";
        tell("event",
             fmt::format("{} {} performs {}, {}", after(steps - 1), m_concrete, event, wrong));
        tell_steps("", m_evidence.steps);
        if (!is_never) {
            tell("allowed", fmt::format("by {}: {}", m_abstract, event_list(m_evidence.allowed)));
        }
    }

    void tell_refusal() {
        tell("refusal", fmt::format("{} {} refuses more than {} ever does there",
                                    after(m_evidence.steps.size()), m_concrete, m_abstract));
        tell_steps("", m_evidence.steps);
        tell_state(m_evidence.end);
        tell("offered", fmt::format("by {}: {}", m_concrete, offer_text()));
        if (m_evidence.demanded.empty()) {
            tell("demanded", fmt::format("by {}: that it goes on silently, for it never comes to "
                                         "rest there",
                                         m_abstract));
            return;
        }
        std::vector<std::string> sets;
        for (std::vector<unsigned> const& set : m_evidence.demanded) {
            sets.push_back("{" + demand_text(set) + "}");
        }
        tell("demanded", fmt::format("by {} at least: {}", m_abstract, listed(sets, " or ")));
    }

    /// A long set has in front what is refused of it, which would be cut among what is offered.
    std::string demand_text(std::vector<unsigned> const& set) const {
        if (set.size() <= most_listed) {
            return listed(m_names.events(set));
        }
        std::vector<unsigned> refused;
        for (unsigned const event : set) {
            if (std::find(m_evidence.offered.begin(), m_evidence.offered.end(), event) ==
                m_evidence.offered.end()) {
                refused.push_back(event);
            }
        }
        std::size_t const offered = set.size() - refused.size();
        return listed(m_names.events(refused)) +
               (offered == 0 ? "" : fmt::format(", and {} of the offered", offered));
    }

    void tell_divergence() {
        bool const is_refinement = !m_answered.assertion.abstract_name.empty();
        tell("divergence",
             fmt::format("{} {} can go on silently for ever{}", after(m_evidence.steps.size()),
                         m_concrete,
                         is_refinement ? ", which " + m_abstract + " cannot there" : ""));
        tell_steps("", m_evidence.steps);
        tell_state(m_evidence.end);
        tell_steps("loop", m_evidence.loop);
    }

    void tell_deadlock() {
        tell("deadlock", fmt::format("{} nothing can happen any more in {}",
                                     after(m_evidence.steps.size()), m_concrete));
        tell_steps("", m_evidence.steps);
        tell_state(m_evidence.end);
        m_text += waiting_text(waiting_in(m_answered.answer.machine, m_evidence.end),
                               m_evidence.end, m_names);
    }

    void tell_nondeterminism() {
        std::string const event = m_names.event(m_evidence.event);
        auto const& doing = m_evidence.other_performs ? m_evidence.other : m_evidence.steps;
        auto const& refusing = m_evidence.other_performs ? m_evidence.steps : m_evidence.other;
        tell(
            "two runs",
            fmt::format("of {} with the same events; then the first does {} and the second refuses "
                        "it",
                        m_concrete, event));
        tell_steps("first", doing);
        if (refusing.empty()) {
            tell("second", "at the start");
        } else {
            tell_steps("second", refusing);
        }
        tell_state(m_evidence.other_performs ? m_evidence.end : m_evidence.other_end);
        tell("offered", "after the second: " + offer_text());
    }

    /// Of a machine there is no term; the components are told.
    void tell_state(Refinement::RunState const& state) {
        if (std::string const term = m_names.term(state); !term.empty()) {
            tell("state", term);
        }
    }

    std::string event_list(std::vector<unsigned> const& events) const {
        return events.empty() ? "nothing" : listed(m_names.events(events));
    }

    std::string offer_text() const {
        bool const may_end = m_evidence.offered == std::vector<unsigned>{tick};
        return event_list(m_evidence.offered) +
               (may_end ? ", and who may end may refuse all else" : "");
    }

    void tell_steps(char const* title, std::vector<EvidenceStep> const& steps) {
        m_text += step_lines(title, steps, m_names);
    }

    Answered const& m_answered;
    Refinement::Evidence const& m_evidence;
    RunNames m_names;
    std::string m_abstract;
    std::string m_concrete;
    std::string m_text;
};

} // namespace

std::string evidence_text(Answered const& answered) {
    return EvidenceText(answered).run();
}

} // namespace Calder::Tools
