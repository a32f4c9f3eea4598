#pragma once

#include <cstdint>
#include <span>

namespace Calder {
class BitSet;
}

namespace Calder::Values {

struct Node; // what does not fit into a word

/// What an expression can have as its value. One word: values of one ValueStore are equal exactly
/// when their words are. Copying is free; whatever does not fit into the word belongs to the store
/// and is there as long as that.
class Value {
  public:
    enum class Kind : unsigned char {
        none, // no value
        truth,
        integer, // of 64 bits
        name,    // without fields: what `datatype` or a set of channel values introduces
        dotted,  // a name with fields: data.0
        event,   // a complete one, by its number
        channel, // an event that wants fields still: in, take.0
        tuple,   // of two parts or more
        sequence,
        set,     // in the order of values, each once
        foreign, // what the host made; is only passed on
    };

    constexpr Value() = default;
    static constexpr Value truth(bool value) { return Value((value ? 8U : 0U) | truth_tag); }
    static constexpr Value event(unsigned number) {
        return Value((std::uint64_t{number} << tag_bits) | event_tag);
    }
    static constexpr Value foreign(unsigned number) {
        return Value((std::uint64_t{number} << tag_bits) | foreign_tag);
    }
    /// Whether the integer fits into the word; ValueStore::integer serves them all.
    static constexpr bool is_small(std::int64_t integer) {
        return integer >= -most_small - 1 && integer <= most_small;
    }
    static constexpr Value small_integer(std::int64_t integer) {
        return Value((static_cast<std::uint64_t>(integer) << tag_bits) | integer_tag);
    }
    static Value of_node(Node const* node) { return Value(reinterpret_cast<std::uint64_t>(node)); }

    bool is_small_integer() const { return (m_word & tag_mask) == integer_tag; }

    Kind kind() const;
    bool is(Kind wanted) const { return kind() == wanted; }
    explicit operator bool() const { return m_word != 0; }
    bool operator==(Value const&) const = default;
    /// Distinct for distinct values of one store, in no order that means anything.
    std::uint64_t word() const { return m_word; }

    // Each of its kind only.
    bool as_truth() const { return m_word >> tag_bits != 0; }
    std::int64_t as_integer() const;
    unsigned as_event() const { return static_cast<unsigned>(m_word >> tag_bits); }
    unsigned as_foreign() const { return static_cast<unsigned>(m_word >> tag_bits); }
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the word is a pointer where no tag says otherwise
    Node const& node() const { return *reinterpret_cast<Node const*>(m_word); }

  private:
    explicit constexpr Value(std::uint64_t word) : m_word(word) {}

    // The low three bits: 0 is a node (which is aligned to 8 bytes) or, all zero, nothing.
    static constexpr unsigned tag_bits = 3;
    static constexpr std::uint64_t tag_mask = 7;
    static constexpr std::uint64_t integer_tag = 1;
    static constexpr std::uint64_t truth_tag = 2;
    static constexpr std::uint64_t event_tag = 3;
    static constexpr std::uint64_t foreign_tag = 4;
    static constexpr std::int64_t most_small = (std::int64_t{1} << 60) - 1;

    std::uint64_t m_word = 0;
};

/// What a ValueStore keeps of a value that is no word; for values/ only.
struct Node {
    Value::Kind kind = Value::Kind::none;
    bool holds_events = false; // a set: of events only
    std::uint16_t depth = 0;   // how deep values stand within it; 0 of names and integers
    /// A name's and a dotted value's place in the order of names; a channel's number.
    std::uint32_t number = 0;
    /// What it contributes to the hash of its content: of elements, a polynomial in which the first
    /// one has the lowest power, so that leaving out the first ones takes no pass over the others.
    std::uint64_t polynomial = 0;
    /// How many elements; of an integer, its bits.
    std::uint64_t size = 0;
    union {
        /// Of a tuple, a sequence or a set; the components of a dotted value or a channel.
        Value const* first = nullptr;
        BitSet const* events;
    };

    std::span<Value const> elements() const { return {first, size}; }
};

inline Value::Kind Value::kind() const {
    constexpr Kind of_tag[] = {Kind::none, Kind::integer, Kind::truth, Kind::event, Kind::foreign};
    std::uint64_t const tag = m_word & tag_mask;
    return tag == 0 && m_word != 0 ? node().kind : of_tag[tag];
}

inline std::int64_t Value::as_integer() const {
    return is_small_integer() ? static_cast<std::int64_t>(m_word) >> tag_bits
                              : static_cast<std::int64_t>(node().size);
}

} // namespace Calder::Values
