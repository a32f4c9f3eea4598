#include "state_space/machine/run/layout.h"

#include <algorithm>
#include <bit>

namespace Calder::StateSpace {

Layout::Layout(std::vector<Leaf const*> const& leaves, unsigned reserved_bits) {
    constexpr unsigned word_bits = 64;
    unsigned used = reserved_bits;
    m_slots.reserve(leaves.size());
    for (Leaf const* const leaf : leaves) {
        auto const bits = static_cast<unsigned>(std::bit_width(leaf->state_count() - 1));
        if (used + bits > word_bits) {
            ++m_word_count;
            used = 0;
        }
        // A slot of no bits may stand behind the last bit, where a word cannot be shifted to.
        unsigned const shift = std::min(used, word_bits - 1);
        m_slots.push_back({leaf, m_word_count - 1, shift, (Word{1} << bits) - 1});
        used += bits;
    }
}

} // namespace Calder::StateSpace
