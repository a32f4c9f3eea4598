#pragma once

#include "process_compiler/session.h"
#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"
#include "state_space/lts_file_error.h"

#include <filesystem>
#include <functional>
#include <string>

namespace Calder::StateSpace {

/// The formats that a labelled transition system is written in; docs/lts_formats.md describes both.
enum class LtsFormat {
    /// Aldebaran: a head line and a line for each transition. Ends in .aut.
    aut,
    /// A directed graph for Graphviz. Ends in .dot.
    dot,
};

/// The format that the ending of the name chooses. Another ending throws LtsFileError.
CALDER_STATE_SPACE_EXPORT LtsFormat lts_format_of(std::filesystem::path const& path);

/// For asking before the work, not after it: throws LtsFileError when a file of this name could not
/// be written now. Leaves everything as it is.
CALDER_STATE_SPACE_EXPORT void check_lts_file(std::filesystem::path const& path);

/// How a file is written.
struct LtsFileOptions {
    /// How an .aut file writes tau; some tools read "i". A visible event of that name is an error.
    std::string tau_label = "tau";
    /// Asked before every write and before the file takes its place; as soon as it answers false, LtsFileStopped is
    /// thrown.
    std::function<bool()> keep_going = nullptr;
};

/// Writes what is explored of the system, with the names that the session has for its events. The
/// file is replaced as a whole: after any failure, an existing one is as it was, and nothing else
/// is left behind. Failures throw LtsFileError; so does an event that the session has no name for.
CALDER_STATE_SPACE_EXPORT void write_lts_file(std::filesystem::path const& path,
                                              LabelledTransitionSystem const& lts,
                                              ProcessCompiler::Session const& session,
                                              LtsFileOptions const& options = {});

} // namespace Calder::StateSpace
