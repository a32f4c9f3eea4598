#pragma once

#include "process_compiler/transition_memory.h"
#include "state_space/state_table.h"

#include <vector>

namespace Calder::StateSpace {

/// The transitions of the components that an exploration meets again and again. A term is
/// remembered when it is asked for the second time, and its successors are made one with those of
/// other terms that are remembered: so states come to share their components, which are then equal
/// at sight and kept once.
///
/// What is remembered takes 32 bytes a state at most, and 64 KiB; where more would be needed, terms
/// are asked again.
class CALDER_STATE_SPACE_EXPORT ComponentMemory final : public ProcessCompiler::TransitionMemory {
  public:
    /// For the exploration that fills `states`, which must outlive it.
    explicit ComponentMemory(StateTable const& states) : m_states(states) {}

    [[nodiscard]] std::optional<std::span<ProcessCompiler::Step const>>
    find(ProcessCompiler::ProcessPointer const& term,
         ProcessCompiler::NamedProcessSource const& source) override;

    /// How many terms have their transitions here.
    [[nodiscard]] std::size_t size() const noexcept { return m_remembered; }

    /// What its arrays could allocate for a moment while `additions` terms are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    using Steps = std::vector<ProcessCompiler::Step>;

    /// How far it has come with a term.
    enum class Stage : unsigned char { named, asked_once, remembered, too_wide };

    struct Component {
        Steps steps;
        Stage stage = Stage::named;
    };

    [[nodiscard]] bool was_asked(std::uint64_t hash);
    [[nodiscard]] StateNumber number(ProcessCompiler::ProcessPointer const& term);
    [[nodiscard]] bool remember(StateNumber component,
                                ProcessCompiler::NamedProcessSource const& source);
    [[nodiscard]] std::uint64_t most_bytes() const noexcept;
    [[nodiscard]] std::size_t steps_that_fit() const noexcept;

    StateTable const& m_states;
    StateTable m_terms;                  // the components, and the successors that steps lead to
    std::vector<Component> m_components; // by number in `m_terms`, and perhaps one more
    std::vector<std::uint32_t> m_asked;  // 2^n hashes of terms that are not in `m_terms`, or none
    std::size_t m_asked_since_growth = 0;
    std::size_t m_step_count = 0;
    std::size_t m_remembered = 0;
    unsigned m_depth = 0; // of terms that are asked, each by the one before
};

} // namespace Calder::StateSpace
