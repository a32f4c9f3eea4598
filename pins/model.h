#pragma once

#include "pins/vector_machine.h"
#include "process_compiler/named_process_source.h"

namespace Calder::Pins {

/// A process compiled for engines that know only vectors of numbers.
struct Model {
    std::unique_ptr<StateSpace::Machine const> machine;
    std::shared_ptr<StateSpace::ConfigurationTables> tables;
    std::unique_ptr<VectorMachine const> vectors;
};

/// Compiles the process. One that is a single leaf, or that no machine can follow but that has few
/// enough states to be one leaf, becomes a machine of one leaf. Throws MachineRefusal with the reason
/// where there is none; SearchEnded when `monitor` ends it; and what making an instance throws.
[[nodiscard]] Model make_model(ProcessCompiler::ProcessPointer const& start,
                               ProcessCompiler::NamedProcessSource const& source,
                               StateSpace::ExplorationOptions const& options);

} // namespace Calder::Pins
