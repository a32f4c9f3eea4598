#pragma once

#include "state_space/lts_files.h"
#include "tools/input.h"
#include "tools/search_options.h"

namespace Calder::Tools {

struct ExploreOptions {
    Input input;
    SearchOptions search;
    /// Empty for no file.
    std::string output;
    /// How tau is written in an .aut file.
    std::string tau_label = "tau";
    bool deadlock = false;
    bool json = false;
};

/// `calder explore`: explores the process, prints the counts, and writes the file asked for.
int explore_process(ExploreOptions const& options);

} // namespace Calder::Tools
