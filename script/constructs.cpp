#include "script/constructs.h"

#include "csp/constructs.h"

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
    if (parts.events.empty()) {
        return new EventSetPrefixProcess(parts.sets[0], parts.processes[0]);
    }
    return new PrefixProcess(parts.events[0], parts.processes[0]);
}

/// A condition decides before there is a term.
ProcessPointer build_guarded(Parts const& parts) {
    return parts.processes[0];
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

using Build = ProcessPointer (*)(Parts const&);

/// What the construct's own row says of the notation: how tight it binds, and how it associates.
template <typename Made>
constexpr ConstructEntry entry(Construct construct, char const* name, Build build) {
    constexpr std::array associations{Association::left, Association::right, Association::none};
    return {construct,
            name,
            Made::shape.precedence,
            associations[Made::shape.associativity],
            Made::shape.level == Level::high,
            build};
}

/// Of a construct whose chain is one term.
template <typename Made>
constexpr ConstructEntry chain(Construct construct, char const* name, Build build) {
    return {construct,
            name,
            Made::shape.precedence,
            Association::nary,
            Made::shape.level == Level::high,
            build};
}

constexpr std::array entries{
    ConstructEntry{Construct::stop, "STOP", 0, Association::none, false, build_stop},
    ConstructEntry{Construct::skip, "SKIP", 0, Association::none, false, build_skip},
    entry<RunProcess>(Construct::run, "RUN", build_over_set<RunProcess>),
    entry<ChaosProcess>(Construct::chaos, "CHAOS", build_over_set<ChaosProcess>),
    ConstructEntry{Construct::paired_parallel, "replicated alphabetised parallel", 0,
                   Association::none, true, apply_alphabetised_parallel},
    entry<RenameOperator>(Construct::renaming, "renaming", apply_renaming),
    entry<PrefixProcess>(Construct::prefix, "prefix", build_prefix),
    ConstructEntry{Construct::guard, "condition", PrefixProcess::shape.precedence,
                   Association::right, false, build_guarded},
    entry<SequentialCompositionProcess>(Construct::sequential_composition, "sequential composition",
                                        build_of_two<SequentialCompositionProcess>),
    entry<SlidingChoiceProcess>(Construct::sliding_choice, "sliding choice",
                                build_of_two<SlidingChoiceProcess>),
    entry<InterruptProcess>(Construct::interrupt, "interrupt", build_of_two<InterruptProcess>),
    entry<SynchronisingInterruptOperator>(Construct::synchronising_interrupt,
                                          "synchronising interrupt",
                                          apply_over_set<SynchronisingInterruptOperator>),
    chain<ExternalChoiceProcess>(Construct::external_choice, "external choice",
                                 build_chain<ExternalChoiceProcess>),
    chain<SynchronisingExternalChoiceOperator>(Construct::synchronising_external_choice,
                                               "synchronising external choice",
                                               apply_over_set<SynchronisingExternalChoiceOperator>),
    chain<InternalChoiceProcess>(Construct::internal_choice, "internal choice",
                                 build_chain<InternalChoiceProcess>),
    chain<GeneralisedParallelOperator>(Construct::generalised_parallel, "generalised parallel",
                                       apply_over_set<GeneralisedParallelOperator>),
    entry<AlphabetisedParallelOperator>(Construct::alphabetised_parallel, "alphabetised parallel",
                                        apply_alphabetised_parallel),
    entry<LinkedParallelOperator>(Construct::linked_parallel, "linked parallel",
                                  apply_linked_parallel),
    entry<ExceptionOperator>(Construct::exception, "exception", apply_over_set<ExceptionOperator>),
    chain<InterleaveProcess>(Construct::interleaving, "interleaving",
                             build_chain<InterleaveProcess>),
    entry<HideOperator>(Construct::hiding, "hiding", apply_over_set<HideOperator>),
    entry<ProjectOperator>(Construct::projection, "projection", apply_over_set<ProjectOperator>),
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
static_assert(AlphabetisedParallelOperator::shape.level == Level::high);
static_assert(PrefixProcess::shape.precedence == EventSetPrefixProcess::shape.precedence);

} // namespace

ProcessPointer make_prefix(unsigned event, ProcessPointer const& process) {
    return new PrefixProcess(event, process);
}

ConstructEntry const& entry_of(Construct construct) {
    return entries[static_cast<std::size_t>(construct)];
}

} // namespace Calder::Script
