#pragma once

#include "process_compiler/named_process_source.h"
#include "state_space/machine/machine_exploration.h"

#include <benchmark/benchmark.h>

#include <cstdint>

namespace Calder::Benchmarks {

/// How often memory was asked for since the program began.
std::uint64_t allocations();

/// What of it is not given back, in bytes.
std::uint64_t bytes_in_use();

/// Reports transitions a second, and how often memory was asked for a transition.
void report_transitions(benchmark::State& state, std::uint64_t transitions,
                        std::uint64_t allocated);

/// Explores `start` again and again and counts: states and transitions of one exploration,
/// transitions a second, how often memory was asked for a transition, and the most that was held at
/// any time for each state, terms and tables and all.
void measure_exploration(benchmark::State& state, ProcessCompiler::ProcessPointer const& start,
                         ProcessCompiler::NamedProcessSource const& source);

/// Compiles `start` and runs the machine again and again; counts the same but for allocations, and
/// of the bytes those of the states and their table.
void measure_machine(benchmark::State& state, ProcessCompiler::ProcessPointer const& start,
                     ProcessCompiler::NamedProcessSource const& source,
                     StateSpace::RunOptions const& options);

/// Compiles `start` again and again, up to the table of its first configuration.
void measure_compilation(benchmark::State& state, ProcessCompiler::ProcessPointer const& start,
                         ProcessCompiler::NamedProcessSource const& source);

/// Asks `term` for its transitions, over and over, and counts those and allocations: what is
/// measured is the construct alone.
void measure_visit(benchmark::State& state, ProcessCompiler::ProcessPointer const& term,
                   ProcessCompiler::NamedProcessSource const& source);

} // namespace Calder::Benchmarks
