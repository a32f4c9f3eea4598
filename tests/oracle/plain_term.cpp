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
    case Kind::generalised_parallel: return "generalised_parallel";
    case Kind::alphabetised_parallel: return "alphabetised_parallel";
    case Kind::linked_parallel: return "linked_parallel";
    case Kind::hiding: return "hiding";
    case Kind::projection: return "projection";
    case Kind::renaming: return "renaming";
    case Kind::exception: return "exception";
    case Kind::synchronising_choice: return "synchronising_choice";
    case Kind::synchronising_interrupt: return "synchronising_interrupt";
    }
    return "";
}

/// Whether arguments may be left out.
bool is_nary(Kind kind) {
    return kind == Kind::external_choice || kind == Kind::internal_choice ||
           kind == Kind::interleave || kind == Kind::generalised_parallel ||
           kind == Kind::synchronising_choice;
}

std::string text_of(Events const& events) {
    std::string text = "{";
    for (unsigned const event : events) {
        text += (event == *events.begin() ? "" : " ") + std::to_string(event);
    }
    return text + "}";
}

/// The term without one thing: an argument that may be left out, an event, a pair.
std::vector<Term> with_one_thing_less(Term const& term) {
    std::vector<Term> smaller;
    auto const erase = [&](auto Term::*field, std::size_t index) {
        Term& fewer = smaller.emplace_back(term);
        (fewer.*field).erase((fewer.*field).begin() + static_cast<std::ptrdiff_t>(index));
    };
    for (std::size_t i = 0; is_nary(term.kind) && i < term.arguments.size(); ++i) {
        erase(&Term::arguments, i);
    }
    for (std::size_t i = 0; i < term.pairs.size(); ++i) {
        erase(&Term::pairs, i);
    }
    for (unsigned const event : term.kind == Kind::prefix ? Events() : term.events) {
        smaller.emplace_back(term).events.erase(event);
    }
    for (std::size_t i = 0; i < term.alphabets.size(); ++i) {
        for (unsigned const event : term.alphabets[i]) {
            smaller.emplace_back(term).alphabets[i].erase(event);
        }
    }
    return smaller;
}

std::vector<TermPointer> smaller_terms(TermPointer const& term) {
    std::vector<TermPointer> smaller = term->arguments;
    if (!(term->kind == Kind::external_choice && term->arguments.empty())) {
        smaller.push_back(stop());
    }
    for (Term const& fewer : with_one_thing_less(*term)) {
        smaller.push_back(std::make_shared<Term>(fewer));
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

bool synchronises(Term const& term) {
    switch (term.kind) {
    case Kind::generalised_parallel:
    case Kind::alphabetised_parallel:
    case Kind::linked_parallel:
    case Kind::synchronising_choice:
    case Kind::synchronising_interrupt: return true;
    case Kind::named:
    case Kind::prefix:
    case Kind::event_set_prefix:
    case Kind::external_choice:
    case Kind::internal_choice:
    case Kind::sliding_choice:
    case Kind::sequential_composition:
    case Kind::interrupt:
    case Kind::interleave:
    case Kind::run:
    case Kind::chaos:
    case Kind::hiding:
    case Kind::projection:
    case Kind::renaming:
    case Kind::exception:
        return std::any_of(term.arguments.begin(), term.arguments.end(),
                           [](TermPointer const& argument) { return synchronises(*argument); });
    }
    return false;
}

std::string text_of(Term const& term) {
    if (term.kind == Kind::named) {
        return term.name;
    }
    std::string text = name_of(term.kind);
    if (!term.events.empty()) {
        text += text_of(term.events);
    }
    for (Events const& alphabet : term.alphabets) {
        text += text_of(alphabet);
    }
    for (auto const& [left, right] : term.pairs) {
        text += "[" + std::to_string(left) + " " + std::to_string(right) + "]";
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
