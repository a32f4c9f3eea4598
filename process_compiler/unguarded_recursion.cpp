#include "process_compiler/unguarded_recursion.h"

#include "core/cycle_search.h"
#include "process_compiler/kinds.h"

#include <unordered_set>

namespace Calder::ProcessCompiler {

namespace {

using Names = std::vector<NamedProcess const*>;

/// The names that `process` runs from its start, each once, in the order of their places. Visits
/// shared arguments once and does not recurse: definitions may be deep.
Names names_running_at_start(Process const& process) {
    Names names;
    std::vector<Process const*> waiting{&process};
    std::unordered_set<Process const*> seen{&process};
    while (!waiting.empty()) {
        Process const& next = *waiting.back();
        waiting.pop_back();
        if (next.kind() == named_process_kind) {
            names.push_back(static_cast<NamedProcess const*>(&next));
            continue;
        }
        for (unsigned index = next.argument_count(); index-- > 0;) {
            if (next.process_state(index) == ArgumentState::on &&
                seen.insert(next.argument(index).get()).second) {
                waiting.push_back(next.argument(index).get());
            }
        }
    }
    return names;
}

/// By number of a name: the numbers of those that its definition runs from its start.
std::vector<std::vector<std::uint32_t>>
successors_of_names(NamedProcessSource const& source,
                    std::vector<NamedProcessPointer> const& references) {
    std::vector<std::vector<std::uint32_t>> successors(references.size());
    for (NamedProcessPointer const& reference : references) {
        if (source.is_defined(*reference)) {
            for (NamedProcess const* const name :
                 names_running_at_start(*source.process(*reference))) {
                successors[reference->number()].push_back(name->number());
            }
        }
    }
    return successors;
}

} // namespace

std::vector<NameCycle> find_unguarded_recursion(NamedProcessSource const& source) {
    auto const& references = source.references();
    auto const successors = successors_of_names(source, references);
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
