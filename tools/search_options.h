#pragma once

#include <cstdint>
#include <optional>

namespace Calder::Tools {

/// By what a command goes through what a process does.
enum class Engine {
    /// The machine that the process compiles to; where it does not compile, its terms.
    machine,
    terms,
};

/// What every command takes that goes through what processes do.
struct SearchOptions {
    Engine engine = Engine::machine;
    /// How many threads work for the machine; by default all that there are.
    std::optional<unsigned> threads;
    std::optional<std::uint32_t> max_states;
    std::optional<std::uint64_t> max_memory_mib;
    bool progress = false;
    bool quiet = false;

    /// What was asked for, otherwise most of what is free, in bytes.
    std::uint64_t memory_limit() const;
    unsigned thread_count() const;
    /// A terminal is shown it without being asked for. Programs are not: it is no message.
    bool shows_progress() const;
};

} // namespace Calder::Tools
