#include "state_space/machine/layout.h"

#include <algorithm>
#include <bit>

namespace Calder::StateSpace {

Layout::Layout(std::vector<Component const*> const& components, unsigned reserved_bits) {
    constexpr unsigned word_bits = 64;
    unsigned used = reserved_bits;
    m_slots.reserve(components.size());
    for (Component const* const component : components) {
        auto const bits = static_cast<unsigned>(std::bit_width(component->state_count() - 1));
        if (used + bits > word_bits) {
            ++m_word_count;
            used = 0;
        }
        // A slot of no bits may stand behind the last bit, where a word cannot be shifted to.
        unsigned const shift = std::min(used, word_bits - 1);
        m_slots.push_back({component, m_word_count - 1, shift, (Word{1} << bits) - 1});
        used += bits;
    }
}

} // namespace Calder::StateSpace
