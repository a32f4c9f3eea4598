#pragma once

#include "refinement/side.h"

namespace Calder::Refinement {

/// A side that is a machine. A state is the machine's words, or, where these are many and the machine never leaves
/// its first configuration, the root of their tree.
class MachineSide final : public Side {
  public:
    /// Up to `most_plain_words`, the machine's words are not many. Throws as `prepare` does.
    MachineSide(RunningMachine machine, SearchMonitor& monitor, std::uint32_t most_plain_words);

    std::uint32_t width() const noexcept override {
        return m_tree ? StateSpace::StateTree::node_words : m_machine.tables->width();
    }
    unsigned spare_bits() const noexcept override { return m_spare_bits; }
    std::vector<Word> start() const override;
    void prepare(Word const* state) override;
    bool is_prepared(Word const* state) const noexcept override;
    void append_steps(Word const* state, Steps& steps, Scratch& scratch) override;
    void begin_sharing(std::uint64_t additions, std::uint64_t known,
                       StateSpace::Team& team) override;
    void end_sharing() noexcept override;
    void go_on_sharing() noexcept override;
    std::uint64_t sharing_bytes(std::uint64_t additions, std::uint64_t known,
                                unsigned threads) const noexcept override {
        return m_tree ? m_tree->sharing_bytes(additions, known, threads) : 0;
    }
    std::uint64_t memory_bytes() const noexcept override {
        return m_tree ? m_tree->memory_bytes() : 0;
    }
    std::uint64_t growth_bytes(std::uint64_t steps) const noexcept override {
        return m_tree ? m_tree->growth_bytes(steps) : 0;
    }
    RunningMachine const* machine() const noexcept override { return &m_machine; }
    std::vector<Word> machine_words(Word const* state) const override;
    ProcessCompiler::ProcessPointer term(Word const*) const override { return nullptr; }
    RunningMachine take_machine() noexcept override { return std::move(m_machine); }

  private:
    RunningMachine m_machine;
    SearchMonitor& m_monitor;
    unsigned m_spare_bits;
    std::unique_ptr<StateSpace::StateTree> m_tree; // null where a state is the machine's words
};

} // namespace Calder::Refinement
