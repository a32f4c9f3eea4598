#include "core/bit_set.h"

#include <algorithm>

namespace Calder {

BitSet::BitSet(std::initializer_list<unsigned> events) {
    for (unsigned const event : events) {
        insert(event);
    }
}

void BitSet::insert(unsigned event) {
    std::size_t const word = event / word_bits;
    if (word >= m_words.size()) {
        m_words.resize(word + 1);
    }
    m_words[word] |= std::uint64_t{1} << (event % word_bits);
}

void BitSet::setunion(BitSet const& other) {
    if (other.m_words.size() > m_words.size()) {
        m_words.resize(other.m_words.size());
    }
    for (std::size_t word = 0; word < other.m_words.size(); ++word) {
        m_words[word] |= other.m_words[word];
    }
}

BitSet BitSet::without(BitSet const& other) const {
    BitSet rest = *this;
    for (std::size_t word = 0; word < std::min(m_words.size(), other.m_words.size()); ++word) {
        rest.m_words[word] &= ~other.m_words[word];
    }
    while (!rest.m_words.empty() && rest.m_words.back() == 0) {
        rest.m_words.pop_back();
    }
    return rest;
}

std::size_t BitSet::size() const noexcept {
    std::size_t count = 0;
    for (std::uint64_t const word : m_words) {
        count += static_cast<std::size_t>(std::popcount(word));
    }
    return count;
}

std::uint64_t BitSet::folded_words() const noexcept {
    std::uint64_t folded = 0;
    for (std::uint64_t const word : m_words) {
        folded ^= word;
    }
    return folded;
}

} // namespace Calder
