#pragma once

#include "state_space/machine/compile/compile.h"
#include "tests/state_space/graph_terms.h"

#include <memory>
#include <optional>
#include <set>

namespace Calder::StateSpace::Testing {

using HighLevelMachine::UnCompiledFormat;
using ProcessCompiler::CompilationLevel;
using ProcessCompiler::Formats;
using ProcessCompiler::Testing::FakeProcess;

using Alphabets = std::vector<BitSet>;
using FormatMaker = std::function<Formats(Alphabets const&)>;
using Participants = std::vector<std::pair<unsigned, unsigned>>; // (argument or slot, event)

struct PlainRule {
    unsigned event;
    unsigned target_format;
    Participants participants;
};

inline UnCompiledFormat format_of(std::vector<unsigned> active,
                                  std::vector<PlainRule> const& rules) {
    UnCompiledFormat format;
    format.active_components = std::move(active);
    for (PlainRule const& rule : rules) {
        append_rule(format, rule.event, rule.target_format,
                    {rule.participants.begin(), rule.participants.end()});
    }
    return format;
}

/// The same formats whatever the alphabets.
inline FormatMaker always(std::vector<UnCompiledFormat> const& formats) {
    return [formats](Alphabets const&) { return Formats(formats.begin(), formats.end()); };
}

/// All arguments run, each by itself.
inline Formats interleaving(Alphabets const& alphabets) {
    Formats formats(1);
    activate_first_components(formats[0], static_cast<unsigned>(alphabets.size()));
    for (unsigned argument = 0; argument < alphabets.size(); ++argument) {
        for (unsigned const event : alphabets[argument]) {
            append_rule(formats[0], event, 0, {std::pair(argument, event)});
        }
    }
    return formats;
}

/// Everything with the same name is equal.
class FakeConstruct : public FakeProcess {
  public:
    FakeConstruct(std::string text, std::vector<ProcessPointer> const& given,
                  FormatMaker make_formats = interleaving)
        : FakeProcess(std::move(text), static_cast<unsigned>(given.size())),
          maker(std::move(make_formats)) {
        std::copy(given.begin(), given.end(), arguments.begin());
        hash = hash_combine(13, std::hash<std::string>()(name));
    }

    FormatMaker maker;
    /// None follows the host's wish.
    std::optional<CompilationLevel> level = CompilationLevel::high;
    std::set<unsigned> forbids_recursion{};

    std::unique_ptr<Formats> high_level_formats(Alphabets const& alphabets) const override {
        return std::make_unique<Formats>(maker(alphabets));
    }
    bool allows_recursion(unsigned index) const override { return !forbids_recursion.count(index); }
    CompilationLevel preferred_compilation_level(bool wish) const override {
        return level.value_or(ProcessCompiler::as_wished(wish));
    }
};

inline ProcessPointer construct(std::string name, std::vector<ProcessPointer> const& arguments,
                                FormatMaker maker = interleaving) {
    return new FakeConstruct(std::move(name), arguments, std::move(maker));
}

inline ProcessPointer leaf(std::string label, Rows rows) {
    auto const graph = std::make_shared<Graph const>(Graph{std::move(rows)});
    return new NodeTerm(*graph, 0, std::move(label), graph);
}

/// `size` states in a ring, each leading to the next by `event`.
inline ProcessPointer ring(std::string label, unsigned size, unsigned event) {
    Rows rows(size);
    for (unsigned state = 0; state < size; ++state) {
        rows[state].emplace_back(event, (state + 1) % size);
    }
    return leaf(std::move(label), std::move(rows));
}

/// The machine of a term that has one.
inline std::unique_ptr<Machine const> machine_of(ProcessPointer const& term,
                                                 NamedProcessSource const& source = {}) {
    return compile(make_term_graph(term, source), source).machine;
}

} // namespace Calder::StateSpace::Testing
