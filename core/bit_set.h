#pragma once

#include "core/export.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <vector>

namespace Calder {

/// A set of event numbers, kept as a bit map: event e is bit e mod 64 of word e div 64.
///
/// Space is one bit for every number up to the largest one. The last word is never zero, so equal
/// sets have equal maps.
class CALDER_CORE_EXPORT BitSet {
  public:
    class const_iterator;
    /// @{
    /// What standard algorithms and containers ask for.
    using iterator = const_iterator;
    using value_type = unsigned;
    /// @}

    BitSet() = default;
    /// In any order; what is given twice counts once.
    BitSet(std::initializer_list<unsigned> events);

    /// Adds `event`; nothing happens when it is there already.
    void insert(unsigned event);

    /// Adds every member of `other`.
    void setunion(BitSet const& other);

    /// The members that are not in `other`.
    [[nodiscard]] BitSet without(BitSet const& other) const;

    /// Constant time; no number is too large to be asked about.
    [[nodiscard]] bool member(unsigned event) const noexcept {
        std::size_t const word = event / word_bits;
        return word < m_words.size() && ((m_words[word] >> (event % word_bits)) & 1U) != 0;
    }

    /// How many events the set holds; linear in the words of the map.
    [[nodiscard]] std::size_t size() const noexcept;
    /// Constant time, unlike a comparison of `size` with 0.
    [[nodiscard]] bool empty() const noexcept { return m_words.empty(); }

    /// The exclusive or of all words of the map: what a set contributes to a hash code.
    [[nodiscard]] std::uint64_t folded_words() const noexcept;

    /// @{
    /// Linear in the words of the maps.
    bool operator==(BitSet const& other) const noexcept { return m_words == other.m_words; }
    bool operator!=(BitSet const& other) const noexcept { return m_words != other.m_words; }
    /// @}

    /// @{
    /// Iteration is in ascending order; the set must not change meanwhile.
    [[nodiscard]] const_iterator begin() const noexcept;
    [[nodiscard]] const_iterator end() const noexcept;
    /// @}

  private:
    static constexpr unsigned word_bits = 64;

    std::vector<std::uint64_t> m_words;
};

/// Where an iteration stands: good until the set changes or goes. Members come as numbers, not as
/// references.
class BitSet::const_iterator {
  public:
    /// @{
    /// What standard algorithms ask for. Forward, but for the older rules a forward iterator would
    /// have to refer to what it names.
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::input_iterator_tag;
    using value_type = unsigned;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = unsigned;
    /// @}

    const_iterator() = default;

    /// The member it stands at; there must be one.
    unsigned operator*() const noexcept {
        return static_cast<unsigned>(m_word) * word_bits +
               static_cast<unsigned>(std::countr_zero(m_rest));
    }

    /// @{
    /// To the next larger member; past the last one, to the end.
    const_iterator& operator++() noexcept {
        m_rest &= m_rest - 1;
        skip_empty_words();
        return *this;
    }

    const_iterator operator++(int) noexcept {
        const_iterator const before = *this;
        ++*this;
        return before;
    }
    /// @}

    /// @{
    /// Of iterators over the same set.
    bool operator==(const_iterator const& other) const noexcept {
        return m_word == other.m_word && m_rest == other.m_rest;
    }
    bool operator!=(const_iterator const& other) const noexcept { return !(*this == other); }
    /// @}

  private:
    friend class BitSet;

    const_iterator(std::vector<std::uint64_t> const& words, std::size_t word) noexcept
        : m_words(&words), m_word(word), m_rest(word < words.size() ? words[word] : 0) {
        skip_empty_words();
    }

    void skip_empty_words() noexcept {
        while (m_rest == 0 && m_word < m_words->size()) {
            ++m_word;
            m_rest = m_word < m_words->size() ? (*m_words)[m_word] : 0;
        }
    }

    std::vector<std::uint64_t> const* m_words = nullptr;
    std::size_t m_word = 0;
    std::uint64_t m_rest = 0; // the members of the current word that are still to come
};

inline BitSet::const_iterator BitSet::begin() const noexcept {
    return const_iterator(m_words, 0);
}

inline BitSet::const_iterator BitSet::end() const noexcept {
    return const_iterator(m_words, m_words.size());
}

} // namespace Calder
