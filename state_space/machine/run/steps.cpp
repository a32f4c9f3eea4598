#include "state_space/machine/run/steps.h"

#include <new>

namespace Calder::StateSpace {

void Steps::grow(std::size_t wanted) {
    if (wanted > m_most_steps) {
        throw std::bad_alloc();
    }
    m_events.resize(wanted * 2);
}

} // namespace Calder::StateSpace
