#include "refinement/questions.h"

#include "process_compiler/event_numbers.h"
#include "process_compiler/recursion_watch.h"
#include "refinement/evidence_steps.h"
#include "refinement/observers.h"
#include "refinement/offers.h"
#include "state_space/machine/machine_refusal.h"

#include <algorithm>
#include <new>

namespace Calder::Refinement {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::no_event;
using ProcessCompiler::ProcessPointer;
using StateSpace::Outcome;

namespace {

/// What one question has at hand.
struct Asked {
    NamedProcessSource const& source;
    QuestionOptions const& options;
    SearchMonitor& monitor;
    Answer& answer;

    std::unique_ptr<Side> side_of(ProcessPointer const& term, NoMachine& no_machine) const {
        MadeSide made = make_side(term, source, options, options.by_machine, monitor);
        no_machine = std::move(made.no_machine);
        return std::move(made.side);
    }
    std::unique_ptr<Side> concrete_side(ProcessPointer const& term) const {
        return side_of(term, answer.concrete_without_machine);
    }
};

/// Asks within the limits. What ends the question early leaves it undecided; what ends it while the
/// evidence is put together leaves it without.
template <typename Ask> Answer ask_within_limits(NamedProcessSource const& source,
                                                 QuestionOptions const& options, Ask const& ask) {
    SearchMonitor monitor(options, options.by_machine ? SearchMonitor::longest_for_machines
                                                      : SearchMonitor::longest_for_terms);
    StateSpace::StackGuard const stack;
    Answer answer;
    try {
        ProcessCompiler::RecursionWatch const watch(stack.lowest(), [&monitor] {
            if (monitor.is_overdue()) {
                monitor.go_on(SearchMonitor::longest_for_machines);
            }
        });
        ask(Asked{source, options, monitor, answer});
    } catch (std::bad_alloc const&) {
        monitor.stop(Outcome::memory_limit);
    } catch (ProcessCompiler::NestedTooDeeply const&) {
        monitor.stop(Outcome::nesting_limit);
    } catch (StateSpace::SearchEnded const&) { // the monitor knows why
    }
    answer.outcome = monitor.outcome();
    if (answer.outcome != Outcome::complete) { // what was decided before stays so
        answer.evidence = {};
    }
    return answer;
}

/// A machine that turns out, while it runs, to be none is asked again term by term.
template <typename Ask>
Answer ask(NamedProcessSource const& source, QuestionOptions const& options, Ask const& question) {
    try {
        return ask_within_limits(source, options, question);
    } catch (StateSpace::MachineRefusal const& refusal) {
        QuestionOptions by_terms = options;
        by_terms.by_machine = false;
        Answer answer = ask_within_limits(source, by_terms, question);
        answer.concrete_without_machine.reason = refusal.what();
        return answer;
    }
}

/// A search of the concrete side, and what is told of it.
class Search {
  public:
    Search(Side& side, Observer& observer, Asked const& asked)
        : m_side(side), m_answer(asked.answer),
          m_search(side, observer, asked.monitor, asked.options.threads) {}

    /// The counts are told however it ends, and so is what was found.
    std::optional<Finding> run(StateNumber most_depth = StateSpace::no_state) {
        try {
            auto found = m_search.run(most_depth);
            tell_counts();
            return found;
        } catch (...) {
            tell_counts();
            if (m_search.is_decided()) {
                m_answer.verdict = Verdict::fails;
            }
            throw;
        }
    }

    PairSearch& pairs() noexcept { return m_search; }

    /// The way to what was found, and what is there.
    void show(Reason reason, Finding const& found) {
        Evidence& evidence = m_answer.evidence;
        evidence.reason = reason;
        evidence.event = found.event;
        evidence.steps = steps_to(m_search, m_side, found.pair);
        evidence.end = state_of(m_search, m_side, found.pair);
        if (found.kind == Finding::Kind::loop) {
            evidence.loop = loop_through(m_search, m_side, found.loop);
        }
    }

    /// The same with the step that performs the event of the finding.
    void show_with_event(Reason reason, Finding found) {
        show(reason, found);
        found.target.resize(m_side.width()); // which may have grown since
        PairSteps from;
        m_search.find_steps(found.pair, from);
        m_answer.evidence.steps.push_back(described_step(m_side, found.pair, from.state.data(),
                                                         found.event, m_search.pairs().size(),
                                                         found.target.data()));
        m_answer.evidence.end =
            described_state(m_side, m_search.pairs().size(), found.target.data());
    }

  private:
    void tell_counts() {
        m_answer.state_count = m_search.pairs().size();
        m_answer.transition_count = m_search.transition_count();
        m_answer.memory_bytes = m_search.pairs().memory_bytes() + m_side.memory_bytes();
    }

    Side& m_side;
    Answer& m_answer;
    PairSearch m_search;
};

void answer_refinement(Asked const& asked, ProcessPointer const& abstract,
                       ProcessPointer const& concrete, Model model) {
    Answer& answer = asked.answer;
    auto const abstract_side = asked.side_of(abstract, answer.abstract_without_machine);
    auto const side = asked.concrete_side(concrete);
    RefinementObserver observer(*abstract_side, model, asked.monitor);
    Search search(*side, observer, asked);
    auto const found = search.run();
    answer.verdict = found ? Verdict::fails : Verdict::holds;
    if (found) {
        NodeNumber const node = search.pairs().pairs().node(found->pair);
        NormalForm& normal_form = observer.normal_form();
        switch (found->kind) {
        case Finding::Kind::event:
            search.show_with_event(Reason::event, *found);
            answer.evidence.allowed = normal_form.events(node);
            break;
        case Finding::Kind::offer: {
            search.show(Reason::refusal, *found);
            auto const offer = offer_of(search.pairs(), found->pair);
            auto const accepted = *acceptance_of(offer);
            answer.evidence.offered.assign(accepted.begin(), accepted.end());
            answer.evidence.demanded =
                normal_form.acceptance_sets().sets(normal_form.acceptances(node));
            break;
        }
        case Finding::Kind::loop: search.show(Reason::divergence, *found); break;
        }
    }
    answer.machine = side->take_machine();
}

/// A question that fails where an observer without abstract side finds something.
void answer_simple(Asked const& asked, ProcessPointer const& term, Observer& observer) {
    auto const side = asked.concrete_side(term);
    Search search(*side, observer, asked);
    auto const found = search.run();
    asked.answer.verdict = found ? Verdict::fails : Verdict::holds;
    if (found) {
        switch (found->kind) {
        case Finding::Kind::event: search.show_with_event(Reason::event, *found); break;
        case Finding::Kind::offer: search.show(Reason::deadlock, *found); break;
        case Finding::Kind::loop: search.show(Reason::divergence, *found); break;
        }
    }
    asked.answer.machine = side->take_machine();
}

/// The run of the determinisation that has the same trace, and perhaps the event, too.
void show_other_run(Evidence& evidence, std::vector<unsigned> const& trace, unsigned last,
                    Side const& side, Determinisation& determinisation) {
    StateNumber end = NumberedStates::start;
    for (auto const& step : determinisation.run_of(trace, last)) {
        evidence.other.push_back(
            described_step(side, step.source, determinisation.words(step.source).data(), step.event,
                           step.target, determinisation.words(step.target).data()));
        end = step.target;
    }
    evidence.other_end = described_state(side, end, determinisation.words(end).data());
    evidence.other_performs = last != no_event;
}

void show_nondeterminism(Search& search, Finding const& found, Side const& side,
                         DeterminismObserver& observer, Evidence& evidence) {
    Determinisation& determinisation = observer.determinisation();
    std::vector<unsigned> const accepted =
        determinisation.acceptance(search.pairs().pairs().node(found.pair));
    if (found.kind == Finding::Kind::event) {
        search.show(Reason::nondeterminism, found);
        auto const trace = trace_of(evidence.steps);
        search.show_with_event(Reason::nondeterminism, found);
        evidence.offered = accepted;
        show_other_run(evidence, trace, no_event, side, determinisation);
        return;
    }
    search.show(Reason::nondeterminism, found);
    auto const offer = offer_of(search.pairs(), found.pair);
    auto const taken = *acceptance_of(offer);
    evidence.offered.assign(taken.begin(), taken.end());
    evidence.event = *std::find_if(accepted.begin(), accepted.end(), [&](unsigned event) {
        return std::find(taken.begin(), taken.end(), event) == taken.end();
    });
    show_other_run(evidence, trace_of(evidence.steps), evidence.event, side, determinisation);
}

/// The other run, a shortest one of those that end as `observer` forbids.
void find_other_run(Asked const& asked, Side& side, Observer& observer, Evidence& evidence) {
    Search search(side, observer, asked);
    auto const found = search.run();
    evidence.other_performs = found->kind == Finding::Kind::event;
    if (evidence.other_performs) {
        search.show_with_event(Reason::nondeterminism, *found);
    } else {
        search.show(Reason::nondeterminism, *found);
        auto const offer = offer_of(search.pairs(), found->pair);
        auto const accepted = *acceptance_of(offer);
        evidence.offered.assign(accepted.begin(), accepted.end());
    }
    evidence.other = std::move(asked.answer.evidence.steps);
    evidence.other_end = std::move(asked.answer.evidence.end);
}

/// What decides the question after fewer steps, where two runs with the same trace differ so soon. Takes
/// half as many states as the question did and looks a quarter as often at a member of a set of them as
/// it did at a transition, or 1024 of both, and ends without where these do not do: no more time than
/// the question.
void show_sooner(Asked const& asked, Side& side) {
    constexpr StateNumber least_effort = 1024;
    Answer& answer = asked.answer;
    QuestionOptions options = asked.options;
    options.max_states =
        std::min(options.max_states, std::max(answer.state_count / 2, least_effort));
    SearchMonitor monitor(options, SearchMonitor::longest_for_machines);
    Answer sooner;
    Asked const again{asked.source, options, monitor, sooner};
    try {
        UniformityObserver observer(
            side, monitor, std::max<std::uint64_t>(answer.transition_count / 4, least_effort));
        Search search(side, observer, again);
        auto const found = search.run(static_cast<StateNumber>(answer.evidence.steps.size()));
        if (!found) {
            return;
        }
        search.show(Reason::nondeterminism, *found);
        auto const trace = trace_of(sooner.evidence.steps);
        if (found->kind == Finding::Kind::event) {
            search.show_with_event(Reason::nondeterminism, *found);
        }
        if (sooner.evidence.steps.size() >= answer.evidence.steps.size()) {
            return;
        }
        Evidence evidence = std::move(sooner.evidence);
        if (found->kind == Finding::Kind::event) {
            RefusalObserver refuses(trace, evidence.event);
            find_other_run(again, side, refuses, evidence);
        } else {
            auto const offer = offer_of(search.pairs(), found->pair);
            auto const accepted = *acceptance_of(offer);
            evidence.offered.assign(accepted.begin(), accepted.end());
            evidence.event =
                observer.first_refused(search.pairs().pairs().node(found->pair), accepted);
            auto performed = trace;
            performed.push_back(evidence.event);
            TraceObserver performs(performed);
            find_other_run(again, side, performs, evidence);
        }
        answer.evidence = std::move(evidence);
    } catch (StateSpace::SearchEnded const&) {
        // What decided it is evidence enough. The side has the monitor of the question.
        if (!asked.monitor.do_without()) {
            throw;
        }
    } catch (std::bad_alloc const&) { // here, too
    }
}

void answer_determinism(Asked const& asked, ProcessPointer const& term) {
    auto const side = asked.concrete_side(term);
    DeterminismObserver observer(*side, asked.monitor);
    Search search(*side, observer, asked);
    auto const found = search.run();
    asked.answer.verdict = found ? Verdict::fails : Verdict::holds;
    if (found && found->kind == Finding::Kind::loop) {
        search.show(Reason::divergence, *found);
    } else if (found) {
        show_nondeterminism(search, *found, *side, observer, asked.answer.evidence);
    }
    if (found && !asked.answer.evidence.steps.empty()) {
        show_sooner(asked, *side);
    }
    asked.answer.machine = side->take_machine();
}

/// One of the runs that have most of the trace: the first one that got as far.
void show_longest_beginning(PairSearch& search, Side const& side,
                            std::vector<unsigned> const& trace, Evidence& evidence) {
    StateNumber first = 0;
    for (StateNumber pair = 0; pair < search.pairs().size(); ++pair) {
        first = search.pairs().node(pair) > search.pairs().node(first) ? pair : first;
    }
    NodeNumber const length = search.pairs().node(first);
    evidence.reason = Reason::event;
    evidence.event = trace[length];
    evidence.steps = steps_to(search, side, first);
    evidence.end = state_of(search, side, first);
    BitSet offered;
    for (StateNumber pair = first; pair < search.pairs().size(); ++pair) {
        if (search.pairs().node(pair) == length) {
            for (unsigned const event : offer_of(search, pair)) {
                if (event != ProcessCompiler::tau) {
                    offered.insert(event);
                }
            }
        }
    }
    evidence.offered.assign(offered.begin(), offered.end());
}

void answer_trace(Asked const& asked, ProcessPointer const& term,
                  std::vector<unsigned> const& trace) {
    auto const side = asked.concrete_side(term);
    TraceObserver observer(trace);
    Search search(*side, observer, asked);
    auto const found = search.run();
    asked.answer.verdict = found || trace.empty() ? Verdict::holds : Verdict::fails;
    if (found) {
        search.show_with_event(Reason::none, *found);
    } else if (!trace.empty()) {
        show_longest_beginning(search.pairs(), *side, trace, asked.answer.evidence);
    }
    asked.answer.machine = side->take_machine();
}

} // namespace

Answer refinement(ProcessPointer const& abstract, ProcessPointer const& concrete, Model model,
                  NamedProcessSource const& source, QuestionOptions const& options) {
    return ask(source, options,
               [&](Asked const& asked) { answer_refinement(asked, abstract, concrete, model); });
}

Answer deadlock_free(ProcessPointer const& term, NamedProcessSource const& source,
                     QuestionOptions const& options) {
    return ask(source, options, [&](Asked const& asked) {
        DeadlockObserver observer;
        answer_simple(asked, term, observer);
    });
}

Answer divergence_free(ProcessPointer const& term, NamedProcessSource const& source,
                       QuestionOptions const& options) {
    return ask(source, options, [&](Asked const& asked) {
        LoopObserver observer;
        answer_simple(asked, term, observer);
    });
}

Answer deterministic(ProcessPointer const& term, NamedProcessSource const& source,
                     QuestionOptions const& options) {
    return ask(source, options, [&](Asked const& asked) { answer_determinism(asked, term); });
}

Answer has_trace(ProcessPointer const& term, std::vector<unsigned> const& trace,
                 NamedProcessSource const& source, QuestionOptions const& options) {
    return ask(source, options, [&](Asked const& asked) { answer_trace(asked, term, trace); });
}

Answer never(ProcessPointer const& term, BitSet const& events, NamedProcessSource const& source,
             QuestionOptions const& options) {
    return ask(source, options, [&](Asked const& asked) {
        NeverObserver observer(events);
        answer_simple(asked, term, observer);
    });
}

} // namespace Calder::Refinement
