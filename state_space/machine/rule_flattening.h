#pragma once

#include "state_space/machine/configurations.h"

namespace Calder::StateSpace {

/// Makes the flat rules of one configuration of a construct from those of its children: each rule
/// of the format, with each choice of a rule of its own for every argument that takes part.
class RuleFlattening {
  public:
    RuleFlattening(Configurations& configurations, ConfigurationNumber number);

    FlatRules run();

  private:
    struct Child {
        ConfigurationNumber number;
        FlatRules const* rules;
        std::uint32_t first_slot;
    };
    /// A child that takes part in the rule at hand, and its rules for its event.
    struct Taker {
        std::uint32_t child;
        std::span<FlatRules::Rule const> options;
        std::size_t chosen;
    };

    using Format = HighLevelMachine::UnCompiledFormat;
    using FormatRule = HighLevelMachine::UnCompiledRule;

    bool find_takers(FormatRule const& rule);
    bool choose_next();
    void add(FormatRule const& rule);
    void add_participants();
    bool every_taker_stays() const;
    void add_target(FormatRule const& rule, FlatRules::Rule& flat);
    ConfigurationNumber add_sources_of_child(std::uint32_t child);
    static std::uint32_t place_of(unsigned argument, std::vector<unsigned> const& active);
    FlatRules sorted() const;

    Configurations& m_configurations;
    ConfigurationNumber m_number;
    PartNumber m_part_number;
    Part const& m_part;
    std::uint32_t m_format_number;
    Format const& m_format;
    std::vector<Child> m_children;
    std::vector<Taker> m_takers;
    std::vector<std::uint32_t> m_taker_of; // by child; `none` when it takes no part
    FlatRules m_flat;
};

} // namespace Calder::StateSpace
