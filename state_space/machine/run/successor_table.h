#pragma once

#include "state_space/export.h"
#include "state_space/machine/flatten/flat_rules.h"
#include "state_space/machine/run/changed_words.h"
#include "state_space/search_monitor.h"

#include <optional>

namespace Calder::StateSpace {

/// The successors of all states of one configuration, by tables.
///
/// Rules stand in blocks of 64. For each slot that takes part in a block there is, by the state of
/// the slot's leaf, the set of the block's rules that this slot lets happen; the sets of all
/// slots together leave the rules that can fire, in order, with 64 rules tried at once. Small slots
/// side by side are looked up together. What the rules lead to is then looked up slot by slot.
///
/// The transitions of a state are a set. Two rules can report the same transition only where they
/// have one event; a rule is known to be on its own when it changes a slot in which no other rule
/// of the event takes part. The steps of all others are marked; so are those of a rule that leaves
/// the configuration, which can forget what was chosen.
///
/// After it is made it does not change, and threads may share it.
class CALDER_STATE_SPACE_EXPORT SuccessorTable {
  public:
    /// Where a rule leads: the layout of the target and its number, to be written to the first word
    /// when the machine has several configurations.
    struct Target {
        Layout const* layout;
        ConfigurationNumber number;
    };

    /// `targets` has one entry for each rule; of a rule that stays it is not looked at. Throws
    /// SearchEnded when the monitor ends it.
    SuccessorTable(Layout const& layout, FlatRules const& rules, std::vector<Target> targets,
                   SearchMonitor& monitor);

    /// Appends the successors of the state to `steps`, which are as wide as the state. `scratch` is
    /// the caller's, one for each thread.
    void append_successors(Word const* state, Steps& steps,
                           std::vector<StateNumber>& scratch) const;
    /// The same, told by what they change.
    void append_successors(Word const* state, ChangedWords& steps,
                           std::vector<StateNumber>& scratch) const;

    /// The number of a rule by which the state leads to `target` with `event`: an index into the
    /// flat rules. Slow; for people who ask how something came about.
    [[nodiscard]] std::optional<std::size_t> rule_between(Word const* state, unsigned event,
                                                          std::vector<Word> const& target) const;

  private:
    /// Slots whose states decide about rules of a block.
    struct Filter {
        std::uint32_t word;
        std::uint32_t shift;
        Word mask;
        std::size_t first_set; // in m_rule_sets, then by the bits under the mask
    };
    struct Block {
        std::uint32_t first_filter;
        std::uint32_t last_filter;
        Word all;
    };
    struct Taker {
        Word read(Word const* state) const noexcept { return (state[word] >> shift) & mask; }

        std::uint32_t word;
        std::uint32_t shift;
        Word mask;
        StateNumber const* only_successor;
        Leaf const* leaf;
        std::uint32_t event_index;
        std::uint32_t slot;
    };
    struct Rule {
        unsigned marked_event;
        std::uint32_t first_taker;
        std::uint32_t last_taker;
        std::uint32_t first_source; // `none` when it stays
        bool is_simple;             // stays, and every taker filters and has an only successor
        Target target;
    };

    void add_rule(FlatRules const& flat, std::size_t number, Target const& target);
    void mark_repeating_rules(FlatRules const& flat, SearchMonitor& monitor);
    void mark_group(FlatRules const& flat, std::size_t first, std::size_t last,
                    std::vector<std::uint32_t>& takers_of_slot, SearchMonitor& monitor);
    /// A taker of a rule of a block, the rule being one bit.
    struct SlotFilter {
        std::uint32_t slot;
        std::uint32_t taker;
        Word rule;
    };

    void add_block(std::size_t first_rule, SearchMonitor& monitor);
    std::size_t add_filter(std::vector<SlotFilter> const& slots, std::size_t first, Word all);
    void close(Filter const& filter, Taker const& taker, Word rule);

    [[nodiscard]] Word enabled(Block const& block, Word const* state) const noexcept {
        Word rules = block.all;
        for (std::uint32_t i = block.first_filter; i != block.last_filter && rules != 0; ++i) {
            Filter const& filter = m_filters[i];
            rules &= m_rule_sets[filter.first_set +
                                 ((state[filter.word] >> filter.shift) & filter.mask)];
        }
        return rules;
    }
    [[nodiscard]] Word simple_successor(Rule const& rule, Word state) const noexcept;
    template <typename Told>
    void append_simple(Rule const& rule, Word const* state, Told& told) const;
    template <typename Told>
    void append_choices(Rule const& rule, Word const* state, Told& told) const;
    template <typename Told> void append_moves(Rule const& rule, Word const* state, Told& told,
                                               std::vector<StateNumber>& scratch) const;
    template <typename Told> void append(Rule const& rule, Word const* state, Told& told,
                                         std::vector<StateNumber>& scratch) const;
    [[nodiscard]] static std::size_t product(std::size_t left, std::size_t right) noexcept;
    [[nodiscard]] std::size_t count_choices(Rule const& rule, Word const* state) const;
    [[nodiscard]] StateNumber choice_of(Taker const& taker, Word const* state,
                                        std::size_t& rest) const;

    Layout const& m_layout;
    std::vector<Rule> m_rules;
    std::vector<Taker> m_takers;          // rule after rule
    std::vector<std::uint32_t> m_sources; // of the rules that move
    std::vector<Block> m_blocks;
    std::vector<Filter> m_filters; // block after block
    std::vector<Word> m_rule_sets;
};

} // namespace Calder::StateSpace
