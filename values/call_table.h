#pragma once

#include "core/large_array.h"
#include "values/arena.h"
#include "values/value.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Calder::Values {

/// Numbers calls, definitions with arguments, densely in the order in which they first came up.
///
/// A lookup is one hash of the words and allocates nothing; a call takes 16 bytes, 8 more for each
/// argument, and 8 to 16 of a table that is at most half full.
class CallTable {
  public:
    struct Entry {
        unsigned number;
        bool is_new;
    };
    Entry insert(unsigned definition, std::span<Value const> arguments);
    std::optional<unsigned> find(unsigned definition, std::span<Value const> arguments) const;

    std::size_t size() const { return m_calls.size(); }
    unsigned definition(unsigned number) const { return m_calls[number].definition; }
    /// They stay where they are as long as the table.
    std::span<Value const> arguments(unsigned number) const {
        return {m_calls[number].arguments, m_calls[number].argument_count};
    }

  private:
    struct Call {
        Value const* arguments;
        unsigned definition;
        unsigned argument_count;
    };
    struct Slot {
        unsigned number;
        unsigned tag; // of the code: most others differ in it
    };

    /// Where the call stands, or the free slot where it belongs.
    std::size_t slot_of(std::uint64_t hash, unsigned definition,
                        std::span<Value const> arguments) const;
    void grow();

    Arena m_arena;
    LargeVector<Call> m_calls;
    LargeVector<Slot> m_slots;
};

} // namespace Calder::Values
