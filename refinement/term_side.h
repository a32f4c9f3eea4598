#pragma once

#include "refinement/side.h"
#include "state_space/component_memory.h"
#include "state_space/stack_guard.h"
#include "state_space/state_table.h"

namespace Calder::Refinement {

/// A side that goes from term to term. The word of a state is the number of its term, in the order
/// in which the terms were reached.
class TermSide final : public Side {
  public:
    TermSide(ProcessCompiler::ProcessPointer const& start,
             ProcessCompiler::NamedProcessSource const& source, SearchMonitor& monitor);

    std::uint32_t width() const noexcept override { return 1; }
    unsigned spare_bits() const noexcept override { return 32; }
    std::vector<Word> start() const override { return {0}; }
    void prepare(Word const*) override {}
    bool is_prepared(Word const*) const noexcept override { return true; }
    void append_steps(Word const* state, Steps& steps, Scratch&) override;
    void begin_sharing(std::uint64_t, std::uint64_t, StateSpace::Team&) override {}
    void end_sharing() noexcept override {}
    void go_on_sharing() noexcept override {}
    std::uint64_t sharing_bytes(std::uint64_t, std::uint64_t, unsigned) const noexcept override {
        return 0;
    }
    std::uint64_t memory_bytes() const noexcept override { return m_terms.memory_bytes(); }
    std::uint64_t growth_bytes(std::uint64_t steps) const noexcept override {
        return m_terms.growth_bytes(steps) + m_components.growth_bytes(steps);
    }
    RunningMachine const* machine() const noexcept override { return nullptr; }
    std::vector<Word> machine_words(Word const*) const override { return {}; }
    ProcessCompiler::ProcessPointer term(Word const* state) const override;
    RunningMachine take_machine() noexcept override { return {}; }

  private:
    StateNumber number(ProcessCompiler::ProcessPointer const& term);

    ProcessCompiler::NamedProcessSource const& m_source;
    SearchMonitor& m_monitor;
    StateSpace::StackGuard const m_stack{};
    StateSpace::StateTable m_terms;
    StateSpace::ComponentMemory m_components{m_terms};
};

} // namespace Calder::Refinement
