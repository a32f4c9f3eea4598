#include "state_space/machine/layout.h"

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
        // A slot of no bits may stand behind the last bit: any shift does where all that is read is
        // masked away.
        unsigned const shift = bits == 0 ? 0 : used;
        m_slots.push_back({component, m_word_count - 1, shift, (Word{1} << bits) - 1});
        used += bits;
    }
}

} // namespace Calder::StateSpace
