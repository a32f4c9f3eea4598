#pragma once

#include "state_space/lts_files.h"
#include "tools/input.h"

#include <cstdint>
#include <optional>

namespace Calder::Tools {

/// By what `calder explore` explores.
enum class Engine {
    /// The machine that the process compiles to; where it does not compile, its terms.
    machine,
    terms,
};

struct ExploreOptions {
    Input input;
    Engine engine = Engine::machine;
    /// How many threads work for the machine; by default all that there are.
    std::optional<unsigned> threads;
    std::optional<std::uint32_t> max_states;
    std::optional<std::uint64_t> max_memory_mib;
    /// Empty for no file.
    std::string output;
    /// How tau is written in an .aut file.
    std::string tau_label = "tau";
    bool deadlock = false;
    bool progress = false;
    bool quiet = false;
};

/// `calder explore`: explores the process, prints the counts, and writes the file asked for.
int explore_process(ExploreOptions const& options);

} // namespace Calder::Tools
