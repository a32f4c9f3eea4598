#include "state_space/machine/run/steps.h"

#include <algorithm>
#include <new>

namespace Calder::StateSpace {

void Steps::widen(std::uint32_t width) {
    std::vector<Word> wide(m_events.size() * width);
    for (std::size_t step = 0; step < m_size; ++step) {
        std::copy_n(words(step), m_width, &wide[step * width]);
    }
    m_words = std::move(wide);
    m_width = width;
}

void Steps::grow(std::size_t wanted) {
    if (wanted > m_most_steps) {
        throw std::bad_alloc();
    }
    m_events.resize(wanted * 2);
}

} // namespace Calder::StateSpace
