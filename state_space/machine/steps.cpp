#include "state_space/machine/steps.h"

#include <algorithm>

namespace Calder::StateSpace {

void Steps::widen(std::uint32_t width) {
    std::vector<Word> wide(m_events.size() * width);
    for (std::size_t step = 0; step < m_size; ++step) {
        std::copy_n(words(step), m_width, &wide[step * width]);
    }
    m_words = std::move(wide);
    m_width = width;
}

} // namespace Calder::StateSpace
