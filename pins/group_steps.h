#pragma once

#include "pins/groups.h"
#include "pins/vector_machine.h"

#include <array>

namespace Calder::Pins {

/// What a state is given as.
enum class Form : std::size_t {
    /// All columns, before and after.
    whole,
    /// Those that the group touches.
    touched,
    /// Those that the group reads before, and those that it writes afterwards.
    read_to_written,
};

/// What VectorMachine::Scratch keeps from call to call.
struct StepStorage {
    std::vector<int> successor;
    std::vector<std::span<StateSpace::StateNumber const>> choices; // by taker
    std::vector<StateSpace::StateNumber> chosen;                   // of these
    std::vector<int> watched;                                      // successors side by side
    std::vector<int> labels;                                       // theirs
};

/// Finds the steps of states by tables of rules.
///
/// For whole states the rules stand in blocks of 64, and for each column that decides about rules of a
/// block there is, by what stands in it, the set of those that it lets happen; all of them together
/// leave the rules that can fire. A step writes its few columns into one copy of the state, and
/// takes them back after it was told.
class GroupSteps {
  public:
    /// `described` has the columns of each group, `value_counts` how many values each column can have.
    GroupSteps(ColumnRules const& rules, Groups const& groups,
               std::vector<VectorMachine::Group> const& described,
               std::vector<unsigned> const& events, std::vector<std::uint32_t> value_counts,
               StateSpace::SearchMonitor& monitor);

    int for_all(int const* state, StepStorage& storage, VectorMachine::StepTaker taker) const;

    template <Form form> int for_group(std::size_t group, int const* state, StepStorage& storage,
                                       VectorMachine::StepTaker taker) const;

  private:
    /// Where a column stands, by form; `none` where it does not.
    using Places = std::array<std::uint32_t, 3>;
    using Range = ColumnRules::Range;
    using Bits = std::uint64_t;

    struct Condition {
        Places places;
        int value;
    };
    struct Taker {
        StateSpace::Leaf const* leaf;
        StateSpace::StateNumber const* only_successor;
        std::uint32_t event_index;
        Places places; // `none` in each form when it does the same from every state
    };
    struct Write {
        ColumnRules::Source source;
        std::uint32_t value; // a constant, or the place of a taker among all
        Places places;
        Places from; // of a column
    };
    struct Rule {
        int label;
        int group;
        Range conditions;
        Range takers;
        Range writes;
        bool is_simple; // every taker is filtered and comes to one state; no column is copied
    };
    struct Members {
        std::vector<std::uint32_t> rules;   // that repeat nothing
        std::vector<std::uint32_t> watched; // that may repeat each other's steps
        std::uint32_t touched_count;
        std::uint32_t written_count;
    };
    /// Of a block, by the value in the column: the rules that it lets happen.
    struct Filter {
        std::uint32_t column;
        std::size_t first_set; // in m_rule_sets
    };
    struct Block {
        std::uint32_t first_filter;
        std::uint32_t last_filter;
        std::uint32_t first_rule; // in m_in_blocks
        Bits all;
    };

    static Places places_of(std::uint32_t column, VectorMachine::Group const& group);
    static Places written_places_of(std::uint32_t column, VectorMachine::Group const& group);
    void add_rule(ColumnRules const& rules, std::uint32_t number, std::size_t group,
                  VectorMachine::Group const& described);
    [[nodiscard]] bool is_filtered(ColumnRules::Taker const& taker) const;
    void add_block(ColumnRules const& rules, std::size_t first, StateSpace::SearchMonitor& monitor);
    std::span<Bits> rule_sets_of(std::uint32_t column, Block const& block);

    [[nodiscard]] Bits enabled(Block const& block, int const* state) const noexcept;
    template <Form form>
    void prepare(Members const& members, int const* state, StepStorage& storage) const;
    template <Form form, typename Tell> int
    fire_simple(Rule const& rule, int const* state, StepStorage& storage, Tell const& tell) const;
    template <Form form, typename Tell> int
    fire_choices(Rule const& rule, int const* state, StepStorage& storage, Tell const& tell) const;
    template <Form form> void take_back(Rule const& rule, int const* state, int* successor) const;
    template <Form form> int fire_watched(Members const& members, int const* state,
                                          StepStorage& storage,
                                          VectorMachine::StepTaker taker) const;

    std::vector<std::uint32_t> m_value_counts; // by column
    std::vector<Rule> m_rules;
    std::vector<Condition> m_conditions;
    std::vector<Taker> m_takers;
    std::vector<Write> m_writes;
    std::vector<Members> m_members;         // by group
    std::vector<std::uint32_t> m_watching;  // groups that have watched rules
    std::vector<std::uint32_t> m_in_blocks; // rules that repeat nothing, block after block
    std::vector<Block> m_blocks;
    std::vector<Filter> m_filters; // block after block
    std::vector<Bits> m_rule_sets;
};

} // namespace Calder::Pins
