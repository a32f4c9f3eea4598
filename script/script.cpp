#include "script/script.h"

#include "process_compiler/kinds.h"
#include "process_compiler/unguarded_recursion.h"
#include "script/assertions.h"
#include "script/constants.h"
#include "script/declarations.h"
#include "script/model.h"
#include "script/scanner.h"
#include "script/suggestion.h"
#include "script/syntax_builder.h"
#include "values/direct_expressions.h"

#include <algorithm>
#include <utility>

namespace Calder::Script {

/// One reading of a script, from the text to the terms.
class Reader {
  public:
    Reader(Source script, ReadOptions const& options) : m_options(options) {
        Sources& sources = m_script->m_sources;
        sources.push_back(std::move(script));
        for (auto const& [name, text] : options.definitions) {
            std::string definition = name;
            definition += " = ";
            definition += text;
            sources.push_back({"--define", std::move(definition)});
        }
        if (!options.process.empty()) {
            sources.push_back({"--process", std::string(asked_name) + " =\n" + options.process, 0});
        }
        for (std::string const& assertion : options.assertions) {
            sources.push_back({"--assert", "assert\n" + assertion, 0});
        }
        m_end_added = static_cast<unsigned>(sources.size());
    }

    ReadResult read() {
        m_script->m_model =
            std::make_unique<Script::Model>(m_script->m_sources, m_script->m_processes);
        Script::Model& model = *m_script->m_model;
        model.tokens = scan(m_script->m_sources, m_options.include, m_diagnostics);
        model.tree = parse(model.tokens, m_diagnostics);
        order_assertions(model);
        model.names = resolve_names(model.tokens, model.tree, 1, m_end_added, m_diagnostics);
        check_added(model);
        model.translation =
            translate(model.tokens, model.tree, model.names, model.store, m_diagnostics);
        model.graph = connect_calls(model.names, model.translation);
        declare(model.tokens, model.tree, model.names, model.translation, model.channels,
                model.evaluator, m_script->m_session, m_diagnostics);
        define(model);
        sort_and_remove_repetitions(m_diagnostics);
        if (!m_diagnostics.empty()) {
            return {nullptr, std::move(m_diagnostics), std::move(m_script->m_sources)};
        }
        fill(model);
        m_script->m_processes.set_maker(&model);
        m_script->m_assertions = heads_of(model.tokens, model.tree.assertions);
        look_behind_asked();
        if (!m_diagnostics.empty()) {
            return {nullptr, std::move(m_diagnostics), m_script->m_sources};
        }
        return {std::move(m_script), {}, {}};
    }

  private:
    /// The script's first, then those that stand beside it, each of which is one.
    void order_assertions(Script::Model& model) {
        auto const added = [&](AssertionSyntax const& assertion) {
            unsigned const source = model.tokens[assertion.keyword].source;
            return source > 0 && source < m_end_added ? source : 0;
        };
        std::vector<AssertionSyntax>& assertions = model.tree.assertions;
        std::stable_sort(assertions.begin(), assertions.end(),
                         [&](AssertionSyntax const& a, AssertionSyntax const& b) {
                             return added(a) < added(b);
                         });
        unsigned const first = m_end_added - static_cast<unsigned>(m_options.assertions.size());
        for (unsigned token = 0; token < model.tokens.size(); ++token) {
            Token const& each = model.tokens[token];
            bool const is_added = each.source >= first && each.source < m_end_added;
            bool const is_repeated = // which is told by the grammar
                token > 0 && model.tokens[token - 1].kind == Parser::token::ASSERT;
            if (is_added && each.line > 0 && starts_item(each.kind) && !is_repeated) {
                m_diagnostics.push_back(
                    {model.tokens.location(token), "one question stands here, and nothing else"});
            }
        }
    }

    /// A definition that nobody asks for was meant for another name; and a process is asked for.
    void check_added(Script::Model const& model) {
        auto const asked = model.names.by_name.find(asked_name);
        if (!m_options.process.empty() && asked != model.names.by_name.end() &&
            !model.names.definitions[asked->second].is_process) {
            unsigned const definition = model.names.definitions[asked->second].clauses[0];
            m_diagnostics.push_back({Calder::Script::location_of(model.tokens, model.tree,
                                                                 model.tree[definition].last_child),
                                     "this is a value, and a process is wanted here"});
        }
        std::vector<bool> is_used(model.names.definitions.size());
        for (Binding const& binding : model.names.bindings) {
            if (binding.kind == Binding::Kind::definition) {
                is_used[binding.number] = true;
            }
        }
        for (auto const& [name, text] : m_options.definitions) {
            auto const found = model.names.by_name.find(name);
            if (found == model.names.by_name.end() || is_used[found->second] ||
                model.names.definitions[found->second].is_replacement) {
                continue;
            }
            unsigned budget = suggestion_budget;
            Suggestion suggestion(name, budget);
            for (NamedDefinition const& definition : model.names.definitions) {
                if (definition.has_name() && definition.name != name) {
                    suggestion.consider(definition.name);
                }
            }
            m_diagnostics.push_back(diagnostic_at(
                model.tokens.location(model.names.definitions[found->second].token),
                "the script neither defines nor uses " + in_quotes(name) + suggestion.wording()));
        }
    }

    /// Has no parameters, those from around it among them, and is the script's own.
    bool stands_alone(Script::Model const& model, unsigned number) const {
        NamedDefinition const& named = model.names.definitions[number];
        return model.translation.program.definitions[number].parameter_count == 0 &&
               named.parent == none && named.has_name();
    }

    ProcessCompiler::NamedProcess const& reference(Script::Model& model, unsigned number) {
        return model.host.reference(number, {}, model.names.definitions[number].clauses[0]);
    }

    /// Everything without parameters, parts before wholes. Where there are errors already, only to
    /// find recursion without a guard among what can be made in spite of them.
    void define(Script::Model& model) {
        m_has_errors = !m_diagnostics.empty();
        m_bodies.resize(model.names.definitions.size());
        // References are numbered as they first come up: in the order of the script.
        for (unsigned number = 0; number < m_bodies.size(); ++number) {
            if (model.graph.is_reference[number] && stands_alone(model, number)) {
                reference(model, number);
            }
        }
        if (!m_has_errors) {
            compute(model);
        }
        for (unsigned const number : model.graph.order) {
            bool const is_first = !model.names.definitions[number].is_repetition;
            if (stands_alone(model, number) && is_first &&
                model.names.definitions[number].is_process) {
                guarded(number, [&] { define_process(model, number); });
            }
        }
        for (ProcessCompiler::NameCycle const& cycle :
             find_unguarded_recursion(m_script->m_processes)) {
            m_diagnostics.push_back({model.location_of(*cycle[0]), describe(cycle)});
        }
    }

    /// The values without parameters, each once.
    void compute(Script::Model& model) {
        Values::Program const& program = model.translation.program;
        std::vector<Values::Value> values(program.definitions.size());
        auto const compute_one = [&](unsigned number) {
            guarded(number, [&] {
                values[number] =
                    model.evaluator.call(number, {}, program.definitions[number].place);
            });
        };
        for (auto number = static_cast<unsigned>(m_bodies.size()); number < values.size();
             ++number) {
            compute_one(number); // datatypes
        }
        for (unsigned const number : model.graph.order) {
            if (stands_alone(model, number) && !model.names.definitions[number].is_process) {
                compute_one(number);
            }
        }
        fold_constants(model.translation, values, model.evaluator);
        Values::mark_direct_expressions(model.translation.program);
    }

    void define_process(Script::Model& model, unsigned number) {
        m_bodies[number] = model.body_of(number);
        if (model.graph.is_reference[number]) {
            m_script->m_processes.define(reference(model, number), m_bodies[number]);
        }
    }

    /// Reports what goes wrong with values, where nothing else does. What uses the definition is then
    /// unreadable: it would go wrong in the same way, and take as long to find that.
    template <typename Work> void guarded(unsigned definition, Work const& work) {
        try {
            work();
            return;
        } catch (Values::EvaluationError const& error) {
            if (!m_has_errors) {
                m_diagnostics.push_back(m_script->m_model->diagnostic_of(error));
            }
        } catch (Values::Unreadable const&) {
            // which is reported
        }
        Values::Program& program = m_script->m_model->translation.program;
        for (Values::Clause const& clause : program.definitions[definition].clauses) {
            program.expressions[clause.body].kind = Values::ExpressionKind::broken;
        }
    }

    void fill(Script::Model& model) {
        for (unsigned number = 0; number < m_bodies.size(); ++number) {
            NamedDefinition const& named = model.names.definitions[number];
            if (!stands_alone(model, number) || !named.is_process) {
                continue;
            }
            Script::Definition definition{named.name, model.tokens.location(named.token),
                                          m_bodies[number], m_bodies[number]};
            if (model.graph.is_reference[number]) {
                definition.term =
                    m_script->m_processes.references()[reference(model, number).number()];
            }
            if (named.name == asked_name && !m_options.process.empty()) {
                fill_asked(std::move(definition));
            } else {
                m_script->m_definitions.push_back(std::move(definition));
            }
        }
        auto const& definitions = m_script->m_definitions;
        for (std::size_t index = 0; index < definitions.size(); ++index) {
            m_script->m_places.try_emplace(definitions[index].name, index);
        }
    }

    void fill_asked(Script::Definition definition) {
        definition.name = m_options.process;
        m_script->m_asked = std::make_unique<Script::Definition>(std::move(definition));
    }

    /// An instance that is asked for says what its definition says.
    void look_behind_asked() {
        if (!m_script->m_asked) {
            return;
        }
        ProcessCompiler::ProcessPointer& body = m_script->m_asked->body;
        if (body->kind() == ProcessCompiler::named_process_kind) {
            try {
                body = m_script->m_processes.process(
                    static_cast<ProcessCompiler::NamedProcess const&>(*body));
            } catch (ScriptError const& error) {
                m_diagnostics.push_back(error.diagnostic());
            }
        }
    }

    ReadOptions const& m_options;
    std::unique_ptr<Script> m_script{new Script};
    unsigned m_end_added = 1;
    Diagnostics m_diagnostics;
    bool m_has_errors = false;                             // before anything was made
    std::vector<ProcessCompiler::ProcessPointer> m_bodies; // by definition
};

Script::Script() = default;

Script::~Script() = default;

Script::Definition const* Script::find(std::string_view name) const {
    auto const place = m_places.find(name);
    return place == m_places.end() ? nullptr : &m_definitions[place->second];
}

std::string_view Script::process_with_parameters() const {
    for (NamedDefinition const& named : m_model->names.definitions) {
        if (named.is_process && named.parent == none && named.parameter_count > 0) {
            return named.name;
        }
    }
    return {};
}

void Script::name_calls(NamesOfTerms& names) const {
    m_model->name_calls(names);
}

std::string Script::reason_against(std::string_view name) const {
    auto const found = m_model->names.by_name.find(std::string(name));
    if (found == m_model->names.by_name.end()) {
        return "";
    }
    NamedDefinition const& definition = m_model->names.definitions[found->second];
    std::string const quoted = in_quotes(name);
    if (!definition.is_process) {
        return quoted + " is a value, and a process is wanted";
    }
    return quoted + " has " + std::to_string(definition.parameter_count) + " parameter" +
           (definition.parameter_count == 1 ? "" : "s") + ": write what for, as in " +
           in_quotes(std::string(name) + "(…)");
}

Assertion Script::assertion(std::size_t number) const {
    return m_model->assertion(number, m_assertions[number]);
}

Location Script::location_of(ProcessCompiler::NamedProcess const& reference) const {
    return m_model->location_of(reference);
}

ReadResult read_script(Source script, ReadOptions const& options) {
    if (script.text.size() > text_limit) {
        return {nullptr,
                {{{1, 1, 1},
                  "the script is too long: more than " + std::to_string(text_limit) + " bytes"}},
                {std::move(script)}};
    }
    return Reader(std::move(script), options).read();
}

ReadResult read_script(std::string_view text) {
    return read_script({"script", std::string(text)}, {});
}

} // namespace Calder::Script
