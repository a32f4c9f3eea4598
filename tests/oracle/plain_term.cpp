#include "tests/oracle/plain_term.h"

#include <algorithm>

namespace Calder::Oracle {

namespace {

char const* name_of(Kind kind) {
    switch (kind) {
    case Kind::named: return "named";
    case Kind::prefix: return "prefix";
    case Kind::event_set_prefix: return "event_set_prefix";
    case Kind::external_choice: return "external_choice";
    case Kind::internal_choice: return "internal_choice";
    case Kind::sliding_choice: return "sliding_choice";
    case Kind::sequential_composition: return "sequential_composition";
    case Kind::interrupt: return "interrupt";
    case Kind::interleave: return "interleave";
    case Kind::run: return "run";
    case Kind::chaos: return "chaos";
    }
    return "";
}

/// Whether arguments may be left out.
bool is_nary(Kind kind) {
    return kind == Kind::external_choice || kind == Kind::internal_choice ||
           kind == Kind::interleave;
}

std::vector<TermPointer> smaller_terms(TermPointer const& term) {
    std::vector<TermPointer> smaller = term->arguments;
    if (!(term->kind == Kind::external_choice && term->arguments.empty())) {
        smaller.push_back(stop());
    }
    if (is_nary(term->kind)) {
        for (std::size_t index = 0; index < term->arguments.size(); ++index) {
            Term fewer = *term;
            fewer.arguments.erase(fewer.arguments.begin() + static_cast<std::ptrdiff_t>(index));
            smaller.push_back(std::make_shared<Term>(fewer));
        }
    }
    if (term->kind != Kind::prefix) {
        for (unsigned const event : term->events) {
            Term fewer = *term;
            fewer.events.erase(event);
            smaller.push_back(std::make_shared<Term>(fewer));
        }
    }
    for (std::size_t index = 0; index < term->arguments.size(); ++index) {
        for (TermPointer const& argument : smaller_terms(term->arguments[index])) {
            smaller.push_back(with_argument(*term, index, argument));
        }
    }
    return smaller;
}

} // namespace

TermPointer make(Kind kind, std::vector<TermPointer> arguments, Events events) {
    return std::make_shared<Term>(Term{kind, std::move(events), std::move(arguments)});
}

TermPointer stop() {
    return make(Kind::external_choice, {});
}

TermPointer with_argument(Term const& term, std::size_t index, TermPointer const& replacement) {
    Term changed = term;
    changed.arguments[index] = replacement;
    return std::make_shared<Term>(changed);
}

std::string text_of(Term const& term) {
    if (term.kind == Kind::named) {
        return term.name;
    }
    std::string text = name_of(term.kind);
    if (!term.events.empty()) {
        text += "{";
        for (unsigned const event : term.events) {
            text += (event == *term.events.begin() ? "" : " ") + std::to_string(event);
        }
        text += "}";
    }
    text += "(";
    for (std::size_t index = 0; index < term.arguments.size(); ++index) {
        text += (index == 0 ? "" : ", ") + text_of(*term.arguments[index]);
    }
    return text + ")";
}

std::string text_of(Model const& model) {
    std::string text = text_of(*model.term);
    for (auto const& [name, term] : model.definitions) {
        text += "\n    where " + name + " = " + text_of(*term);
    }
    return text;
}

std::vector<Model> smaller_models(Model const& model) {
    std::vector<Model> smaller;
    for (TermPointer const& term : smaller_terms(model.term)) {
        smaller.push_back({term, model.definitions});
    }
    for (auto const& [name, body] : model.definitions) {
        // The guard at the head of a definition stays, or the recursion would lose it.
        for (TermPointer const& continuation : smaller_terms(body->arguments[0])) {
            Model changed = model;
            changed.definitions[name] = with_argument(*body, 0, continuation);
            smaller.push_back(std::move(changed));
        }
    }
    std::stable_sort(smaller.begin(), smaller.end(), [](Model const& left, Model const& right) {
        return text_of(left).size() < text_of(right).size();
    });
    return smaller;
}

} // namespace Calder::Oracle
