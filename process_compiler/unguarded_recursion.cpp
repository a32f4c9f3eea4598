#include "process_compiler/unguarded_recursion.h"

#include "core/cycle_search.h"
#include "process_compiler/names_at_start.h"

#include <utility>

namespace Calder::ProcessCompiler {

namespace {

/// So many steps of a cycle are told.
constexpr std::size_t longest_told_cycle = 8;

/// By number of a name: the numbers of those that its definition runs from its start.
std::vector<std::vector<unsigned>> successors_of_names(NamedProcessSource const& source) {
    NamesAtStart names;
    std::vector<std::vector<unsigned>> successors(source.references().size());
    for (NamedProcessPointer const& reference : source.references()) {
        if (source.is_defined(*reference)) {
            names.add_to(successors[reference->number()], *source.process(*reference));
        }
    }
    return successors;
}

} // namespace

std::string describe(NameCycle const& cycle) {
    std::string text = "recursion without a guard: ";
    for (std::size_t index = 0; index < cycle.size(); ++index) {
        if (index == longest_told_cycle) {
            text += " and so on through " + std::to_string(cycle.size()) + " names";
            break;
        }
        text += index == 0 ? "" : ", ";
        text += cycle[index]->name() + " runs " + cycle[(index + 1) % cycle.size()]->name();
    }
    return text + " from the start";
}

UnguardedRecursion::UnguardedRecursion(std::string const& message, NameCycle names)
    : std::runtime_error(message), m_names(std::move(names)) {}

UnguardedRecursion::~UnguardedRecursion() = default;

std::vector<NameCycle> find_unguarded_recursion(NamedProcessSource const& source) {
    auto const& references = source.references();
    auto const successors = successors_of_names(source);
    std::vector<NameCycle> cycles;
    std::vector<bool> is_reported(references.size());
    auto const report = [&](std::span<std::uint32_t const> loop) {
        if (is_reported[loop.back()]) {
            return; // else many cycles that say the same
        }
        NameCycle& cycle = cycles.emplace_back();
        for (std::uint32_t const name : loop) {
            cycle.push_back(references[name]);
            is_reported[name] = true;
        }
    };
    for_each_cycle(
        static_cast<std::uint32_t>(references.size()),
        [&](std::uint32_t name) -> auto const& { return successors[name]; },
        [](std::span<std::uint32_t const>) {}, report);
    return cycles;
}

} // namespace Calder::ProcessCompiler
