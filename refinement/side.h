#pragma once

#include "refinement/running_machine.h"
#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/round_size.h"
#include "state_space/machine/run/state_tree.h"

#include <memory>

namespace Calder::StateSpace {
class Team;
}

namespace Calder::Refinement {

using StateSpace::SearchMonitor;
using StateSpace::StateNumber;
using StateSpace::Steps;
using StateSpace::Word;

/// A side of a question as it runs: a state is some words, and its steps are found anew from these
/// each time. It stores no states itself, unless so few words could not hold them.
class Side {
  public:
    /// What it needs while it finds steps. Of no meaning in between; keeps its storage.
    struct Scratch {
        std::vector<StateNumber> slots;
        StateSpace::StateTree::Work tree;
    };

    Side() = default;
    virtual ~Side() = default;
    Side(Side const&) = delete;
    Side& operator=(Side const&) = delete;

    /// Of each state, at least 1. Grows in `prepare` at most; states known before then end in as
    /// many words of zeros more.
    [[nodiscard]] virtual std::uint32_t width() const noexcept = 0;

    /// How many of the upper bits of the last word are zero in every state. Where there are any, the
    /// width never grows.
    [[nodiscard]] virtual unsigned spare_bits() const noexcept = 0;

    [[nodiscard]] virtual std::vector<Word> start() const = 0;

    /// Makes what `append_steps` needs for this state. Throws what the search of an engine throws:
    /// SearchEnded, MachineRefusal, NestedTooDeeply, std::bad_alloc.
    virtual void prepare(Word const* state) = 0;

    /// Whether that is there.
    [[nodiscard]] virtual bool is_prepared(Word const* state) const noexcept = 0;

    /// Appends the steps of a state that was prepared to `steps`, which are as wide as `width`. An
    /// engine gives them in the same order every time. Where there is a machine, several threads may ask
    /// at once, each with a scratch of its own. Throws as `prepare` does.
    virtual void append_steps(Word const* state, Steps& steps, Scratch& scratch) = 0;

    /// @{
    /// Comes before several threads ask at once, who find no more than so many new states beside those that are
    /// known, or so they think: where they are wrong, `append_steps` throws std::bad_alloc. Then the owner
    /// alone asks again. Whoever is alone may end it and go on later. `sharing_bytes` is what would be allocated.
    virtual void begin_sharing(std::uint64_t additions, std::uint64_t known,
                               StateSpace::Team& team) = 0;
    virtual void end_sharing() noexcept = 0;
    virtual void go_on_sharing() noexcept = 0;
    [[nodiscard]] virtual std::uint64_t sharing_bytes(std::uint64_t additions, std::uint64_t known,
                                                      unsigned threads) const noexcept = 0;
    /// @}

    /// What it holds of the states that were found, in bytes.
    [[nodiscard]] virtual std::uint64_t memory_bytes() const noexcept = 0;
    /// What would be allocated besides what there is, while so many steps are found, in bytes.
    [[nodiscard]] virtual std::uint64_t growth_bytes(std::uint64_t steps) const noexcept = 0;

    /// Null where the side goes from term to term.
    [[nodiscard]] virtual RunningMachine const* machine() const noexcept = 0;
    /// The state as the machine's tables read it; nothing where there is no machine.
    [[nodiscard]] virtual std::vector<Word> machine_words(Word const* state) const = 0;
    /// The state as a term; null where a machine runs.
    [[nodiscard]] virtual ProcessCompiler::ProcessPointer term(Word const* state) const = 0;
    /// Hands the machine over; nothing may be asked of the side afterwards.
    [[nodiscard]] virtual RunningMachine take_machine() noexcept = 0;
};

struct MadeSide {
    std::unique_ptr<Side> side;
    NoMachine no_machine{};
};

/// By the machine that the term compiles to if it is wanted and there is one; otherwise term by
/// term. `options` bound the compilation as they bound an exploration's. Throws SearchEnded when
/// whoever watches ends it.
[[nodiscard]] MadeSide make_side(ProcessCompiler::ProcessPointer const& term,
                                 ProcessCompiler::NamedProcessSource const& source,
                                 StateSpace::ExplorationOptions const& options, bool by_machine,
                                 SearchMonitor& monitor, StateSpace::Cut const& cut = {});

} // namespace Calder::Refinement
