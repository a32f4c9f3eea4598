#include "tools/limit_name.h"

namespace Calder::Tools {

using StateSpace::Outcome;

char const* limit_name(Outcome outcome) {
    switch (outcome) {
    case Outcome::complete: return "";
    case Outcome::state_limit: return "state limit";
    case Outcome::memory_limit: return "memory limit";
    case Outcome::nesting_limit: return "nesting limit";
    case Outcome::interrupted: return "interrupted";
    }
    return "";
}

} // namespace Calder::Tools
