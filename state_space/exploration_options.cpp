#include "state_space/exploration_options.h"

namespace Calder::StateSpace {

std::string_view describe(Outcome outcome) {
    switch (outcome) {
    case Outcome::complete: return "every state was explored";
    case Outcome::state_limit: return "the limit on states was reached";
    case Outcome::memory_limit: return "the limit on memory was reached";
    case Outcome::nesting_limit: return "the process nests too deeply for the stack";
    case Outcome::interrupted: return "it was interrupted";
    }
    return "";
}

} // namespace Calder::StateSpace
