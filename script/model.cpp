#include "script/model.h"

#include "process_compiler/kinds.h"
#include "values/text.h"

#include <utility>

namespace Calder::Script {

using ProcessCompiler::ProcessPointer;
using Values::Value;

namespace {

/// Terms that nothing has kept are let go when what was being built is, or when that went wrong.
class Building {
  public:
    Building(TermHost& host, unsigned parent) : m_host(host) { host.set_parent(parent); }
    ~Building() { m_host.forget(); }
    Building(Building const&) = delete;
    Building& operator=(Building const&) = delete;

  private:
    TermHost& m_host;
};

} // namespace

Script::Model::Model(Sources const& sources, ProcessCompiler::NamedProcessSource& source)
    : tokens{&sources, {}}, host(names, translation.program, graph, channels, source),
      m_source(source), m_alone(*this), m_guarded(source, m_alone) {}

Script::Model::~Model() = default;

bool Script::Model::has_instances() const {
    for (auto const& reference : m_source.references()) {
        if (!m_source.is_defined(*reference)) {
            return true;
        }
    }
    return false;
}

ProcessPointer Script::Model::make(unsigned number) {
    if (graph.is_guarded[host.calls().definition(host.instance(number).call)]) {
        return m_alone.make(number); // whatever it runs from its start, it is there
    }
    try {
        return m_guarded.make(number);
    } catch (ProcessCompiler::UnguardedRecursion const& error) {
        throw ScriptError({location_of(*error.names().front()), error.what()}, *tokens.sources);
    }
}

ProcessPointer Script::Model::Alone::make(unsigned number) {
    TermHost::Instance const& instance = m_model.host.instance(number);
    Values::CallTable const& calls = m_model.host.calls();
    try {
        Building const building(m_model.host, number);
        return m_model.host.term(m_model.evaluator.call(
            calls.definition(instance.call), calls.arguments(instance.call), instance.place));
    } catch (Values::EvaluationError const& error) {
        Diagnostic diagnostic = m_model.diagnostic_of(error);
        m_model.add_callers(number, diagnostic);
        throw ScriptError(std::move(diagnostic), *m_model.tokens.sources);
    }
}

/// From the instance whose body was being built outwards: where each first came up.
void Script::Model::add_callers(unsigned reference, Diagnostic& diagnostic) const {
    while (host.instance(reference).parent != none) {
        reference = host.instance(reference).parent;
        TermHost::Instance const& instance = host.instance(reference);
        std::span<Value const> const arguments = host.calls().arguments(instance.call);
        if (!arguments.empty()) {
            diagnostic.notes.push_back(
                note_of_call(telling(), host.calls().definition(instance.call), arguments,
                             instance.place, diagnostic.location.source));
        }
    }
    fold(diagnostic.notes);
}

std::string Script::Model::name(unsigned number) const {
    unsigned const call = host.instance(number).call;
    return text_of_call(host.calls().definition(call), host.calls().arguments(call));
}

void Script::Model::name_calls(NamesOfTerms& terms) const {
    evaluator.visit_remembered([&](Values::Evaluator::Remembered const& call) {
        if (call.arguments.empty() || !host.is_kept(call.result)) {
            return;
        }
        auto const wanted = terms.find(host.term(call.result).get());
        if (wanted != terms.end() && wanted->second.empty()) {
            wanted->second = text_of_call(call.definition, call.arguments);
        }
    });
}

std::string Script::Model::text_of_call(unsigned definition,
                                        std::span<Value const> arguments) const {
    std::string text = translation.program.definitions[definition].name;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        text += (index == 0 ? "(" : ", ") + Values::text_of(channels, arguments[index]);
    }
    return arguments.empty() ? text : text + ")";
}

ProcessPointer Script::Model::body_of(unsigned definition) {
    Building const building(host, none);
    return host.term(
        evaluator.call(definition, {}, translation.program.definitions[definition].place));
}

/// What `use` makes of the value of a part.
template <typename Use> auto Script::Model::part_of_assertion(unsigned definition, Use const& use) {
    unsigned const node = translation.program.definitions[definition].place;
    try {
        Building const building(host, none);
        return use(evaluator.call(definition, {}, node));
    } catch (Values::EvaluationError const& error) {
        throw ScriptError(diagnostic_of(error), *tokens.sources);
    } catch (Values::ValueError const& error) {
        Location const place = Calder::Script::location_of(tokens, tree, tree[node].last_child);
        throw ScriptError({place, error.message()}, *tokens.sources);
    }
}

Assertion Script::Model::assertion(std::size_t number, AssertionHead const& head) {
    unsigned const first = names.first_parts[number];
    Assertion made{head, {}, {}, {}, {}};
    auto const process = [&](unsigned definition) {
        ProcessPointer term = part_of_assertion(
            definition, [this](Value value) { return ProcessPointer(host.term(value)); });
        // An instance has not been made yet, and what is wrong with it is told here.
        if (term->kind() == ProcessCompiler::named_process_kind) {
            m_source.process(static_cast<ProcessCompiler::NamedProcess const&>(*term));
        }
        return term;
    };
    made.concrete = process(first);
    switch (head.question) {
    case Question::trace_refinement:
    case Question::failures_refinement:
    case Question::failures_divergences_refinement:
        made.abstract = std::exchange(made.concrete, process(first + 1));
        break;
    case Question::has_trace:
        made.trace =
            part_of_assertion(first + 1, [this](Value value) { return host.trace_in(value); });
        break;
    case Question::never:
        made.events =
            part_of_assertion(first + 1, [this](Value value) { return host.events_in(value); });
        break;
    case Question::deadlock_free:
    case Question::divergence_free:
    case Question::deterministic: break;
    }
    return made;
}

Telling Script::Model::telling() const {
    return {tokens, tree, translation.program, channels};
}

/// A term that nests too deeply is told of the definition whose it is.
Diagnostic Script::Model::diagnostic_of(Values::EvaluationError const& error) const {
    Diagnostic diagnostic = Calder::Script::diagnostic_of(telling(), error);
    if (error.message() == NestedTerm().message() && !error.calls.empty()) {
        unsigned const definition = error.calls.front().definition;
        diagnostic.location = Calder::Script::location_of(
            tokens, tree, translation.program.definitions[definition].place);
    }
    return diagnostic;
}

Location Script::Model::location_of(ProcessCompiler::NamedProcess const& reference) const {
    TermHost::Instance const& instance = host.instance(reference.number());
    return tokens.location(names.definitions[host.calls().definition(instance.call)].token);
}

} // namespace Calder::Script
