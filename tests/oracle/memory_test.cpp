#include "process_compiler/recursion_watch.h"
#include "state_space/component_memory.h"
#include "tests/oracle/library_term.h"
#include "tests/oracle/shrinking.h"

#include <gtest/gtest.h>

#include <optional>

namespace Calder::Oracle {
namespace {

using namespace ProcessCompiler;
using StateSpace::ComponentMemory;
using StateSpace::StateNumber;
using StateSpace::StateTable;

/// What is compared of one model, at least; recursion may grow without end, or double a term at
/// every step, and then one visit may take for ever.
constexpr StateNumber states_compared = 40;
constexpr std::size_t transitions_compared = 400;
constexpr unsigned most_looks = 200;

struct TakesTooLong {};

/// Which calls of a visitor are refused: a few in between, as nobody does who wants to stop; all
/// from one on; none.
bool is_refused(unsigned way, StateNumber state, std::size_t call) {
    switch (way) {
    case 0: return false;
    case 1: return call >= state % 5;
    default: return (call + state) % 4 == 3;
    }
}

/// All that happens in one visit: the transitions, by numbers of the successors, and the answer.
struct Visit {
    std::vector<std::pair<unsigned, StateNumber>> reported;
    bool answer = false;

    bool operator==(Visit const&) const = default;
};

Visit visit(StateNumber state, unsigned way, NamedProcessSource const& source, StateTable& states) {
    Visit made;
    ProcessPointer const term = states.term(state);
    made.answer =
        term->visit_transitions(source, [&](unsigned event, ProcessPointer const& successor) {
            std::size_t const call = made.reported.size();
            made.reported.emplace_back(event, states.find_or_add(successor));
            return !is_refused(way, state, call);
        });
    return made;
}

/// Goes through the states with a memory, where each visit must be as without one. Adds to
/// `remembered` how many components there were in the end.
std::optional<std::string> difference_in(Model const& model, std::size_t& remembered) try {
    NamedProcessSource source;
    StateTable states;
    ComponentMemory memory(states);
    states.find_or_add(library_model(model, source));
    unsigned looks = 0;
    RecursionWatch const watch(0, [&looks] {
        if (++looks > most_looks) {
            throw TakesTooLong();
        }
    });
    std::size_t transitions = 0;
    for (StateNumber state = 0;
         state < std::min(states.size(), states_compared) && transitions < transitions_compared;
         ++state) {
        for (unsigned const way : {0U, 1U, 2U, 0U}) {
            Visit const plain = visit(state, way, source, states);
            MemoryInUse const in_use(memory);
            if (visit(state, way, source, states) != plain) {
                return "in state " + std::to_string(state) + ", refused in way " +
                       std::to_string(way);
            }
            transitions += plain.reported.size();
        }
    }
    remembered += memory.size();
    return std::nullopt;
} catch (TakesTooLong const&) {
    return std::nullopt;
}

TEST(Memory, what_is_remembered_is_what_would_be_reported) {
    std::size_t remembered = 0;
    std::uint64_t models = 0;
    expect_no_difference(
        4'000,
        [&models](std::uint64_t seed) {
            ++models;
            return random_model(seed, 3 + static_cast<unsigned>(seed % 15));
        },
        [&remembered](Model const& model) { return difference_in(model, remembered); });
    EXPECT_GE(remembered, models) << "or the memory is never asked";
}

} // namespace
} // namespace Calder::Oracle
