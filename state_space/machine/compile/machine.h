#pragma once

#include "process_compiler/process.h"
#include "state_space/export.h"
#include "state_space/machine/compile/leaf.h"

#include <memory>
#include <vector>

namespace Calder::StateSpace {

/// Where a part stands in Machine::parts.
using PartNumber = std::uint32_t;
/// No part, leaf, argument or place has this number.
constexpr std::uint32_t none = 0xFFFFFFFF;

/// The largest number of an event: the bit above marks the events of steps that may repeat.
constexpr unsigned most_event = 0x7FFFFFFF;

/// Where the argument stands among those that run in the format; `none` when it does not run.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::uint32_t
place_of(unsigned argument, HighLevelMachine::UnCompiledFormat const& format) noexcept;

/// Whether all who take part in the rule of the format can do so: they run in it, and have the event
/// in their alphabets, of which there is one for each argument.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT bool
can_fire(HighLevelMachine::UnCompiledRule const& rule,
         HighLevelMachine::UnCompiledFormat const& format,
         std::vector<BitSet> const& alphabets) noexcept;

/// A piece of a machine: a leaf, or a construct with its formats over other parts.
struct Part {
    /// What it was compiled from.
    ProcessCompiler::ProcessPointer term;
    /// What it can perform: of a leaf exactly what some state does; of a construct, the events of
    /// the rules that can fire given the alphabets of its arguments.
    BitSet alphabet{};
    /// The number of the leaf; `none` for a construct.
    std::uint32_t leaf = none;
    /// Of a construct: the parts in the order of its arguments.
    std::vector<PartNumber> arguments{};
    /// Of a construct: what it said of itself over the alphabets of its arguments.
    ProcessCompiler::Formats formats{};
    /// By format: the argument that it lets through unchanged and alone; `none` for all others.
    std::vector<std::uint32_t> passed_through{};

    /// Whether it is one; otherwise it is a leaf.
    [[nodiscard]] bool is_construct() const noexcept { return leaf == none; }
};

/// A term compiled: a tree of constructs, each with formats and rules, and explicit transition
/// systems as its leaves. It is kept as a graph: what occurs twice stands there once, and what
/// recurs leads back.
struct Machine {
    /// The part that is the whole term.
    PartNumber start = 0;
    /// By number.
    std::vector<Part> parts;
    /// Equal terms are one leaf.
    std::vector<std::unique_ptr<Leaf const>> leaves;
};

} // namespace Calder::StateSpace
