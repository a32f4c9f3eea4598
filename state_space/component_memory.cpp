#include "state_space/component_memory.h"

#include "state_space/memory.h"
#include "state_space/mix.h"

#include <algorithm>
#include <utility>

namespace Calder::StateSpace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using ProcessCompiler::Step;

namespace {

constexpr std::uint64_t bytes_at_first = std::uint64_t{64} * 1024;
constexpr std::uint64_t bytes_a_state = 32;
/// What a term takes that nobody else keeps: a construct with eight arguments, which are there
/// anyway, 128; its entries in tables as many as it takes to find it.
constexpr std::uint64_t bytes_a_term = 192;

/// Below that a term is not asked for the sake of memory: its transitions would hardly fit.
constexpr std::size_t fewest_steps = 32;

/// Of terms that are being remembered, each an argument of the one before: in a deep nest the
/// innermost are asked once for each level around them.
constexpr unsigned deepest = 8;

constexpr std::size_t first_asked = 256;

/// One part in so many of what may be taken is for what was asked once.
constexpr std::uint64_t asked_share = 8;

} // namespace

std::optional<std::span<Step const>> ComponentMemory::find(ProcessPointer const& term,
                                                           NamedProcessSource const& source) {
    StateNumber component = m_terms.find(term);
    if (component == no_state) {
        if (steps_that_fit() < fewest_steps || !was_asked(hash_of(term))) {
            return std::nullopt;
        }
        component = number(term);
        m_components[component].stage = Stage::asked_once;
    }
    switch (m_components[component].stage) {
    case Stage::named: m_components[component].stage = Stage::asked_once; return std::nullopt;
    case Stage::asked_once:
        if (!remember(component, source)) {
            return std::nullopt;
        }
        break;
    case Stage::remembered: break;
    case Stage::too_wide: return std::nullopt;
    }
    return m_components[component].steps;
}

std::uint64_t ComponentMemory::growth_bytes(std::uint64_t additions) const noexcept {
    return m_terms.growth_bytes(additions) + StateSpace::growth_bytes(m_components, additions) +
           allocated_bytes(m_asked) * 2;
}

/// Whether a term with this hash code was asked, as far as it is known; it is from now on.
bool ComponentMemory::was_asked(std::uint64_t hash) {
    // Which terms come again is seen among as many as there are components, not states; where very many never do,
    // more room would not help.
    std::size_t const larger = std::max(first_asked, m_asked.size() * 2);
    if (++m_asked_since_growth > m_asked.size() * 8 &&
        larger * sizeof(std::uint32_t) <= most_bytes() / asked_share) {
        m_asked.assign(larger, 0);
        m_asked_since_growth = 0;
    }
    std::uint64_t const mixed = mix(hash);
    auto const tag = static_cast<std::uint32_t>(mixed >> 32);
    return std::exchange(m_asked[mixed & (m_asked.size() - 1)], tag) == tag;
}

/// Of the term, which is added when it is new.
StateNumber ComponentMemory::number(ProcessPointer const& term) {
    if (m_components.size() == m_terms.size()) {
        m_components.emplace_back(); // first, so that no term is without one where memory runs out
    }
    return m_terms.find_or_add(term);
}

/// Asks the component for its transitions. False when there is no room for them.
bool ComponentMemory::remember(StateNumber component, NamedProcessSource const& source) {
    struct Taken {
        Steps steps;
        std::size_t most;
        bool all;
    } taken{{}, steps_that_fit(), true};
    if (taken.most < fewest_steps || m_depth == deepest) {
        return false;
    }
    struct Depth {
        explicit Depth(unsigned& of) : depth(of) { ++depth; }
        ~Depth() { --depth; }
        Depth(Depth const&) = delete;
        Depth& operator=(Depth const&) = delete;
        unsigned& depth;
    } const deeper(m_depth);
    ProcessPointer const term = m_terms.term(component); // stays, while others are added
    bool const went_through =
        term->visit_transitions(source, [&taken](unsigned event, ProcessPointer const& successor) {
            taken.all = taken.all && taken.steps.size() < taken.most;
            if (taken.all) {
                taken.steps.emplace_back(event, successor);
            }
            return taken.all;
        });
    // Some answers are ignored, so both are asked.
    if (!went_through || !taken.all) {
        m_components[component].stage = Stage::too_wide;
        return false;
    }
    for (Step& step : taken.steps) {
        step.second = m_terms.term(number(step.second));
    }
    taken.steps.shrink_to_fit();
    m_components[component].steps = std::move(taken.steps);
    m_components[component].stage = Stage::remembered;
    m_step_count += m_components[component].steps.size();
    ++m_remembered;
    return true;
}

std::uint64_t ComponentMemory::most_bytes() const noexcept {
    return bytes_at_first + bytes_a_state * m_states.size();
}

/// Each with a successor that is not known yet.
std::size_t ComponentMemory::steps_that_fit() const noexcept {
    std::uint64_t const most = most_bytes();
    std::uint64_t const taken =
        m_step_count * sizeof(Step) + m_terms.size() * bytes_a_term + allocated_bytes(m_asked);
    return most < taken ? 0 : (most - taken) / (sizeof(Step) + bytes_a_term);
}

} // namespace Calder::StateSpace
