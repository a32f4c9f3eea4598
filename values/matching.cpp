#include "values/matching.h"

namespace Calder::Values {

bool Matcher::fits(Pattern const& pattern, Value value, std::span<Value> slots) const {
    switch (pattern.kind) {
    case PatternKind::anything: return true;
    case PatternKind::variable: slots[pattern.number] = value; return true;
    case PatternKind::constant: return value == pattern.value;
    case PatternKind::tuple:
        return value.is(Value::Kind::tuple) &&
               fit_each(parts_of(pattern), m_store.elements(value), slots);
    case PatternKind::sequence:
        return value.is(Value::Kind::sequence) &&
               fit_each(parts_of(pattern), m_store.elements(value), slots);
    case PatternKind::front:
    case PatternKind::back:
        return value.is(Value::Kind::sequence) && fits_ends(pattern, value, slots);
    case PatternKind::dotted: return fits_fields(pattern, value, slots);
    }
    return false;
}

bool Matcher::fit_each(std::span<unsigned const> parts, std::span<Value const> values,
                       std::span<Value> slots) const {
    if (parts.size() != values.size()) {
        return false;
    }
    for (std::size_t index = 0; index < parts.size(); ++index) {
        if (!fits(parts[index], values[index], slots)) {
            return false;
        }
    }
    return true;
}

/// Some elements at one end, and a part for all others.
bool Matcher::fits_ends(Pattern const& pattern, Value sequence, std::span<Value> slots) const {
    std::span<unsigned const> const parts = parts_of(pattern);
    std::span<Value const> const elements = m_store.elements(sequence);
    std::size_t const single = parts.size() - 1;
    if (elements.size() < single) {
        return false;
    }
    std::size_t const others = elements.size() - single;
    if (pattern.kind == PatternKind::back) {
        return fit_each(parts.subspan(1), elements.subspan(others), slots) &&
               fits(parts[0], m_store.sequence(elements.first(others)), slots);
    }
    return fit_each(parts.first(single), elements.first(single), slots) &&
           fits(parts[single], m_store.suffix(sequence, single), slots);
}

bool Matcher::fits_fields(Pattern const& pattern, Value value, std::span<Value> slots) const {
    if (!value.is(Value::Kind::dotted) && !value.is(Value::Kind::name)) {
        return false;
    }
    if (m_store.head(value) != pattern.value) {
        return false;
    }
    std::span<Value const> rest = m_store.elements(value);
    for (unsigned const part : parts_of(pattern)) {
        std::size_t const taken = fit_component(m_program.patterns[part], rest, slots);
        if (taken == 0) {
            return false;
        }
        rest = rest.subspan(taken);
    }
    return rest.empty();
}

/// How many of the components the pattern takes; none where they do not fit. A name with fields is
/// one value to a pattern that is a variable, but written out, `pair.data.b`, its parts stand side by
/// side like the components.
std::size_t Matcher::fit_component(Pattern const& pattern, std::span<Value const> components,
                                   std::span<Value> slots) const {
    if (components.empty()) {
        return 0;
    }
    bool const is_single_name =
        pattern.kind == PatternKind::constant && pattern.value.is(Value::Kind::name);
    std::size_t const extent = is_single_name ? 1 : first_extent(m_store, components);
    return fits(pattern, joined(m_store, components.first(extent)), slots) ? extent : 0;
}

} // namespace Calder::Values
