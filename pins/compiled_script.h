#pragma once

#include "pins/model.h"
#include "script/script_file.h"

#include <memory>
#include <string>

namespace Calder::Pins {

/// A process of a script, compiled for engines of vectors.
struct CompiledScript {
    /// What the model was made of and still refers to.
    std::unique_ptr<Script::Script const> script;
    Model model;
};

/// Reads the script and compiles the process that is wanted. Uses no more than most of the memory
/// that there is. Throws what `words_of_current_exception` has words for.
[[nodiscard]] CompiledScript compile_script(Script::ScriptFile const& wanted);

/// For whom there is no memory left to make words in.
inline constexpr char const* out_of_memory_words = "calder: out of memory\n";

/// What people are told of the exception that is being handled, with its line ends: the errors of a
/// script at their places, of anything else a line, both as the command has them.
[[nodiscard]] std::string words_of_current_exception();

} // namespace Calder::Pins
