#pragma once

#include "values/expression.h"
#include "values/value_store.h"

#include <span>

namespace Calder::Values {

/// Holds values against the patterns of a program. Recurses on how deep patterns stand within each
/// other.
class Matcher {
  public:
    Matcher(Program const& program, ValueStore& store) : m_program(program), m_store(store) {}

    /// Whether the value fits; its variables are then in their slots. Of what does not fit, some may
    /// be, too.
    bool fits(unsigned pattern, Value value, std::span<Value> slots) const {
        return fits(m_program.patterns[pattern], value, slots);
    }

  private:
    bool fits(Pattern const& pattern, Value value, std::span<Value> slots) const;
    bool fit_each(std::span<unsigned const> parts, std::span<Value const> values,
                  std::span<Value> slots) const;
    bool fits_ends(Pattern const& pattern, Value sequence, std::span<Value> slots) const;
    bool fits_fields(Pattern const& pattern, Value value, std::span<Value> slots) const;
    std::size_t fit_component(Pattern const& pattern, std::span<Value const> components,
                              std::span<Value> slots) const;

    std::span<unsigned const> parts_of(Pattern const& pattern) const {
        return std::span(m_program.parts).subspan(pattern.first_part, pattern.part_count);
    }

    Program const& m_program;
    ValueStore& m_store;
};

} // namespace Calder::Values
