#pragma once

#include <cstdlib>
#include <iostream>

namespace Calder::Fuzz {

/// What must hold of every input. Where it does not, the program says so and aborts, which the fuzzer
/// takes for a crash: it keeps the input. For every build, so unlike `assert`.
inline void demand(bool holds, char const* what) {
    if (!holds) {
        std::cerr << "fuzz: it does not hold that " << what << "\n";
        std::abort();
    }
}

} // namespace Calder::Fuzz
