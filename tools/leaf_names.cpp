#include "tools/leaf_names.h"

#include "process_compiler/printing.h"
#include "process_compiler/recursion_watch.h"
#include "tools/term_text.h"

namespace Calder::Tools {

LeafNames::LeafNames(Script::Script const& script, StateSpace::Machine const& machine) {
    Script::Script::NamesOfTerms names;
    for (Script::Script::Definition const& definition : script.definitions()) {
        names.try_emplace(definition.term.get(), definition.name);
        names.try_emplace(definition.body.get(), definition.name);
    }
    for (auto const& leaf : machine.leaves) {
        names.try_emplace(leaf->term().get());
    }
    script.name_calls(names);
    for (auto const& leaf : machine.leaves) {
        std::string const& name = names.at(leaf->term().get());
        m_names.push_back(!name.empty() ? name : short_text(*leaf->term(), script.session()));
    }
}

std::vector<std::string> LeafNames::names(std::vector<std::uint32_t> const& leaves) const {
    std::unordered_map<std::string, unsigned> counts;
    for (std::uint32_t const leaf : leaves) {
        ++counts[m_names[leaf]];
    }
    std::unordered_map<std::string, unsigned> seen;
    std::vector<std::string> result;
    for (std::uint32_t const leaf : leaves) {
        std::string const& own = m_names[leaf];
        result.push_back(counts[own] == 1 ? own : own + "#" + std::to_string(++seen[own]));
    }
    return result;
}

std::vector<std::string> names_taking_part(LeafNames const& names,
                                           StateSpace::MachineExploration const& exploration,
                                           StateSpace::StateNumber source, unsigned event,
                                           StateSpace::StateNumber target) {
    std::vector<std::string> const all = names.names(leaves_in(exploration, source));
    std::vector<std::string> taking_part;
    for (std::uint32_t const slot : slots_taking_part(exploration, source, event, target)) {
        taking_part.push_back(all[slot]);
    }
    return taking_part;
}

std::string short_text(ProcessCompiler::Process const& term,
                       ProcessCompiler::Session const& session, std::int32_t most_characters) {
    try {
        return printed_text(session, [&](ProcessCompiler::Printer& printer) {
            printer.abbreviate = true;
            ProcessCompiler::cut_text(printer, most_characters);
            term.pretty_print(printer);
        });
    } catch (ProcessCompiler::NestedTooDeeply const&) {
        return "…";
    }
}

std::string operator_text(ProcessCompiler::Process const& construct,
                          ProcessCompiler::Session const& session) {
    return printed_text(session, [&](ProcessCompiler::Printer& printer) {
        printer.abbreviate = true;
        construct.pretty_print_operator(printer);
    });
}

} // namespace Calder::Tools
