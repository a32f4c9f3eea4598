#pragma once

#include "tests/refinement/naive_semantics.h"
#include "tests/state_space/machine/fake_construct.h"

#include <random>

namespace Calder::Refinement::Testing {

using Random = std::mt19937_64;

/// A number below `end`.
unsigned below(Random& random, std::size_t end);

/// Up to `most_states`, with the events tau, tick, a and b.
Rows random_rows(Random& random, unsigned most_states);

/// A system close to the given one: a mutant, itself with events hidden or a choice before it, or
/// itself; now and then one that has nothing to do with it.
Rows relative_of(Rows const& rows, Random& random);

/// A choice between both: silent, or of their first steps.
Rows internal_choice(Rows const& left, Rows const& right);
Rows external_choice(Rows const& left, Rows const& right);
Rows hidden(Rows rows, unsigned event);

/// The term of a system, which goes from node to node. Its equals are those of the same label.
StateSpace::Testing::ProcessPointer term_of(Rows const& rows, std::string const& label);

/// A term that has a machine, of one or two leaves with one configuration or two.
StateSpace::Testing::ProcessPointer random_machine(Random& random);

/// The same over a leaf alone.
StateSpace::Testing::ProcessPointer machine_over(Rows const& rows, std::string const& label);

/// One of some hundred states or more: leaves side by side, some of whose steps are taken together; of one
/// configuration, or of two such one after the other.
StateSpace::Testing::ProcessPointer random_network(Random& random);

/// The second of its formats runs three leaves of 10 bits each besides the first, and the third as many more:
/// states become wider while there are narrow ones around.
StateSpace::Testing::ProcessPointer growing_machine();

/// What the machine of a term does.
Rows rows_of_machine(StateSpace::Testing::ProcessPointer const& term);

/// For messages.
std::string text_of(Rows const& rows);
std::string text_of(std::vector<unsigned> const& events);

} // namespace Calder::Refinement::Testing
