#pragma once

#include "state_space/exploration.h"
#include "state_space/machine/component.h"
#include "state_space/machine/term_graph.h"

#include <memory>
#include <string>

namespace Calder::StateSpace {

using PartNumber = std::uint32_t;
constexpr std::uint32_t none = 0xFFFFFFFF;

/// A piece of a machine: a component, or a construct with its formats over other parts.
struct Part {
    ProcessCompiler::ProcessPointer term;
    /// What it can perform: of a component exactly what some state does; of a construct, the events
    /// of the rules that can fire given the alphabets of its arguments.
    BitSet alphabet{};
    /// The number of the component; `none` for a construct.
    std::uint32_t component = none;
    std::vector<PartNumber> arguments{};
    ProcessCompiler::Formats formats{};
    /// By format: the argument that it lets through unchanged and alone; `none` for all others.
    std::vector<std::uint32_t> passed_through{};

    bool is_construct() const noexcept { return component == none; }
};

/// A term compiled: a tree of constructs, each with formats and rules, and explicit components at
/// its leaves. It is kept as a graph: what occurs twice stands there once, and what recurs leads
/// back.
struct Machine {
    PartNumber start = 0;
    std::vector<Part> parts;
    /// Equal terms are one component.
    std::vector<std::unique_ptr<Component const>> components;
};

struct Compilation {
    /// Null when there is none.
    std::unique_ptr<Machine const> machine;
    /// Why the term cannot be compiled, a part of a sentence; empty when the outcome says it.
    std::string refusal;
    Outcome outcome = Outcome::complete;
};

struct CompilationOptions {
    /// A component with more states refuses the compilation: the network around it may reach only
    /// few of them.
    StateNumber max_component_states = 1'000'000;
    std::uint64_t max_memory = 0;
    std::function<bool(Progress const&)> progress = nullptr;
};

/// Compiles the start of the graph by what the constructs say of themselves; no construct is known
/// here. Refuses a graph in which recursion was refused. The demands on `source` are those of
/// `explore`.
Compilation compile(TermGraph graph, ProcessCompiler::NamedProcessSource const& source,
                    CompilationOptions const& options = {});

} // namespace Calder::StateSpace
