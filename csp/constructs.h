#pragma once

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
#include "process_compiler/kinds.h"

#include <algorithm>
#include <array>

namespace Calder::ProcessCompiler::CSP {

/// The rows of some constructs, by ascending kind.
template <typename... Constructs> constexpr auto table_of() {
    std::array<Shape, sizeof...(Constructs)> rows{Constructs::shape...};
    std::sort(rows.begin(), rows.end(),
              [](Shape const& left, Shape const& right) { return left.kind < right.kind; });
    return rows;
}

/// What the numbers of a table must be: kinds are how terms are told apart.
template <std::size_t size> constexpr bool no_kind_twice(std::array<Shape, size> const& table) {
    return std::adjacent_find(table.begin(), table.end(), [](auto const& left, auto const& right) {
               return left.kind == right.kind;
           }) == table.end();
}

/// @{
/// The table of the library: every construct has its row here, ascending by kind.
constexpr auto process_shapes =
    table_of<PrefixProcess, EventSetPrefixProcess, ExternalChoiceProcess, InternalChoiceProcess,
             SlidingChoiceProcess, SequentialCompositionProcess, InterruptProcess,
             InterleaveProcess, RunProcess, ChaosProcess>();

constexpr auto operator_shapes =
    table_of<GeneralisedParallelOperator, AlphabetisedParallelOperator, LinkedParallelOperator,
             HideOperator, ProjectOperator, RenameOperator, ExceptionOperator,
             SynchronisingExternalChoiceOperator, SynchronisingInterruptOperator>();
/// @}

static_assert(no_kind_twice(process_shapes) && no_kind_twice(operator_shapes));
static_assert(process_shapes.back().kind < operator_process_kind); // the host's own come above

} // namespace Calder::ProcessCompiler::CSP
