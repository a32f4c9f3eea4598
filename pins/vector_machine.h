#pragma once

#include "state_space/machine/run/configuration_tables.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Calder::Pins {

struct StepStorage;

/// A machine as an engine wants it that knows only vectors of numbers: states of a fixed number of
/// columns, and transition groups of which each is known to touch few of them.
///
/// A column holds the state of a leaf, the configuration of a part of the machine that changes its
/// formats, or whether the last step was a tick. What its numbers mean depends on the machine alone,
/// and not on any search: everyone who makes it of the same script has the same.
///
/// It does not change after it was made; threads may share it, each with a Scratch of its own.
class VectorMachine {
  public:
    enum class ColumnKind {
        /// The state of the leaf that runs there; 0 where none does.
        leaf,
        /// The number of a combination of formats.
        configuration,
        /// 1 where the last step was a tick, otherwise 0.
        ended,
    };

    struct Column {
        /// Different from all others: `leaf3`.
        std::string name;
        ColumnKind kind;
    };

    /// Transitions of the machine that touch the same columns. Columns ascend.
    struct Group {
        /// Those of `reads` and `writes`: what a short state has.
        std::vector<std::uint32_t> touched;
        /// On whose values it depends what happens.
        std::vector<std::uint32_t> reads;
        /// Which every transition of the group writes, if only what stood there.
        std::vector<std::uint32_t> writes;
    };

    /// The storage of one caller, which is kept from call to call. Whoever asks for steps while he is
    /// told of others has another one for that.
    class Scratch {
      public:
        Scratch();
        ~Scratch();
        Scratch(Scratch const&) = delete;
        Scratch& operator=(Scratch const&) = delete;

      private:
        friend class VectorMachine;
        std::unique_ptr<StepStorage> m_storage;
    };

    /// Is told of a step: the event, by its place in `events`, the group, and the successor, which is
    /// good until it returns and must be as it was then.
    struct StepTaker {
        void (*take)(void* context, int label, int group, int* successor);
        void* context;
    };

    /// Configurations of each part that changes its formats, all of which are made beforehand.
    static constexpr std::size_t most_configurations = 4096;

    /// Throws MachineRefusal where there are more of something than can be had, and SearchEnded when
    /// the monitor says so. The tables must outlive it.
    VectorMachine(StateSpace::ConfigurationTables& tables, StateSpace::SearchMonitor& monitor);
    ~VectorMachine();
    VectorMachine(VectorMachine const&) = delete;
    VectorMachine& operator=(VectorMachine const&) = delete;

    [[nodiscard]] std::vector<Column> const& columns() const noexcept;
    [[nodiscard]] std::vector<Group> const& groups() const noexcept;
    /// What it can perform, ascending: the numbers of the session.
    [[nodiscard]] std::vector<unsigned> const& events() const noexcept;
    /// The column that tells whether the last step was a tick; nothing where none can come. A state
    /// without steps has ended where it is 1, and is a deadlock where it is not.
    [[nodiscard]] std::optional<std::uint32_t> ended_column() const noexcept;
    [[nodiscard]] std::vector<int> start() const;

    /// @{
    /// The steps of a state, and how many they are: of all groups, or of one. A short state has the
    /// columns that the group touches; from what it reads to what it writes is the third form. No step
    /// is told twice, nor by two groups.
    int for_all_steps(int const* state, Scratch& scratch, StepTaker taker) const;
    int for_steps_of(std::size_t group, int const* state, Scratch& scratch, StepTaker taker) const;
    int for_short_steps_of(std::size_t group, int const* touched, Scratch& scratch,
                           StepTaker taker) const;
    int for_read_to_written_steps_of(std::size_t group, int const* reads, Scratch& scratch,
                                     StepTaker taker) const;
    /// @}

    /// The state of the machine that a state of columns stands for, in as many words as the tables
    /// want then; nothing where there is no such state: a number that no column of it can have.
    [[nodiscard]] std::optional<std::vector<StateSpace::Word>>
    words_of(std::span<int const> state, StateSpace::SearchMonitor& monitor) const;

  private:
    class Impl;
    std::unique_ptr<Impl const> m_impl;
};

} // namespace Calder::Pins
