#pragma once

#include "refinement/side.h"

namespace Calder::Refinement {

/// A side that is a machine.
class MachineSide final : public Side {
  public:
    /// Throws as `prepare` does.
    MachineSide(RunningMachine machine, SearchMonitor& monitor);

    std::uint32_t width() const noexcept override { return m_machine.tables->width(); }
    unsigned spare_bits() const noexcept override { return m_spare_bits; }
    std::vector<Word> start() const override { return m_machine.tables->start(); }
    void prepare(Word const* state) override;
    bool is_prepared(Word const* state) const noexcept override;
    void append_steps(Word const* state, Steps& steps, Scratch& scratch) override;
    std::uint64_t growth_bytes(std::uint64_t) const noexcept override { return 0; }
    RunningMachine const* machine() const noexcept override { return &m_machine; }
    ProcessCompiler::ProcessPointer term(Word const*) const override { return nullptr; }
    RunningMachine take_machine() noexcept override { return std::move(m_machine); }

  private:
    RunningMachine m_machine;
    SearchMonitor& m_monitor;
    unsigned m_spare_bits;
};

} // namespace Calder::Refinement
