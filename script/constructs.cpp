#include "script/constructs.h"

#include "csp/alphabetised_parallel_operator.h"
#include "csp/chaos_process.h"
#include "csp/event_set_prefix_process.h"
#include "csp/exception_operator.h"
#include "csp/external_choice_process.h"
#include "csp/generalised_parallel_operator.h"
#include "csp/hide_operator.h"
#include "csp/interleave_process.h"
#include "csp/internal_choice_process.h"
#include "csp/interrupt_process.h"
#include "csp/linked_parallel_operator.h"
#include "csp/prefix_process.h"
#include "csp/project_operator.h"
#include "csp/rename_operator.h"
#include "csp/run_process.h"
#include "csp/sequential_composition_process.h"
#include "csp/sliding_choice_process.h"
#include "csp/synchronising_external_choice_operator.h"
#include "csp/synchronising_interrupt_operator.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Calder::Script {

namespace {

using ProcessCompiler::OperatorPointer;
using ProcessCompiler::OperatorProcess;
using ProcessCompiler::ProcessPointer;
using namespace ProcessCompiler::CSP;

ProcessPointer build_stop(Parts const&) {
    return new ExternalChoiceProcess(0U);
}

ProcessPointer build_skip(Parts const&) {
    return new InterleaveProcess(0U);
}

/// RUN and CHAOS.
template <typename Made> ProcessPointer build_over_set(Parts const& parts) {
    return new Made(parts.sets[0]);
}

ProcessPointer build_prefix(Parts const& parts) {
    return new PrefixProcess(parts.events[0], parts.processes[0]);
}

ProcessPointer build_event_set_prefix(Parts const& parts) {
    return new EventSetPrefixProcess(parts.sets[0], parts.processes[0]);
}

template <typename Made> ProcessPointer build_of_two(Parts const& parts) {
    return new Made(parts.processes[0], parts.processes[1]);
}

template <typename Made> ProcessPointer build_chain(Parts const& parts) {
    return new Made(parts.processes);
}

ProcessPointer applied(OperatorPointer const& made, Parts const& parts) {
    return new OperatorProcess(made, parts.processes);
}

/// The operators over one set.
template <typename Made> ProcessPointer apply_over_set(Parts const& parts) {
    return applied(new Made(parts.sets[0]), parts);
}

ProcessPointer apply_alphabetised_parallel(Parts const& parts) {
    return applied(new AlphabetisedParallelOperator(parts.sets), parts);
}

using Pairs = FixedArray<std::pair<unsigned, unsigned>>;

Pairs pairs_of(std::vector<unsigned> const& events) {
    Pairs pairs(events.size() / 2);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i] = {events[2 * i], events[2 * i + 1]};
    }
    return pairs;
}

/// A renaming keeps the pairs of one event, and prints them all, in the reverse of the order in
/// which it is given them: given the text backwards, it is in the order of the text.
ProcessPointer apply_renaming(Parts const& parts) {
    Pairs pairs = pairs_of(parts.events);
    std::reverse(pairs.begin(), pairs.end());
    return applied(new RenameOperator(pairs), parts);
}

ProcessPointer apply_linked_parallel(Parts const& parts) {
    return applied(new LinkedParallelOperator(pairs_of(parts.events)), parts);
}

constexpr std::array entries{
    ConstructEntry{Construct::stop, "STOP", 0, Association::none, build_stop},
    ConstructEntry{Construct::skip, "SKIP", 0, Association::none, build_skip},
    ConstructEntry{Construct::run, "RUN", 0, Association::none, build_over_set<RunProcess>},
    ConstructEntry{Construct::chaos, "CHAOS", 0, Association::none, build_over_set<ChaosProcess>},
    ConstructEntry{Construct::replicated_parallel, "replicated alphabetised parallel", 0,
                   Association::none, apply_alphabetised_parallel},
    ConstructEntry{Construct::renaming, "renaming", 1, Association::left, apply_renaming},
    ConstructEntry{Construct::prefix, "prefix", 2, Association::right, build_prefix},
    ConstructEntry{Construct::event_set_prefix, "event-set prefix", 2, Association::right,
                   build_event_set_prefix},
    ConstructEntry{Construct::sequential_composition, "sequential composition", 3,
                   Association::right, build_of_two<SequentialCompositionProcess>},
    ConstructEntry{Construct::sliding_choice, "sliding choice", 4, Association::left,
                   build_of_two<SlidingChoiceProcess>},
    ConstructEntry{Construct::interrupt, "interrupt", 5, Association::left,
                   build_of_two<InterruptProcess>},
    ConstructEntry{Construct::synchronising_interrupt, "synchronising interrupt", 5,
                   Association::left, apply_over_set<SynchronisingInterruptOperator>},
    ConstructEntry{Construct::external_choice, "external choice", 6, Association::nary,
                   build_chain<ExternalChoiceProcess>},
    ConstructEntry{Construct::synchronising_external_choice, "synchronising external choice", 6,
                   Association::nary, apply_over_set<SynchronisingExternalChoiceOperator>},
    ConstructEntry{Construct::internal_choice, "internal choice", 7, Association::nary,
                   build_chain<InternalChoiceProcess>},
    ConstructEntry{Construct::generalised_parallel, "generalised parallel", 8, Association::nary,
                   apply_over_set<GeneralisedParallelOperator>},
    ConstructEntry{Construct::alphabetised_parallel, "alphabetised parallel", 8, Association::none,
                   apply_alphabetised_parallel},
    ConstructEntry{Construct::linked_parallel, "linked parallel", 8, Association::none,
                   apply_linked_parallel},
    ConstructEntry{Construct::exception, "exception", 8, Association::none,
                   apply_over_set<ExceptionOperator>},
    ConstructEntry{Construct::interleaving, "interleaving", 9, Association::nary,
                   build_chain<InterleaveProcess>},
    ConstructEntry{Construct::hiding, "hiding", 10, Association::left,
                   apply_over_set<HideOperator>},
    ConstructEntry{Construct::projection, "projection", 10, Association::left,
                   apply_over_set<ProjectOperator>},
};

constexpr bool entries_stand_in_order() {
    for (std::size_t index = 0; index < entries.size(); ++index) {
        if (static_cast<std::size_t>(entries[index].construct) != index) {
            return false;
        }
    }
    return entries.back().construct == Construct::projection;
}
static_assert(entries_stand_in_order());

} // namespace

ConstructEntry const& entry_of(Construct construct) {
    return entries[static_cast<std::size_t>(construct)];
}

} // namespace Calder::Script
